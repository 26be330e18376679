#include "emulator/program/memory.h"

#include <algorithm>
#include <limits>
#include <map>

#include "emulator/program/members.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

/// What no amount, count or size of a register comes near to.
constexpr std::int64_t kGreatest = 1'000'000'000'000'000;
constexpr std::int64_t kLongestList = 1000;
constexpr std::size_t kLongestText = 100'000;

template <class Value>
constexpr bool isNumber = std::is_arithmetic_v<Value> || std::is_enum_v<Value>;
template <class Value>
concept Optional = requires(Value& value) {
  value.emplace();
  value.has_value();
};
template <class Value>
concept Map = requires {
  typename Value::mapped_type;
};
template <class Value>
concept Growing = requires(Value& value) {
  value.emplace_back();
};
template <class Value>
concept List = requires(Value& value) {
  value.begin();
};

using Lines = std::map<std::string, Line::Memory>;

Lines memoryOf(const std::vector<NamedLine>& lines) {
  Lines memory;
  for (const auto& [name, line] : lines) memory[name] = line->memory();
  return memory;
}

/// Goes through values of all kinds, and knows the name of where it is: "register/receipt/items/0/price".
class Walk {
 protected:
  template <class Then>
  void at(std::string_view name, Then then) {
    const std::size_t length = path_.size();
    if (length > 0) path_ += '/';
    path_ += name;
    then();
    path_.resize(length);
  }
  template <class Then>
  void at(std::size_t index, Then then) {
    at(std::to_string(index), then);
  }

  std::string path_;
};

/// Finds out what differs from what is known.
class Writer : public Walk {
 public:
  explicit Writer(const Store::Values& known) : known_(known) {}

  template <class Value>
  void part(const char* name, Value& value) {
    at(name, [&] { write(value); });
  }

  Store::Values changed;
  std::vector<std::string> gone;

 private:
  template <class Value>
  void write(Value& value) {
    if constexpr (std::is_same_v<Value, Text>) {
      put(toUtf8(value));
    } else if constexpr (std::is_same_v<std::remove_const_t<Value>, std::string>) {
      // Bytes are code page 1253, in which every byte is a character.
      put(toUtf8(fromCodePage(value)));
    } else if constexpr (isNumber<std::remove_const_t<Value>>) {
      put(static_cast<std::int64_t>(value));
    } else if constexpr (Optional<Value>) {
      count(value ? 1 : 0);
      if (value) at("0", [&] { write(*value); });
    } else if constexpr (Map<Value>) {
      count(value.size());
      // As pairs, whatever the type of the key.
      std::size_t i = 0;
      for (auto& [key, mapped] : value) {
        at(i++, [&, &k = key, &m = mapped] {
          at("key", [&] { write(k); });
          at("value", [&] { write(m); });
        });
      }
    } else if constexpr (List<Value>) {
      if constexpr (Growing<Value>) count(value.size());
      for (std::size_t i = 0; i < value.size(); ++i) at(i, [&] { write(value[i]); });
    } else {
      visitMembers(value, [this](const char* name, auto& member) { at(name, [&] { write(member); }); });
    }
  }

  void put(Store::Value value) {
    const auto found = known_.find(path_);
    if (found == known_.end() || found->second != value) changed[path_] = std::move(value);
  }

  /// How many elements follow. Those that are known beyond have gone.
  void count(std::size_t number) {
    const auto found = known_.find(path_);
    const std::int64_t before = found == known_.end() ? 0 : std::get<std::int64_t>(found->second);
    for (auto i = static_cast<std::int64_t>(number); i < before; ++i) {
      const std::string element = path_ + "/" + std::to_string(i), inside = element + "/";
      if (known_.contains(element)) gone.push_back(element);
      for (auto row = known_.lower_bound(inside); row != known_.end() && row->first.starts_with(inside); ++row) {
        gone.push_back(row->first);
      }
    }
    put(static_cast<std::int64_t>(number));
  }

  const Store::Values& known_;
};

[[noreturn]] void refuse(const std::string& place, const std::string& what) { throw StateError(place + ": " + what); }

class Reader : public Walk {
 public:
  explicit Reader(const Store::Values& values) : values_(values) {}

  template <class Value>
  void part(const char* name, Value& value) {
    at(name, [&] { read(value); });
  }

