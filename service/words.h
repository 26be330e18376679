#pragma once

#include <string>

#include "http/json.h"
#include "service/board.h"

// What people read: each code's meaning and remedy in both languages.
namespace mirvane::service {

/// `{"code", "name", "text", "meaning", "remedy", "again", "page"}`; of 0, `text` alone, which is then a word of ours.
http::Json failureView(std::int16_t code, const std::string& text);
/// What something waits for.
http::Json waitView(const Wait& wait);
/// Why an outcome is unknown, and what to look at.
http::Json whyView(const std::string& why);

}  // namespace mirvane::service
