// Journals of any kind. An input: a byte of how (1 network, 2 framed, 4 without the window, 8 without closing the day,
// 16 the earlier form, 32 no device), then the device's replies, one a line; with no device a file's name in UTF-8, its
// Z number in one byte, and its content. Where it is written is the machine's own concern: see Disk.

#include <algorithm>

#include "fuzz/machine.h"
#include "support/electronic_journal.h"
#include "text/code_page.h"

namespace mirvane::fuzz {
namespace {

/// Looks on at a journal that comes in whole replies, and remembers the pieces that have to be on the disk.
class Reader {
 public:
  explicit Reader(bool savesAll) : savesAll_(savesAll) {}

  void see(const std::string& command, const Reply& reply) {
    if (command != "Q/" || !reply.succeeded() || !hasStatus(reply.raw()) || reply.countAll() < 3) return;
    const Text& state = reply.textAt(0);
    const bool isSummary = name_.ends_with(u"_s.txt");
    if (state == u"1" && !reply.textAt(1).empty()) open_.push_back(toCodePage(reply.textAt(1)));
    if (state == u"0" || state == u"2" || (state == u"3" && (savesAll_ || isSummary))) {
      // What has no name cannot be saved; the device names every file.
      if (savesAll_ || !name_.empty()) complete_.insert(complete_.end(), open_.begin(), open_.end());
      open_.clear();
    }
    if (state == u"0") name_ = reply.textAt(2);
  }

  void requireSaved(const std::vector<std::string>& written) const {
    for (const std::string& piece : complete_) {
      const auto holds = [&piece](const std::string& file) { return file.find(piece) != std::string::npos; };
      require(std::ranges::any_of(written, holds), "a piece of the journal is in no file");
    }
  }

 private:
  bool savesAll_;
  Text name_;
  std::vector<std::string> open_, complete_;
};

void save(FiscalJournal& journal, Input input, Machine& machine) {
  Text name = fromUtf8(input.line());
  auto zNumber = static_cast<std::int16_t>(static_cast<std::uint8_t>(input.byte()) - 128);
  Text data = fromCodePage(input.rest());
  Text copy = data;
  if (passes([&] { journal.EJFileSave(name, data, name); })) {
    require(machine.disk.written[0] == toCodePage(copy) + "\r\n", "the file holds the text");
  }
  if (passes([&] { journal.eEJFileSave(name, data, zNumber); })) require(data.empty(), "emptied once it is saved");
}

void run(Input input) {
  const unsigned how = input.byte();
  Machine machine;
  const auto journal = std::make_shared<FiscalJournal>();
  if ((how & 32U) != 0) return save(*journal, input, machine);

  const ObjectPtr till = machine.connected((how & 1U) != 0);
  const bool isEarlierForm = (how & 16U) != 0;
  Reader reader(isEarlierForm);
  machine.script(input, (how & 2U) != 0, [&](const std::string& command, const Reply* reply) {
    if (reply != nullptr && (how & 2U) != 0) reader.see(command, *reply);
  });
  Text text;
  bool withForm = (how & 4U) == 0;
  bool closesDay = (how & 8U) == 0;
  std::int32_t result = -1;
  const auto take = [&] {
    result = isEarlierForm ? journal->MakeZreport(text) : journal->eMakeZreport(text, closesDay, withForm);
  };
  if (passes(take) && result == 0) reader.requireSaved(machine.disk.written);
}

}  // namespace
}  // namespace mirvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({data, size});
  return 0;
}
