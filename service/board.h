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

/// What is in the way, and of whom help is wanted.
struct Wait {
  /// "paper", "card" or "register"; empty when nothing is in the way.
  std::string on;
  /// A Result of the component's.
  std::int16_t code = 0;
  /// As the register or the component words it.
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

/// What whoever works at the register tells, and what whoever asks may wish: the two may be different threads.
class Board {
 public:
  struct Facts {
    bool isConnected = false;
    std::string serialNumber;
    Abilities abilities;
    /// The job at the register, and what it waits for.
    std::string job;
    Wait wait;
    /// Nothing is done before a person has looked: why.
    std::string held;
    /// The register's totals as they were read last, and when, in milliseconds since 1970.
    http::Json totals;
    std::int64_t read = 0;
    /// Since the start: jobs by kind and state, waits by what for, acts done again.
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
  /// `change` gets the facts; whoever listens is told.
  template <class Change>
  void change(Change change) {
    {
      const std::lock_guard lock(mutex_);
      change(facts_);
    }
    if (onChange) onChange();
  }
  /// What is counted, of which nobody is told.
  template <class Count>
  void count(Count count) {
    const std::lock_guard lock(mutex_);
    count(facts_);
  }

  void wish(const std::string& wish) {
    const std::lock_guard lock(mutex_);
    wishes_.insert(wish);
  }
  /// Whether that was wished, once.
  bool takeWish(const std::string& wish) {
    const std::lock_guard lock(mutex_);
    return wishes_.erase(wish) > 0;
  }

  /// Set before anybody works.
  std::function<void()> onChange;
  /// A line of the log: what happened, and its members.
  std::function<void(const char* event, http::Json members)> log = [](const char*, const http::Json&) {};

 private:
  mutable std::mutex mutex_;
  Facts facts_;
  std::set<std::string> wishes_;
};

}  // namespace mirvane::service
