#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "http/message.h"

namespace mirvane::http {

/// Reads one request out of the bytes of a connection.
class RequestReader {
 public:
  static constexpr std::size_t kLongestBody = 65'536;

  RequestReader();
  ~RequestReader();

  /// Takes from the front of what has come and was not taken yet, and returns how many bytes it took: none behind the
  /// request's end, or while a header is not whole.
  std::size_t take(std::string_view bytes);
  bool isWhole() const;
  /// Once: the header is there, and the client waits for a word before it sends the body.
  bool awaitsContinue();
  /// The bytes are no request that can be taken; what to answer.
  const std::optional<Refusal>& problem() const { return problem_; }
  /// The request, which is whole.
  Request request() const;

 private:
  struct Parser;
  std::unique_ptr<Parser> parser_;
  std::optional<Refusal> problem_;
};

}  // namespace mirvane::http
