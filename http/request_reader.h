#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "http/message.h"

namespace mirvane::http {

/// Parses one request from the bytes of a connection.
class RequestReader {
 public:
  static constexpr std::size_t kLongestBody = 65'536;

  RequestReader();
  ~RequestReader();

  /// Consumes bytes that were not consumed before and returns their number: none after the request's end, or while a
  /// header is incomplete.
  std::size_t take(std::string_view bytes);
  bool isWhole() const;
  /// True once: the header is complete, and the client waits for a go-ahead before it sends the body.
  bool awaitsContinue();
  /// Set if the bytes are not a valid request; what to answer.
  const std::optional<Refusal>& problem() const { return problem_; }
  /// The request, once it is complete.
  Request request() const;

 private:
  struct Parser;
  std::unique_ptr<Parser> parser_;
  std::optional<Refusal> problem_;
};

}  // namespace mirvane::http