 private:
  template <class Value>
  void read(Value& value) {
    if constexpr (std::is_same_v<Value, Text>) {
      value = fromUtf8(text());
    } else if constexpr (std::is_same_v<Value, std::string>) {
      value = toCodePage(fromUtf8(text()));
    } else if constexpr (std::is_same_v<Value, bool>) {
      value = number(0, 1) != 0;
    } else if constexpr (std::is_enum_v<Value>) {
      value = static_cast<Value>(number(0, 255));
    } else if constexpr (isNumber<Value>) {
      constexpr auto kLeast = std::is_unsigned_v<Value> ? 0 : std::max<std::int64_t>(-kGreatest, kLowest<Value>);
      value = static_cast<Value>(number(kLeast, std::is_same_v<Value, int> ? kLast<int> : kGreatest));
    } else if constexpr (Optional<Value>) {
      value.reset();
      if (number(0, 1) != 0) at("0", [&] { read(value.emplace()); });
    } else if constexpr (Map<Value>) {
      value.clear();
      const auto count = static_cast<std::size_t>(number(0, kLongestList));
      for (std::size_t i = 0; i < count; ++i) {
        at(i, [&] {
          typename Value::key_type key;
          at("key", [&] { read(key); });
          at("value", [&] { read(value[key]); });
        });
      }
    } else if constexpr (Growing<Value>) {
      value.clear();
      const auto count = static_cast<std::size_t>(number(0, kLongestList));
      for (std::size_t i = 0; i < count; ++i) at(i, [&] { read(value.emplace_back()); });
    } else if constexpr (List<Value>) {
      for (std::size_t i = 0; i < value.size(); ++i) at(i, [&] { read(value[i]); });
    } else {
      visitMembers(value, [this](const char* name, auto& member) { at(name, [&] { read(member); }); });
    }
  }

  template <class Number>
  static constexpr std::int64_t kLowest = static_cast<std::int64_t>(std::numeric_limits<Number>::min());
  template <class Number>
  static constexpr std::int64_t kLast = static_cast<std::int64_t>(std::numeric_limits<Number>::max());

  const Store::Value& value() const {
    const auto found = values_.find(path_);
    if (found == values_.end()) refuse(path_, "missing");
    return found->second;
  }
  std::int64_t number(std::int64_t least, std::int64_t most) const {
    const auto* number = std::get_if<std::int64_t>(&value());
    if (!number) refuse(path_, "not a number");
    if (*number < least || *number > most) refuse(path_, std::to_string(*number) + " is impossible");
    return *number;
  }
  const std::string& text() const {
    const auto* text = std::get_if<std::string>(&value());
    if (!text) refuse(path_, "not a text");
    if (text->size() > kLongestText) refuse(path_, "too long");
    return *text;
  }

  const Store::Values& values_;
};

/// All that is remembered, part by part.
template <class Walker>
void visitParts(Walker& walk, FiscalState& fiscal, Journal::Memory& journal, CardPayments& cards,
                std::int64_t& clockOffset, Lines& lines) {
  walk.part("register", fiscal);
  walk.part("journal", journal);
  walk.part("cards", cards);
  walk.part("clockOffset", clockOffset);
  walk.part("lines", lines);
}

// ---- Impossible values

void require(bool isPossible, const std::string& place) {
  if (!isPossible) refuse(place, "impossible");
}

template <class Elements, class Check>
void requireEach(const Elements& elements, const std::string& place, const Check& check) {
  std::size_t i = 0;
  for (const auto& element : elements) check(element, place + "/" + std::to_string(i++));
}

bool isWithin(std::int64_t number, std::int64_t least, std::int64_t most) { return number >= least && number <= most; }

void requirePossible(const Payment& payment, const std::string& place) {
  require(isWithin(payment.number, 1, 4), place + "/number");
}

void requirePossible(const Receipt& receipt, const std::string& place) {
  constexpr std::int64_t kMost = 1'000'000'000;
  requireEach(receipt.items(), place + "/items", [](const Item& item, const std::string& at) {
    require(item.kind <= ItemKind::kRefund, at + "/kind");
    require(isWithin(item.quantity, 0, kMost), at + "/quantity");
    require(isWithin(item.price, 0, kMost), at + "/price");
    require(item.vat < kVatCategories, at + "/vat");
  });
  requireEach(receipt.adjustments(), place + "/adjustments",
              [&receipt](const Adjustment& adjustment, const std::string& at) {
                require(!adjustment.isOnItem || adjustment.item < receipt.items().size(), at + "/item");
              });
  requireEach(receipt.payments(), place + "/payments",
              [](const Payment& payment, const std::string& at) { requirePossible(payment, at); });
}

