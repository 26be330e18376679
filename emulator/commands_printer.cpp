#include "emulator/command.h"

namespace mirvane::emulator {
namespace {

Code printComment(Register& machine, const Fields& fields, ReplyFields&) {
  const int size = fields.whole(1);
  if (size < 0 || size > 4) return Code::kFieldRange;
  machine.paper.sized(fields.text(0), size, false);
  return Code::kOk;
}

Code showText(Register& machine, const Fields& fields, ReplyFields&) {
  const int line = fields.whole(3);
  if (line < 1 || line > std::ssize(machine.display)) return Code::kFieldRange;
  machine.display[static_cast<std::size_t>(line) - 1] = fields.text(4);
  return Code::kOk;
}

Code feed(Register& machine, const Fields& fields, ReplyFields&) {
  if (fields.whole(0) < 1) return Code::kFieldRange;
  machine.paper.feed(fields.whole(0));
  return Code::kOk;
}

Code openDrawer(Register& machine, const Fields&, ReplyFields&) {
  ++machine.drawerOpenings;
  return Code::kOk;
}

Code cut(Register& machine, const Fields& fields, ReplyFields&) {
  if (fields.bytes(1) != "0" && fields.bytes(1) != "1") return Code::kFieldRange;
  // A receipt leaves the printer in one piece.
  if (machine.fiscal.receipt || machine.fiscal.cashDocument) return Code::kTransactionOpen;
  machine.paper.cut(fields.bytes(1) == "1");
  return Code::kOk;
}

}  // namespace

const std::vector<Command>& printerCommands() {
  using namespace field;
  static const std::vector<Command> kCommands = {
      // text, size
      {"P", "", {text(Paper::kColumns), whole(1)}, true, printComment},
      // -, -, -, line, text
      {"2", "10", {whole(2), whole(1), whole(1), whole(1), text(20)}, false, showText},
      {"F", "", {whole(2)}, true, feed},
      {"p", "1", {whole(1)}, false, openDrawer},
      {"p", "2", {whole(1), text(1)}, true, cut},
  };
  return kCommands;
}

}  // namespace mirvane::emulator
