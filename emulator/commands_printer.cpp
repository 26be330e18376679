#include "emulator/command.h"

namespace mirvane::emulator {
namespace {

Code printComment(Register& machine, const Fields& fields, ReplyWriter&) {
  const int size = fields.whole(1);
  if (size < 0 || size > 4) return Code::kFieldRange;
  // What is printed now would be missing from the day's journal.
  if (machine.journal.isClosing()) return Code::kClosing;
  machine.paper.sized(fields.text(0), size, false);
  return Code::kOk;
}

Code show(Register& machine, int line, const Text& text) {
  if (line < 1 || line > std::ssize(machine.display)) return Code::kFieldRange;
  if (machine.fiscal.settings.usesDisplay) machine.display[static_cast<std::size_t>(line) - 1] = text;
  return Code::kOk;
}

Code showText(Register& machine, const Fields& fields, ReplyWriter&) {
  return show(machine, fields.whole(3), fields.text(4));
}

Code showMessage(Register& machine, const Fields& fields, ReplyWriter&) { return show(machine, 1, fields.text(1)); }

Code feed(Register& machine, const Fields& fields, ReplyWriter&) {
  if (fields.whole(0) < 1) return Code::kFieldRange;
  machine.paper.feed(fields.whole(0));
  return Code::kOk;
}

Code openDrawer(Register& machine, const Fields&, ReplyWriter&) {
  ++machine.drawerOpenings;
  return Code::kOk;
}

Code cut(Register& machine, const Fields& fields, ReplyWriter&) {
  // A document leaves the printer in one piece.
  Code code = machine.fiscal.documentProblem();
  if (code == Code::kOk && machine.conditions.cutterError) code = Code::kCutterError;
  if (code == Code::kOk) machine.paper.cut(fields.flag(1));
  return code;
}

}  // namespace

const std::vector<CommandRow>& printerCommands() {
  using namespace field;
  static const std::vector<CommandRow> kCommands = {
      {"P", "", "comment", {text("text", Paper::kColumns), whole("size", 1)}, true, printComment},
      {"2",
       "10",
       "display",
       {selector(2), selector(), selector(), whole("line", 1), text("text", 20)},
       false,
       showText},
      {"7", "1", "display message", {selector(), text("text", 20)}, false, showMessage},
      {"7", "2", "display message", {selector(), text("text", 20)}, false, showMessage},
      {"F", "", "feed", {whole("lines", 2)}, true, feed},
      {"p", "1", "open the drawer", {selector()}, false, openDrawer},
      {"p", "2", "cut", {selector(), flag("full")}, true, cut},
  };
  return kCommands;
}

}  // namespace mirvane::emulator
