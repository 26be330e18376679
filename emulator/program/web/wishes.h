#pragma once

#include <functional>
#include <initializer_list>
#include <string>

#include "http/json.h"

namespace mirvane::emulator {

using http::Json;

/// The members of a request's body, each read by its name. Unknown members and values of a wrong kind throw a Refusal
/// with their place.
class Wishes {
 public:
  /// An empty body counts as an empty object.
  Wishes(const std::string& body, std::initializer_list<const char*> names);

  bool has(const char* name) const { return json_.find(name) != nullptr; }
  bool flag(const char* name) const;
  std::string text(const char* name, std::size_t longest) const;
  /// One of `words`.
  std::string word(const char* name, std::initializer_list<const char*> words) const;
  double number(const char* name, double least, double most) const;
  int whole(const char* name, int least, int most) const;
  /// An object, whatever it contains.
  const Json& object(const char* name) const;
  /// Each member of a list of `least` to `most`, with its place.
  void each(const char* name, std::size_t least, std::size_t most,
            const std::function<void(const Json&, const std::string&)>& take) const;

  static double numberIn(const Json& value, const std::string& where, double least, double most);
  static int wholeIn(const Json& value, const std::string& where, int least, int most);

 private:
  const Json& get(const char* name) const;

  Json json_;
};

}  // namespace mirvane::emulator
