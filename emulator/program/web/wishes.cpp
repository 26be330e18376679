#include "emulator/program/web/wishes.h"

#include <algorithm>
#include <cmath>

#include "http/message.h"

namespace mirvane::emulator {
namespace {

using http::Refusal;

std::string placeOf(const char* name) { return "body/" + std::string(name); }

}  // namespace

Wishes::Wishes(const std::string& body, std::initializer_list<const char*> names) {
  try {
    json_ = http::parseJson(body.empty() ? "{}" : body);
  } catch (const http::JsonError& error) {
    throw Refusal(400, std::string("the body is not JSON: ") + error.what(), "body");
  }
  const auto* members = json_.as<Json::Object>();
  if (!members) throw Refusal(400, "the body must be an object", "body");
  for (const Json::Member& member : *members) {
    if (std::find(names.begin(), names.end(), member.name) == names.end()) {
      throw Refusal(400, "unknown", "body/" + member.name);
    }
  }
}

const Json& Wishes::get(const char* name) const {
  static const Json kNothing;
  const Json* value = json_.find(name);
  return value ? *value : kNothing;
}

bool Wishes::flag(const char* name) const {
  const auto* value = get(name).as<bool>();
  if (!value) throw Refusal(400, "true or false is expected", placeOf(name));
  return *value;
}

std::string Wishes::text(const char* name, std::size_t longest) const {
  const auto* value = get(name).as<std::string>();
  if (!value || value->size() > longest) {
    throw Refusal(400, "a text of at most " + std::to_string(longest) + " bytes is expected", placeOf(name));
  }
  return *value;
}

std::string Wishes::word(const char* name, std::initializer_list<const char*> words) const {
  const auto* value = get(name).as<std::string>();
  if (value && std::find(words.begin(), words.end(), *value) != words.end()) return *value;
  std::string all;
  for (const char* word : words) all.append(all.empty() ? "" : ", ").append(word);
  throw Refusal(400, "one of these is expected: " + all, placeOf(name));
}

double Wishes::number(const char* name, double least, double most) const {
  return numberIn(get(name), placeOf(name), least, most);
}

int Wishes::whole(const char* name, int least, int most) const {
  return wholeIn(get(name), placeOf(name), least, most);
}

const Json& Wishes::object(const char* name) const {
  if (!get(name).as<Json::Object>()) throw Refusal(400, "an object is expected", placeOf(name));
  return get(name);
}

void Wishes::each(const char* name, std::size_t least, std::size_t most,
                  const std::function<void(const Json&, const std::string&)>& take) const {
  const auto* list = get(name).as<Json::List>();
  if (!list || list->size() < least || list->size() > most) {
    throw Refusal(400, "a list of " + std::to_string(least) + " to " + std::to_string(most) + " is expected",
                  placeOf(name));
  }
  for (std::size_t i = 0; i < list->size(); ++i) take((*list)[i], placeOf(name) + "/" + std::to_string(i));
}

double Wishes::numberIn(const Json& value, const std::string& where, double least, double most) {
  const auto* number = value.as<double>();
  if (number && *number >= least && *number <= most) return *number;
  throw Refusal(400, "a number from " + Json(least).dump() + " to " + Json(most).dump() + " is expected", where);
}

int Wishes::wholeIn(const Json& value, const std::string& where, int least, int most) {
  const double number = numberIn(value, where, least, most);
  if (number == std::floor(number)) return static_cast<int>(number);
  throw Refusal(400, "a whole number is expected", where);
}

}  // namespace mirvane::emulator
