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
  /// The value as `Value`, one of bool, double, std::string, List and Object; null when it is of another kind.
  template <class Value>
  const Value* as() const {
    return std::get_if<Value>(&value_);
  }
  /// The member of an object; null when there is none, or this is no object.
  const Json* find(std::string_view name) const;

  /// Sets a member, behind the others when it is new. What is no object becomes one.
  Json& set(std::string name, Json value);
  /// Sets all of an object's members.
  Json& update(const Json& object);
  void erase(std::string_view name);
  /// Adds to a list. What is no list becomes one.
  void add(Json value);

  bool operator==(const Json& other) const;

  /// In UTF-8, whatever the texts hold: U+FFFD stands for each byte that is none. Indented by two blanks a level, or
  /// on one line.
  std::string dump(bool isIndented = true) const;

 private:
  std::variant<std::nullptr_t, bool, double, std::string, List, Object> value_;
};

struct Json::Member {
  std::string name;
  Json value;

  bool operator==(const Member&) const = default;
};

/// A text is no JSON.
struct JsonError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Reads `text`, which must be UTF-8, whole, with numbers that a double can hold, without members of the same name and
/// at most 64 levels deep. Throws JsonError, which tells at which byte.
Json parseJson(std::string_view text);

}  // namespace mirvane::http