void requirePossible(const FiscalState& fiscal) {
  const FiscalState fresh;
  require(isSerialNumber(fiscal.serialNumber), "register/serialNumber");
  require(fiscal.departments.size() == fresh.departments.size(), "register/departments");
  require(fiscal.categories.size() == fresh.categories.size(), "register/categories");
  requireEach(fiscal.departments, "register/departments", [&](const Department& department, const std::string& at) {
    require(isWithin(department.category, 1, std::ssize(fresh.categories)), at + "/category");
  });
  const auto size = [](const auto& line, const std::string& at) { require(isWithin(line.size, 1, 4), at + "/size"); };
  requireEach(fiscal.header, "register/header", size);
  requireEach(fiscal.footer, "register/footer", size);
  requireEach(fiscal.lastReport, "register/lastReport", size);
  requireEach(fiscal.vatRates, "register/vatRates",
              [](std::int64_t rate, const std::string& at) { require(isWithin(rate, 0, 9999), at); });
  for (const auto& [number, terminal] : fiscal.cardTerminals) {
    require(isWithin(number, 1, kMostTerminals), "register/cardTerminals");
  }
  require(fiscal.closures >= 0, "register/closures");
  require(fiscal.lastReceiptNumber >= 0, "register/lastReceiptNumber");
  require(!fiscal.receipt || fiscal.isDayOpen, "register/isDayOpen");
  if (fiscal.receipt) requirePossible(*fiscal.receipt, "register/receipt/0");
}

void requirePossible(const Journal::Memory& memory, const Journal& journal) {
  require(memory.files.empty() || memory.files.size() == 3, "journal/files");
  require(!memory.isClosing || !memory.files.empty(), "journal/isClosing");
  require(isWithin(memory.preparationCalls, 0, 2), "journal/preparationCalls");
  requireEach(memory.files, "journal/files", [](const Journal::Prepared& file, const std::string& at) {
    require(file.source <= Journal::Prepared::Source::kText, at + "/source");
    require(file.padding <= 1'000'000'000, at + "/padding");
  });
  require(journal.holds(memory), "journal");
}

}  // namespace

void recall(Remembered remembered, Store& store) {
  const Store::Values values = store.values();
  if (values.empty()) return;
  FiscalState fiscal;
  Journal::Memory journal;
  CardPayments cards;
  std::int64_t clockOffset = 0;
  Lines lines;
  Reader reader(values);
  visitParts(reader, fiscal, journal, cards, clockOffset, lines);
  requirePossible(fiscal);
  requirePossible(journal, remembered.device.journal());
  if (cards.underWay()) requirePossible(*cards.underWay(), "cards/payment/0");
  remembered.clock.setOffset(clockOffset);
  remembered.device.restore(std::move(fiscal), std::move(journal), std::move(cards));
  for (const auto& [name, line] : remembered.lines) line->setMemory(lines[name]);
}

void Keeper::keep(Remembered remembered) {
  Writer writer(known_);
  Journal::Memory journal = remembered.device.journal().memory();
  Lines lines = memoryOf(remembered.lines);
  visitParts(writer, remembered.device.fiscal(), journal, remembered.device.cards(), remembered.clock.offset, lines);
  write(writer.changed, writer.gone);
}

void Keeper::keepLines(const std::vector<NamedLine>& lines) {
  Writer writer(known_);
  Lines memory = memoryOf(lines);
  writer.part("lines", memory);
  write(writer.changed, writer.gone);
}

void Keeper::write(Store::Values& changed, const std::vector<std::string>& gone) {
  if (changed.empty() && gone.empty() && !store_.hasUnwritten()) return;
  store_.begin();
  for (const std::string& name : gone) store_.erase(name);
  for (const auto& [name, value] : changed) store_.put(name, value);
  store_.flush();
  store_.commit();
  for (const std::string& name : gone) known_.erase(name);
  for (auto& [name, value] : changed) known_.insert_or_assign(name, std::move(value));
}

}  // namespace mirvane::emulator
