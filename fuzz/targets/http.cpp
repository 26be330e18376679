// Bytes of any kind on a connection of the emulator's web server. An input is the bytes; its first says how long the
// pieces are in which they come.

#include "emulator/program/web/api.h"
#include "fuzz/machine.h"
#include "http/request_reader.h"

namespace mirvane::fuzz {
namespace {

http::Answer answerTo(emulator::Station& station, http::Request& request) {
  try {
    http::refuseTrespass(request, {"till.shop"});
    return emulator::answer(station, request);
  } catch (const http::Refusal& refusal) {
    return refusal.answer();
  }
}

void serve(std::string_view bytes, std::size_t pieceSize) {
  emulator::Station station([](TextView) {});
  http::RequestReader reader;
  std::string ahead;
  while (!bytes.empty() && !reader.isWhole() && !reader.problem()) {
    ahead += bytes.substr(0, pieceSize);
    bytes.remove_prefix(std::min(pieceSize, bytes.size()));
    ahead.erase(0, reader.take(ahead));
    reader.awaitsContinue();
  }
  if (!reader.isWhole() || reader.problem()) return;
  http::Request request = reader.request();
  const http::Answer answer = answerTo(station, request);
  const std::string text = http::serialized(answer, false, request.isKeptAlive);
  require(text.starts_with("HTTP/1.1 ") && answer.status >= 200 && answer.status < 500, "every request has an answer");
  if (answer.type == "application/json") http::parseJson(answer.body);
}

}  // namespace
}  // namespace mirvane::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  mirvane::fuzz::serve(bytes, data[0] == 0 ? bytes.size() + 1 : data[0]);
  return 0;
}
