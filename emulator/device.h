#pragma once

#include <string>
#include <string_view>

#include "emulator/register.h"
#include "emulator/result_code.h"

namespace mirvane::emulator {

// Bits of the printer status byte.
constexpr std::uint8_t kPrinterError = 0x02;
constexpr std::uint8_t kPrinterPaperEnd = 0x04;
constexpr std::uint8_t kPrinterOffline = 0x10;
constexpr std::uint8_t kPrinterFlashNearFull = 0x20;
constexpr std::uint8_t kPrinterSilent = 0x40;

/// This machine's local time.
platform::LocalTime systemTime();
/// Seconds of this machine's steady clock.
double steadySeconds();

/// The fiscal register: executes commands, keeps the fiscal state, prints.
class Device {
 public:
  explicit Device(Paper::Sink paper = {}, LocalClock clock = systemTime, ElapsedClock elapsed = steadySeconds);
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  /// Executes `command` (code page 1253, without frame and checksum) and returns the reply in the same form:
  /// "RR/PP/FF/" and, on success, the command's own fields, each closed by "/". A refused command changes nothing.
  /// `printerStatus` holds bits of the printer status byte. All but "flash near full" cause commands that print to be
  /// refused; every reply contains them.
  std::string execute(std::string_view command, std::uint8_t printerStatus = 0);

  /// The reply that refuses any command with `code`.
  std::string refuse(Code code, std::uint8_t printerStatus = 0) const;

  /// Books and prints a card payment that its terminal has approved meanwhile, as the next command would.
  void settleCard();
  /// Continues from another register's state, with no paper printed and with the content of the journal's tapes.
  /// Journal and card terminal options stay.
  void restore(FiscalState fiscal, Journal::Memory journal, CardPayments cards);

  /// For inspecting and preparing the register.
  FiscalState& fiscal() { return machine_.fiscal; }
  Journal& journal() { return machine_.journal; }
  CardPayments& cards() { return machine_.cards; }
  /// What the customer display shows.
  const Display& display() const { return machine_.display; }
  int drawerOpenings() const { return machine_.drawerOpenings; }
  Conditions& conditions() { return machine_.conditions; }
  Roll& roll() { return machine_.roll; }
  platform::LocalTime time() const { return machine_.clock(); }

 private:
  Register machine_;
};

}  // namespace mirvane::emulator
