#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "text/text.h"

// The flight record: what happened on the line to the register, in lines that a person can read and a program can
// parse. A file of them is UTF-8, each line ends with CR LF.
//
//   line   = date " " time " " zone " " kind blanks number [" " text]
//   date   = YYYY-MM-DD, time = HH:MM:SS.mmm, local; zone = "+HH:MM" or "-HH:MM", what local time is ahead of UTC
//   kind   = the event, see EventKind; number = decimal, with a "-" below 0: its meaning is the kind's
//   text   = what the event is about. Control characters stand by name (<STX>, <ACK>, <CR>), a "<" is <LT>, and a byte
//            without a character in the register's code page is its hexadecimal number (<x8F>): so the bytes can be
//            read back. A secret is "*"s, see recorder/secrets.h.
//
// A line that was cut off for good, its process having ended, has "<cut>" for its rest where another goes on behind it.
//
//   2026-11-22 08:31:05.120 +02:00 call          0 ItemSale
//   2026-11-22 08:31:05.120 +02:00 sent          3 <CAN><CAN><ENQ>
//   2026-11-22 08:31:05.122 +02:00 sent         38 <STX>3/S//Καφες///1.000/2.50/1/24.00/1/13<ETX>
//   2026-11-22 08:31:05.161 +02:00 received     11 <STX>00/00/06/<ETX>
//   2026-11-22 08:31:05.161 +02:00 sent          1 <ACK>
//   2026-11-22 08:31:05.161 +02:00 ended         0 ItemSale, 41 ms
namespace mirvane::recorder {

enum class EventKind {
  kStarted,   ///< "started": a file begins; number: the process; text: the component's version and the program
  kCall,      ///< "call": a program calls; number: 0; text: the member
  kEnded,     ///< "ended": the call returned; number: its Result; text: the member, how long it took, why it failed
  kOpen,      ///< "open": a port was opened; number: 0, or the system's error; text: the port and the error's text
  kClose,     ///< "close": the port was closed; number: 0, or 1 when the system failed; text: the port
  kBroken,    ///< "broken": the serial line takes no byte any more; number: the system's error; text: and its text
  kSent,      ///< "sent": to the register; number: how many bytes; text: the bytes
  kReceived,  ///< "received": from the register, like kSent; on a network each datagram has a line
  kDropped,   ///< "dropped": received, and not looked at, being late; like kReceived
  kRepeat,    ///< "repeat": the exchange begins anew; number: which attempt it is; text: why
  kWait,      ///< "wait": the operator is told to wait; number: the register's code; text: what the window says
  kWaited,    ///< "waited": the wait is over; number: the code it ended with; text: its text
  kBox,       ///< "box": the operator was shown a message box; number: its style; text: title ": " prompt
  kLost,      ///< "lost": number of events that could not be kept, the disk being slower than the line
};

/// One line of a record.
struct Event {
  std::int64_t time = 0;  ///< milliseconds since 1970, UTC
  EventKind kind = EventKind::kStarted;
  std::int32_t number = 0;
  /// In the register's code page for kSent, kReceived and kDropped, UTF-8 for the others; without secrets.
  std::string text;

  bool operator==(const Event&) const = default;
};

/// Whether the text of events of this kind is bytes of the line.
constexpr bool isOfLine(EventKind kind) {
  return kind == EventKind::kSent || kind == EventKind::kReceived || kind == EventKind::kDropped;
}

/// The line of an event, with CR LF at its end. `zone`: minutes that local time is ahead of UTC.
std::string formatted(const Event& event, int zone);

/// The event of a line, without its line end; nothing where it is no line of a record. Where a file was cut off, its
/// last line lacks the end and may lack more.
std::optional<Event> parsedEvent(std::string_view line);

}  // namespace mirvane::recorder
