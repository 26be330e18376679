#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "text/text.h"

namespace mirvane::bench {

/// A program that drives a register: natively by name through the core, on Windows by name through the registered DLL.
/// Every operation ends the benchmark with a message when it fails.
class Till {
 public:
  virtual ~Till() = default;
  virtual void connect(const Text& port) = 0;
  virtual void disconnect() = 0;
  /// Sends a command text and returns the reply.
  virtual Text send(const Text& command) = 0;
  /// Sells kItem.
  virtual void sell() = 0;
  /// A late-bound call that sends nothing.
  virtual void callNothing() = 0;
  virtual void setTrace(bool active) = 0;
  /// Makes the folder of the flight record, which the next connection finds.
  virtual void makeRecordFolder() = 0;
  /// Takes the journal of the open day into the files below c:\bbox, with its window.
  virtual void readJournal() = 0;
  /// What the process holds in memory, in bytes.
  virtual std::size_t memory() = 0;
  /// Size of the component's file; 0 where it is part of the program.
  virtual std::size_t componentSize() = 0;
};

std::unique_ptr<Till> makeTill();

/// The command that `sell` makes.
inline constexpr TextView kItem = u"3/S//Καφες///1.000/2.50/1/24.00/1/";
inline constexpr TextView kItemDescription = u"Καφές";

[[noreturn]] void fail(const std::string& what);

}  // namespace mirvane::bench
