#pragma once

#include "http/message.h"
#include "service/board.h"
#include "service/store.h"
#include "service/tokens.h"

namespace mirvane::service {

/// Answers the service's HTTP requests: see page/openapi.json. Runs on one thread.
class Interface {
 public:
  struct Options {
    /// Null if everybody may ask, which is allowed only on this machine.
    Tokens* tokens = nullptr;
    /// Maximum number of unfinished jobs; one more is refused.
    int mostUnfinished = 10'000;
    /// Called when there is new work.
    std::function<void()> wake = [] {};
    /// Milliseconds since 1970.
    std::function<std::int64_t()> now;
    /// The name of this service's register in a store that several share.
    std::string registerName = {};
  };
  Interface(Store& store, Board& board, Options options);

  /// Stores in the request what it needs when that is handled again.
  http::Answer answer(http::Request& request);
  /// Makes a problem document.
  static http::Answer problem(const http::Refusal& refusal);

 private:
  struct Call;
  struct Route;
  static const Route kRoutes[];

  http::Answer route(http::Request& request);
  void requireToken(const http::Request& request) const;

  http::Answer put(Call& call);
  http::Answer get(Call& call);
  http::Answer cancel(Call& call);
  http::Answer list(Call& call);
  http::Answer putPayment(Call& call);
  http::Answer settle(Call& call);
  http::Answer getFile(Call& call);
  http::Answer changes(Call& call);
  http::Answer events(Call& call);
  http::Answer status(Call& call);
  http::Answer totals(Call& call);
  http::Answer acceptRegister(Call& call);
  http::Answer voidOpen(Call& call);
  http::Answer isHealthy(Call& call);
  http::Answer isReady(Call& call);
  http::Answer metrics(Call& call);

  Job required(const Call& call);
  void change(Job& job);
  http::Answer answerTo(const Call& call, const Job& job);

  Store& store_;
  Board& board_;
  const Options options_;
};

}  // namespace mirvane::service
