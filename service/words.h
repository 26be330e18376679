#pragma once

#include <string>

#include "http/json.h"
#include "service/board.h"

// Texts for people: each code's meaning and remedy in both languages.
namespace mirvane::service {

/// `{"code", "name", "text", "meaning", "remedy", "again", "page"}`; for code 0 only `text`, one of our words.
http::Json failureView(std::int16_t code, const std::string& text);
/// What a job waits for.
http::Json waitView(const Wait& wait);
/// Why an outcome is unknown, and what to look at.
http::Json whyView(const std::string& why);

}  // namespace mirvane::service
