#pragma once

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace mirvane::http {

/// A JSON value. An object keeps the order of its members; numbers are doubles.
class Json {
 public:
  struct Member;
  using List = std::vector<Json>;
  using Object = std::vector<Member>;

  Json();
  Json(const Json&);
  Json(Json&&) noexcept;
  Json& operator=(const Json&);
  Json& operator=(Json&&) noexcept;
  ~Json();

  Json(std::nullptr_t) : Json() {}
  Json(bool value);
  Json(double value);
  template <class Number>
  requires(std::integral<Number> || std::floating_point<Number>) Json(Number value)
      : Json(static_cast<double>(value)) {}
  Json(std::string value);
  Json(std::string_view value) : Json(std::string(value)) {}
  Json(const char* value) : Json(std::string(value)) {}
  Json(List value);
  Json(Object value);
  Json(std::initializer_list<Member> members);

  bool isNull() const { return as<std::nullptr_t>() != nullptr; }
  /// The content as `Value` (bool, double, std::string, List or Object); null if the value is of another kind.
  template <class Value>
  const Value* as() const {
    return std::get_if<Value>(&value_);
  }
  /// The member of an object; null if there is none or this is not an object.
  const Json* find(std::string_view name) const;

  /// Sets a member; a new one becomes the last. Turns any other value into an object.
  Json& set(std::string name, Json value);
  /// Sets all members of `object`.
  Json& update(const Json& object);
  void erase(std::string_view name);
  /// Appends to a list. Turns any other value into a list.
  void add(Json value);

  bool operator==(const Json& other) const;

  /// The JSON text in UTF-8. U+FFFD replaces each byte of a text that is not UTF-8. Indented by two blanks per level,
  /// or on one line.
  std::string dump(bool isIndented = true) const;

 private:
  std::variant<std::nullptr_t, bool, double, std::string, List, Object> value_;
};

struct Json::Member {
  std::string name;
  Json value;

  bool operator==(const Member&) const = default;
};

/// A text is not JSON.
struct JsonError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Parses all of `text`, which must be UTF-8, with numbers that fit a double, no duplicate member names and at most 64
/// levels. Throws JsonError with the position of the error.
Json parseJson(std::string_view text);

}  // namespace mirvane::http
