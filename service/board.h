#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>

#include "http/json.h"
#include "service/order.h"

namespace mirvane::service {

/// What the register waits for, and whose help is needed.
struct Wait {
  /// "paper", "card" or "register"; empty if nothing is needed.
  std::string on;
  /// A Result of the component.
  std::int16_t code = 0;
  /// The register's or the component's text.
  std::string text;
  bool operator==(const Wait&) const = default;
};

/// How often something took how long.
struct Histogram {
  static constexpr std::array kBounds = {0.01, 0.025, 0.05, 0.1, 0.25, 0.5, 1.0, 2.5, 5.0, 10.0, 30.0, 60.0, 300.0};
  /// Up to each bound from the one before; the last one is for what took longer.
  std::array<long, kBounds.size() + 1> counts{};
  double sum = 0;

  void add(double seconds) {
    ++counts[static_cast<std::size_t>(std::ranges::lower_bound(kBounds, seconds) - kBounds.begin())];
    sum += seconds;
  }
};

/// What the worker reports and what callers request; these may be different threads.
class Board {
 public:
  struct Facts {
    bool isConnected = false;
    std::string serialNumber;
    Abilities abilities;
    /// The job in progress, and what it waits for.
    std::string job;
    Wait wait;
    /// Why a person has to look before anything is done; empty otherwise.
    std::string held;
    /// The register's totals as last read, and when, in milliseconds since 1970.
    http::Json totals;
    std::int64_t read = 0;
    /// Since the start: jobs by kind and state, waits by reason, repeated actions.
    std::map<std::pair<std::string, std::string>, long> outcomes;
    std::map<std::string, long> waits;
    long repetitions = 0;
    /// What calls of the component took, and jobs by their kind, from queued to over.
    Histogram callSeconds;
    std::map<std::string, Histogram> jobSeconds;
  };

  Facts facts() const {
    const std::lock_guard lock(mutex_);
    return facts_;
  }
  /// `change` modifies the facts; listeners are notified.
  template <class Change>
  void change(Change change) {
    {
      const std::lock_guard lock(mutex_);
      change(facts_);
    }
    if (onChange) onChange();
  }
  /// Modifies counters; nobody is notified.
  template <class Count>
  void count(Count count) {
    const std::lock_guard lock(mutex_);
    count(facts_);
  }

  void wish(const std::string& wish) {
    const std::lock_guard lock(mutex_);
    wishes_.insert(wish);
  }
  /// Whether that was requested; clears the request.
  bool takeWish(const std::string& wish) {
    const std::lock_guard lock(mutex_);
    return wishes_.erase(wish) > 0;
  }

  /// Set this before any work starts.
  std::function<void()> onChange;
  /// Writes a line of the log: the event and its members.
  std::function<void(const char* event, http::Json members)> log = [](const char*, const http::Json&) {};

 private:
  mutable std::mutex mutex_;
  Facts facts_;
  std::set<std::string> wishes_;
};

}  // namespace mirvane::service
