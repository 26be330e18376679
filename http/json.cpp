#include "http/json.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace mirvane::http {
namespace {

using Library = nlohmann::ordered_json;

constexpr std::size_t kDeepest = 64;
/// Below it, a double holds every whole number.
constexpr double kMostWhole = 1e15;

Library converted(const Json& value) {
  if (const auto* flag = value.as<bool>()) return *flag;
  if (const auto* number = value.as<double>()) {
    const bool isWhole = *number == std::floor(*number) && std::abs(*number) < kMostWhole;
    return isWhole ? Library(static_cast<std::int64_t>(*number)) : Library(*number);
  }
  if (const auto* text = value.as<std::string>()) return *text;
  if (const auto* list = value.as<Json::List>()) {
    Library array = Library::array();
    for (const Json& element : *list) array.push_back(converted(element));
    return array;
  }
  const auto* members = value.as<Json::Object>();
  if (!members) return nullptr;
  Library object = Library::object();
  // The names differ, so nothing has to be looked for.
  auto& pairs = object.get_ref<Library::object_t&>();
  for (const Json::Member& member : *members) pairs.push_back({member.name, converted(member.value)});
  return object;
}

/// Builds the value while the library reads.
class Builder {
 public:
  bool null() { return take(nullptr); }
  bool boolean(bool value) { return take(value); }
  bool number_integer(std::int64_t value) { return take(value); }
  bool number_unsigned(std::uint64_t value) { return take(value); }
  bool number_float(double value, const std::string&) { return take(value); }
  bool string(std::string& value) { return take(std::move(value)); }
  bool binary(Library::binary_t&) { return false; }
  bool start_object(std::size_t) { return open(Json::Object{}); }
  bool key(std::string& name) {
    if (open_.back().value.find(name)) throw JsonError("\"" + name + "\" stands there twice");
    open_.back().key = std::move(name);
    return true;
  }
  bool end_object() { return close(); }
  bool start_array(std::size_t) { return open(Json::List{}); }
  bool end_array() { return close(); }
  bool parse_error(std::size_t byte, const std::string&, const Library::exception& error) {
    // Behind the library's own number and name of the exception.
    const std::string text = error.what();
    const std::size_t start = text.find(": ", text.find("] "));
    throw JsonError("byte " + std::to_string(byte) + (start == std::string::npos ? "" : text.substr(start)));
  }

  Json root;

 private:
  struct Open {
    Json value;
    std::string key;
  };

  bool open(Json value) {
    if (open_.size() == kDeepest) throw JsonError("more than 64 levels deep");
    open_.push_back({std::move(value), {}});
    return true;
  }
  bool close() {
    Json value = std::move(open_.back().value);
    open_.pop_back();
    return take(std::move(value));
  }
  bool take(Json value) {
    if (open_.empty()) {
      root = std::move(value);
    } else if (open_.back().value.as<Json::List>()) {
      open_.back().value.add(std::move(value));
    } else {
      open_.back().value.set(std::move(open_.back().key), std::move(value));
    }
    return true;
  }

  std::vector<Open> open_;
};

}  // namespace

Json::Json() : value_(nullptr) {}
Json::Json(const Json&) = default;
Json::Json(Json&&) noexcept = default;
Json& Json::operator=(const Json&) = default;
Json& Json::operator=(Json&&) noexcept = default;
Json::~Json() = default;
Json::Json(bool value) : value_(value) {}
Json::Json(double value) : value_(value) {}
Json::Json(std::string value) : value_(std::move(value)) {}
Json::Json(List value) : value_(std::move(value)) {}
Json::Json(Object value) : value_(std::move(value)) {}

Json::Json(std::initializer_list<Member> members) : value_(Object(members)) {}

const Json* Json::find(std::string_view name) const {
  const auto* object = as<Object>();
  if (!object) return nullptr;
  const auto found = std::find_if(object->begin(), object->end(), [&](const Member& m) { return m.name == name; });
  return found == object->end() ? nullptr : &found->value;
}

Json& Json::set(std::string name, Json value) {
  if (!as<Object>()) value_ = Object{};
  auto& object = std::get<Object>(value_);
  const auto found = std::find_if(object.begin(), object.end(), [&](const Member& m) { return m.name == name; });
  if (found != object.end()) {
    found->value = std::move(value);
  } else {
    object.push_back({std::move(name), std::move(value)});
  }
  return *this;
}

Json& Json::update(const Json& object) {
  for (const Member& member : std::get<Object>(object.value_)) set(member.name, member.value);
  return *this;
}

void Json::erase(std::string_view name) {
  if (as<Object>()) std::erase_if(std::get<Object>(value_), [&](const Member& member) { return member.name == name; });
}

void Json::add(Json value) {
  if (!as<List>()) value_ = List{};
  std::get<List>(value_).push_back(std::move(value));
}

bool Json::operator==(const Json& other) const { return value_ == other.value_; }

std::string Json::dump(bool isIndented) const {
  return converted(*this).dump(isIndented ? 2 : -1, ' ', false, Library::error_handler_t::replace);
}

Json parseJson(std::string_view text) {
  Builder builder;
  Library::sax_parse(text.begin(), text.end(), &builder);
  return std::move(builder.root);
}

}  // namespace mirvane::http
