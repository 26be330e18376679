// Catalogue files of any kind. An input: eight bytes of the message's number, a byte of its language, the file.

#include "fuzz/machine.h"
#include "state/message_catalogue.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace mirvane::fuzz;
  Input input(data, size);
  const auto number = static_cast<std::int32_t>(input.number());
  const std::uint8_t language = input.byte();
  Machine machine;
  std::string& catalogue = machine.disk.contents[u"C:\\till\\Lang.dat"];
  catalogue = input.rest();
  const mirvane::Text text = mirvane::langMessage(number, language);
  require(text.size() <= 200, "a field of 100 characters");
  require(text.find_first_of(u"~\"") == mirvane::Text::npos, "marks that are none of the text");
  require(text.empty() || catalogue.size() >= 101, "a text out of nothing");
  return 0;
}
