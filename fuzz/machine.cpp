#include "fuzz/machine.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>

#include "component/component.h"
#include "embedding/till.h"
#include "protocol/wire.h"
#include "text/code_page.h"
#include "text/text.h"

namespace mirvane::fuzz {
namespace {

constexpr std::string_view kContented = "00/00/00/3//";

bool isLinkControl(char c) {
  return c == wire::kStx || c == wire::kEtx || c == wire::kEnq || c == wire::kAck || c == wire::kNak ||
         c == wire::kCan || c == '\r';
}

bool isDevice(const Text& part) {
  Text word = part.substr(0, part.find(u'.'));
  while (word.ends_with(u' ')) word.pop_back();
  for (char16_t& c : word) c = c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
  for (const TextView name : {u"CON", u"PRN", u"AUX", u"NUL", u"CONIN$", u"CONOUT$"}) {
    if (word == name) return true;
  }
  return word.size() == 4 && (word.starts_with(u"COM") || word.starts_with(u"LPT")) &&
         TextView(u"0123456789\u00B9\u00B2\u00B3").find(word[3]) != TextView::npos;
}

// Whether Windows, too, finds `path` below one of the journal folders, and takes no part of it for anything else.
void requireBelowJournals(TextView path) {
  const bool isBelow = path.starts_with(u"c:\\bbox\\") || path.starts_with(u"c:\\bboxBackUp\\");
  require(isBelow, "outside the journal folders");
  const TextView inside = path.substr(path.find(u'\\', 3) + 1);
  require(inside.find_first_of(u"/:") == TextView::npos, "a separator or a stream");
  require(std::all_of(inside.begin(), inside.end(), [](char16_t c) { return c >= u' '; }), "a control character");
  for (const Text& part : split(inside, u'\\')) {
    const bool isDots = part.find(u'.') != Text::npos && part.find_first_not_of(u". ") == Text::npos;
    require(!isDots, "the folder itself or one above");
    require(!isDevice(part), "a device");
  }
}

}  // namespace

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

bool passes(const std::function<void()>& call) {
  try {
    call();
    return true;
  } catch (const AutomationError&) {
    return false;
  }
}

std::string Input::take(std::size_t count) {
  const std::size_t there = std::min(count, rest_.size());
  std::string bytes(rest_.substr(0, there));
  rest_.remove_prefix(there);
  bytes.resize(count);
  return bytes;
}

std::uint64_t Input::number() {
  std::uint64_t value = 0;
  for (unsigned shift = 0; shift < 64; shift += 8) value |= std::uint64_t{byte()} << shift;
  return value;
}

double Input::real() { return std::bit_cast<double>(number()); }

std::string Input::line() {
  const std::size_t length = std::min(rest_.find('\n'), rest_.size());
  std::string bytes = take(length);
  take(1);
  return bytes;
}

bool Disk::makeFolder(TextView folder) {
  require(folder.ends_with(u'\\'), "a folder's name ends in a separator");
  requireBelowJournals(folder);
  return true;
}

bool Disk::replace(TextView path, std::string_view bytes) {
  requireBelowJournals(path);
  require(path.find_last_not_of(u"\\. ") + 1 == path.size(), "the name that the file gets is another one");
  written.emplace_back(bytes);
  return true;
}

template <class Take>
void Line::takeFrames(std::string_view bytes, Take take) {
  for (const char c : bytes) {
    if (c == wire::kStx) frame_.clear();
    frame_ += c;
    // A program may also send bytes of its own, which are no frame.
    if (c != wire::kEtx || frame_.size() < 4 || frame_.front() != wire::kStx) continue;
    ++frames;
    take(answer(frame_.substr(1, frame_.size() - 4)));
  }
}

platform::Attempt<std::size_t> Line::write(std::int32_t /*handle*/, std::string_view bytes) {
  takeFrames(bytes, [this](std::string reply) {
    std::erase(reply, '\r');
    serial_ += reply;
  });
  return bytes.size();
}

platform::Attempt<std::string> Line::read(std::int32_t /*handle*/, std::size_t most) {
  require(most <= std::max<std::size_t>(serial_.size(), 1), "a read of more than is there blocks");
  if (serial_.empty()) clock_.sleep(1000);
  std::string bytes = serial_.substr(0, most);
  serial_.erase(0, bytes.size());
  return bytes;
}

platform::Granted Line::send(std::int32_t /*handle*/, std::string_view bytes) {
  takeFrames(bytes, [this](const std::string& reply) {
    if (acknowledges && !reply.empty()) datagrams_.push_back({wire::kAck});
    for (std::size_t at = 0; at < reply.size();) {
      const std::size_t end = std::min(reply.find('\r', at), reply.size());
      datagrams_.push_back(reply.substr(at, end - at));
      at = end + 1;
    }
  });
  return true;
}

platform::Attempt<std::string> Line::receive(std::int32_t /*handle*/, std::size_t most) {
  require(!datagrams_.empty(), "a receive that blocks");
  std::string datagram = datagrams_.front();
  datagrams_.erase(datagrams_.begin());
  return datagram.size() > most ? std::nullopt : platform::Attempt<std::string>(datagram);
}

bool Line::waitReadable(std::int32_t /*handle*/, std::int16_t seconds) {
  // A look takes a moment too, or looking would stop the time.
  if (datagrams_.empty()) clock_.sleep(seconds > 0 ? static_cast<std::uint32_t>(seconds) * 1000 : 50);
  return !datagrams_.empty();
}

Machine::Machine() { component_.emplace(platform); }

Machine::~Machine() {
  component_.reset();
  require(Object::liveCount() == liveBefore_, "objects leak");
}

void Machine::script(Input replies, bool framed, std::function<void(const std::string&, const Reply*)> told) {
  line.acknowledges = framed;
  line.answer = [replies, framed, told = std::move(told)](const std::string& command) mutable {
    const bool isOver = replies.atEnd();
    std::string bytes = isOver ? std::string(kContented) : replies.line();
    if (!framed && !isOver) {
      told(command, nullptr);
      return bytes;
    }
    std::erase_if(bytes, isLinkControl);
    const Reply reply(fromCodePage(bytes));
    told(command, &reply);
    return std::string(isOver && !framed ? "\x06\r" : "") + wire::kStx + bytes + wire::kEtx;
  };
}

ObjectPtr Machine::connected(bool overNetwork) {
  embedding::Till till;
  require(till.call("Connect_", overNetwork ? u"10.0.0.5:9100" : u"COM1"), "connected");
  return till.facade().shared_from_this();
}

Variables::Variables(const Member& member, std::int16_t number, bool suppressed) : parameters_(member.parameters) {
  for (const Parameter& parameter : parameters_) {
    const bool isRecord = parameter.type.kind == TypeKind::object;
    const bool isText = parameter.type.kind == TypeKind::text || parameter.type.kind == TypeKind::variant;
    values_.push_back(isRecord ? Value(createObject(parameter.type.name)) : isText ? Value(Text(u"A")) : Value(number));
    if (!isRecord) values_.back() = convertedTo(parameter.type, values_.back());
    if (parameter.name == "Result") values_.back() = std::int16_t{0};
    if (parameter.name == "SupressError_") values_.back() = suppressed;
  }
}

std::vector<Argument> Variables::references() {
  std::vector<Argument> all;
  for (Value& value : values_) all.emplace_back(Reference(&value));
  return all;
}

Value& Variables::operator[](std::string_view parameter) {
  return values_[static_cast<std::size_t>(std::ranges::find(parameters_, parameter, &Parameter::name) -
                                          parameters_.begin())];
}

std::vector<Value> Variables::outputs() const {
  std::vector<Value> all;
  for (std::size_t i = 0; i < values_.size(); ++i) {
    const std::string_view name = parameters_[i].name;
    if (name == "Result" || name == "Exresult" || name == "SupressError_" || name == "Pass") continue;
    const auto* record = std::get_if<ObjectPtr>(&values_[i]);
    if (record == nullptr) {
      all.push_back(values_[i]);
      continue;
    }
    for (const Member& member : (*record)->classInfo().members()) {
      if (member.kind == MemberKind::get) all.push_back((*record)->call(member.name));
    }
  }
  return all;
}

}  // namespace mirvane::fuzz
