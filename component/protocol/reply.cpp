#include "protocol/reply.h"

#include <algorithm>
#include <array>

#include "text/text.h"

namespace mirvane {
namespace {

// The codes used if the printer status byte reports a condition.
constexpr int kDeviceStatus = 254;
constexpr int kDeviceError = 255;

// Bits of the fiscal and of the printer status byte.
constexpr int kDayOpen = 0x02;
constexpr int kTransactionOpen = 0x04;
constexpr int kInPayment = 0x08;
constexpr int kFlashNearFull = 0x20;

struct Condition {
  int bit;
  int meaning;
  TextView text;
};

// In this order: the last of several conditions is reported. Programs in the field compare these texts, so the Latin T,
// the stray quote and the 27 blanks stay.
constexpr std::array<Condition, 4> kConditions = {{
    {0x02, kDeviceError, u"/ Σφάλμα Συσκευής !"},
    {0x04, kDeviceStatus, u"Tέλος Χαρτιού !"},
    {0x10, kDeviceError, u"/Αποσυνδεδεμένος Εκτυπωτής!"},
    {0x40, kDeviceError, u"/o Εκτυπωτής δεν απαντά!'                           "},
}};

constexpr int digitOf(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if ((c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f')) return (c | 0x20) - u'a' + 10;
  return -1;
}

// The number from the hexadecimal digits at the start of `text`; 0 if there are none.
int hexValue(TextView text) {
  int value = 0;
  for (const char16_t c : text) {
    if (digitOf(c) < 0) break;
    value = value * 16 + digitOf(c);
  }
  return value;
}

}  // namespace

bool hasStatus(TextView reply) {
  constexpr TextView kForm = u"HH/HH/HH";
  return reply.size() >= kForm.size() &&
         std::equal(kForm.begin(), kForm.end(), reply.begin(),
                    [](char16_t form, char16_t c) { return form == u'H' ? digitOf(c) >= 0 : c == form; });
}

Reply::Reply(Text raw) {
  setRaw(std::move(raw));
  message = raw_;
  result = static_cast<std::int16_t>(hexValue(trim(TextView(raw_).substr(0, 2))));
  int code = hexValue(TextView(raw_).substr(0, 2));
  // A reply too short for both status bytes has none.
  const bool hasBytes = raw_.size() >= 8;
  const int printer = hasBytes ? hexValue(TextView(raw_).substr(3, 2)) : 0;
  const int fiscal = hasBytes ? hexValue(TextView(raw_).substr(6, 2)) : 0;
  flags_ = {(fiscal & kDayOpen) != 0, (fiscal & kTransactionOpen) != 0, (fiscal & kInPayment) != 0,
            (printer & kFlashNearFull) != 0};
  for (const Condition& condition : kConditions) {
    if ((printer & condition.bit) == 0) continue;
    code = condition.meaning;
    message = condition.text;
  }
  if (const TextView text = deviceErrorText(code); !text.empty()) message = text;
  if (code == kDeviceStatus) message.insert(0, u"DEVICE STATUS:");
  if (code == kDeviceError) message.insert(0, u"DEVICE ERROR:");
}

void Reply::setRaw(Text raw) {
  raw_ = std::move(raw);
  constexpr std::size_t kHead = 3;  // result and status bytes
  std::vector<Text> pieces = split(raw_, u'/');
  if (pieces.size() > kHead) fields_.assign(pieces.begin() + kHead, pieces.end());
}

}  // namespace mirvane
