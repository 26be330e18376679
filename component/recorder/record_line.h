#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "text/text.h"

// The flight record: what happened on the line, in lines that people can read and programs can parse. A file is UTF-8;
// each line ends with CR LF.
//
//   line   = date " " time " " zone " " kind blanks number [" " text]
//   date   = YYYY-MM-DD, time = HH:MM:SS.mmm, local; zone = "+HH:MM" or "-HH:MM", what local time is ahead of UTC
//   kind   = the event, see EventKind; number = decimal, with a "-" below 0: its meaning is the kind's
//   text   = what the event is about. Control characters stand by name (<STX>, <ACK>, <CR>), a "<" is <LT>, and a byte
//            without a character in the register's code page is its hexadecimal number (<x8F>): so the bytes can be
//            read back. A secret is "*"s, see recorder/secrets.h.
//
// A line that was cut off because its process ended gets "<cut>" as its rest when another process continues the file.
//
//   2026-11-22 08:31:05.120 +02:00 call          0 ItemSale
//   2026-11-22 08:31:05.120 +02:00 sent          3 <CAN><CAN><ENQ>
//   2026-11-22 08:31:05.122 +02:00 sent         38 <STX>3/S//Καφες///1.000/2.50/1/24.00/1/13<ETX>
//   2026-11-22 08:31:05.161 +02:00 received     11 <STX>00/00/06/<ETX>
//   2026-11-22 08:31:05.161 +02:00 sent          1 <ACK>
//   2026-11-22 08:31:05.161 +02:00 ended         0 ItemSale, 41 ms
namespace mirvane::recorder {

enum class EventKind {
  kStarted,   ///< "started": a process starts writing; number: the process; text: component version, program
  kCall,      ///< "call": a program calls; number: 0; text: the member
  kEnded,     ///< "ended": the call returned; number: its Result; text: the member, how long it took, why it failed
  kOpen,      ///< "open": a port was opened; number: 0, or the system's error; text: the port and the error's text
  kClose,     ///< "close": the port was closed; number: 0, or 1 when the system failed; text: the port
  kBroken,    ///< "broken": the serial line no longer accepts data; number and text: the system's error
  kSent,      ///< "sent": to the register; number: how many bytes; text: the bytes
  kReceived,  ///< "received": from the register, like kSent; on a network each datagram has a line
  kDropped,   ///< "dropped": received too late, and ignored; like kReceived
  kRepeat,    ///< "repeat": the exchange starts over; number: of the attempt; text: why
  kWait,      ///< "wait": the operator is told to wait; number: the register's code; text: that of the window
  kWaited,    ///< "waited": the wait is over; number: the code it ended with; text: its text
  kBox,       ///< "box": a message box; number: its style; text: title ": " prompt
  kLost,      ///< "lost": number of events dropped because the disk was slower than the line
};

/// One line of a record.
struct Event {
  std::int64_t time = 0;  ///< milliseconds since 1970, UTC
  EventKind kind = EventKind::kStarted;
  std::int32_t number = 0;
  /// In the register's code page for kSent, kReceived and kDropped, otherwise UTF-8; without secrets.
  std::string text;

  bool operator==(const Event&) const = default;
};

/// Whether the text of such events is bytes of the line.
constexpr bool isOfLine(EventKind kind) {
  return kind == EventKind::kSent || kind == EventKind::kReceived || kind == EventKind::kDropped;
}

/// The line of an event, with CR LF at its end. `zone`: offset of local time from UTC in minutes.
std::string formatted(const Event& event, int zone);

/// The event in a line, given without its line end; nothing if it is not a line of a record. If a file was cut off, its
/// last line may be incomplete.
std::optional<Event> parsedEvent(std::string_view line);

}  // namespace mirvane::recorder
