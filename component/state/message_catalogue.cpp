#include "state/message_catalogue.h"

#include <algorithm>

#include "state/module_state.h"
#include "text/code_page.h"
#include "text/number_text.h"

namespace mirvane {
namespace {

constexpr std::uint64_t kFieldLength = 100;
constexpr std::uint64_t kLineEndLength = 2;

}  // namespace

Text langMessage(std::int32_t msgNo, std::uint8_t lang) {
  platform::Files& files = moduleState().platform->files;
  const auto file = files.read(files.componentFolder() + u"\\Lang.dat");
  if (!file || file->empty()) return {};
  const std::uint64_t languages = static_cast<std::uint8_t>(file->front());
  const auto record = static_cast<std::uint64_t>(std::max(msgNo, 1) - 1);
  const std::uint64_t field = 1 + record * (languages * kFieldLength + kLineEndLength) + lang * kFieldLength;
  if (lang >= languages || field + kFieldLength > file->size()) return {};

  Text text = fromCodePage(std::string_view(*file).substr(static_cast<std::size_t>(field), kFieldLength));
  text.resize(text.find_last_not_of(u' ') + 1);
  if (text.empty()) return u"Message #" + numberText(msgNo) + u" Lang = " + numberText(std::int32_t{lang});
  for (auto at = text.find(u'~'); at != Text::npos; at = text.find(u'~', at + 2)) text.replace(at, 1, u"\r\n");
  return text.substr(0, text.find(u'"'));
}

}  // namespace mirvane
