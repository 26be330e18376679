#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "service/program/service_manager.h"

namespace mirvane::service {

struct Options {
  std::string port = "127.0.0.1:9100", web = "8200", store, tokens;
  /// Among those that share the store.
  std::string registerName, group;
  std::vector<std::string> hosts, origins;
  int mostUnfinished = 10'000;
  bool isRecorded = false;
};

bool isPostgres(const std::string& store);
/// Throws std::invalid_argument for what nothing can be served with, without opening the store.
void require(const Options& options);
std::filesystem::path tokensFile(const Options& options);

/// Serves until a signal ends it. The log goes to `output`.
int serve(const Options& options, const std::function<void(std::string_view)>& output, const Manager& manager);

}  // namespace mirvane::service
