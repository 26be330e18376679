#pragma once

#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "emulator/card_payments.h"
#include "emulator/journal.h"
#include "emulator/line.h"
#include "emulator/program/web.h"

namespace mirvane::emulator {

/// The command line is invalid.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Options {
  struct Address {
    std::string kind, text;
  };
  std::vector<Address> addresses;
  std::optional<std::string> webAddress;
  Web::Options web;
  std::ofstream paper;
  bool isQuiet = false;
  bool isPaced = false;
  Line::Acknowledges acknowledges = Line::Acknowledges::kFrame;
  Journal::Options journal;
  CardPayments::Options cards;
  std::string state, serialNumber, replay, preset = "fresh";
  bool isReset = false;
};

/// Applies the arguments in order. Nothing if the program should continue, otherwise its exit code. Throws UsageError,
/// and FaultError for a rule.
std::optional<int> follow(std::vector<std::string> arguments, Options& options, Faults& faults);

}  // namespace mirvane::emulator
