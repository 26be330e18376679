#include "support/electronic_journal.h"

#include <algorithm>

#include "interface/door.h"
#include "interface/send_by_name.h"
#include "state/module_state.h"
#include "state/service.h"
#include "text/code_page.h"
#include "text/number_text.h"
#include "text/text.h"

namespace mirvane {
namespace {

constexpr TextView kBoxName = u"quorndll_webupdate.box";
constexpr TextView kFixedFolders = u"c:\\bbox\\$\\;c:\\bboxBackUp\\$\\";

constexpr std::uint32_t kPollMilliseconds = 5;

constexpr std::size_t kSerialNumberLength = 11;
constexpr std::size_t kZNumberLength = 4;

constexpr TextView kSummarySuffix = u"_s.txt";
constexpr TextView kFileSuffix = u".txt";

// The system drops blanks and dots at the end of a name.
TextView withoutEnd(TextView name) { return name.substr(0, name.find_last_not_of(u". ") + 1); }

char16_t upper(char16_t c) { return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c; }

Text inCapitals(TextView name) {
  Text capitals(name);
  std::ranges::transform(capitals, capitals.begin(), upper);
  return capitals;
}

bool hasSuffix(TextView name, TextView suffix) { return inCapitals(name).ends_with(inCapitals(suffix)); }

// Programs rely on a type mismatch as the sign of a file error.
[[noreturn]] void failOnFile() { throw AutomationError(AutomationCode::typeMismatch); }

// The system treats such a name as a device in every folder, whatever follows a dot.
bool isDevice(TextView name) {
  constexpr TextView kDevices[] = {u"CON", u"PRN", u"AUX", u"NUL", u"CONIN$", u"CONOUT$"};
  constexpr TextView kNumberedDevices[] = {u"COM", u"LPT"};
  Text word = inCapitals(withoutEnd(name.substr(0, name.find(u'.'))));
  const bool isNumbered =
      !word.empty() && TextView(u"0123456789\u00B9\u00B2\u00B3").find(word.back()) != TextView::npos;
  if (isNumbered) word.pop_back();
  const auto isOneOf = [&word](const auto& names) {
    return std::find(std::begin(names), std::end(names), word) != std::end(names);
  };
  return isNumbered ? isOneOf(kNumberedDevices) : isOneOf(kDevices);
}

// Not the folder itself or the one above (ignoring trailing blanks), and not a device.
bool isFolderName(TextView name) {
  return (name.find_first_not_of(u". ") != TextView::npos || name.find(u'.') == TextView::npos) && !isDevice(name);
}

// The name comes from the register or a program. It must not lead out of the journal folders, nor may its parts that
// become folders; and the system would drop dots and blanks at its end.
void requirePlain(TextView name) {
  const auto isForbidden = [](char16_t c) { return c < u' ' || c == u'/' || c == u'\\' || c == u':'; };
  const TextView serialNumber = name.substr(0, kSerialNumberLength);
  const TextView zNumber = name.substr(serialNumber.size(), kZNumberLength);
  if (std::any_of(name.begin(), name.end(), isForbidden) || withoutEnd(name) != name || name.empty() ||
      !isFolderName(name) || !isFolderName(serialNumber) || !isFolderName(zNumber)) {
    failOnFile();
  }
}

Text subPath(TextView fileName, TextView zNumber) {
  return Text(fileName.substr(0, kSerialNumberLength)).append(u"\\").append(zNumber);
}

void save(const Text& folder, const Text& name, TextView data) {
  platform::Files& files = moduleState().platform->files;
  if (!files.makeFolder(folder) || !files.replace(folder + name, toCodePage(data) + "\r\n")) failOnFile();
}

// The Z number from a reply's first field.
std::int16_t zNumberIn(const Reply& reply, double later = 0) {
  return convertTo<std::int16_t>(Value(convertTo<double>(Value(reply.textAt(0))) + later));
}

// Asks until the register has prepared its journal.
Reply askUntilPrepared(TextView command) {
  for (;;) {
    Reply reply = askCurrentDriver(Text(command));
    if (!reply.is(DeviceCode::kPreparing)) return reply;
    pause(kPollMilliseconds);
  }
}

// The journal during its transfer.
struct Download {
  // Null if the operator is not shown it.
  std::unique_ptr<platform::JournalView> view;
  Text fileName;
  Text text;
  std::size_t count = 0;

  // Polls until the register has no more. `whenComplete` receives each complete file, `whenNext` what there is of one
  // when the next starts. Returns the reply that ended it. The journal needs every piece, so a reply that says nothing
  // ends the transfer, and so does a piece of another file than the current one. If files are kept apart, pieces of a
  // file that never started are skipped, and the journal is then incomplete too.
  template <class WhenComplete, class WhenNext>
  Reply run(bool tellsFilesApart, WhenComplete whenComplete, WhenNext whenNext) {
    bool hasBegun = false;
    bool lacksBeginning = false;
    for (;;) {
      pause(kPollMilliseconds);
      processEvents();
      Reply reply = askCurrentDriver(u"Q/");
      processEvents();
      if (!reply.succeeded()) return lacksBeginning ? lost() : reply;
      if (!hasStatus(reply.raw())) return lost();
      // State, piece and file name; the file name may be missing.
      if (reply.countAll() < 3) continue;
      const Text& state = reply.textAt(0);
      const Text name(withoutEnd(reply.textAt(2)));
      const bool isPiece = state == u"1" || state == u"2";
      if (isPiece && !hasBegun && tellsFilesApart) {
        lacksBeginning = true;
      } else if (isPiece && hasBegun && hasSuffix(name, kFileSuffix) && inCapitals(name) != inCapitals(fileName)) {
        return lost();
      } else if (state == u"0") {
        hasBegun = true;
        whenNext();
        fileName = name;
        if (view) view->beginFile(fileName);
      } else if (state == u"1") {
        append(reply.textAt(1));
      } else if (state == u"2") {
        whenComplete();
      } else if (state == u"3") {
        return lacksBeginning ? lost() : reply;
      }
    }
  }

 private:
  static Reply lost() { return {link_result::kNoAnswer, link_result::kNoAnswerText}; }
  void append(TextView piece) {
    text += piece;
    count += piece.size();
    if (view) view->append(piece, count);
  }
  void processEvents() {
    if (view) view->processEvents();
  }
};

}  // namespace

ObjectPtr FiscalJournal::bBox() {
  const auto create = moduleState().createObject;
  if (box_ == nullptr && create != nullptr) box_ = create(kBoxName);
  return box_;
}

void FiscalJournal::setbBox(ObjectPtr value) {
  const ObjectPtr box = bBox();
  if (box == nullptr) throw AutomationError(AutomationCode::objectNotSet);
  const Argument argument[] = {Argument(Value(std::move(value)))};
  box->invoke(kDefaultMember, ClassInfo::Access::write, argument);
}

std::vector<Text> FiscalJournal::folderPatterns() {
  Text list(kFixedFolders);
  bBox();
  // The next file looks for the box again, even if this one fails.
  if (const ObjectPtr box = std::exchange(box_, nullptr)) {
    Text notUsed;
    list.clear();
    box->call("GetDllPath", notUsed, list);
  }
  std::vector<Text> all = split(list, u';');
  std::erase(all, Text());
  return all;
}

std::vector<Text> FiscalJournal::folders(TextView subPath) {
  std::vector<Text> all = folderPatterns();
  for (Text& folder : all) {
    for (std::size_t at = 0; (at = folder.find(u'$', at)) != Text::npos; at += subPath.size()) {
      folder.replace(at, 1, subPath);
    }
  }
  if (all.empty()) failOnFile();  // no place for the file
  return all;
}

std::int32_t FiscalJournal::EJFileSave(Text& Filename, Text& Filedata, Text& FileSign) {
  requirePlain(Filename);
  const TextView name = Filename;
  const TextView zNumber = name.substr(std::min(kSerialNumberLength, name.size()), kZNumberLength);
  for (const Text& folder : folders(subPath(name, zNumber))) {
    save(folder, Filename + u"_a.txt", Filedata);
    save(folder, Filename + u"_b.txt", FileSign);
  }
  return 0;
}

std::int32_t FiscalJournal::eEJFileSave(Text& Filename, Text& Filedata, std::int16_t& nZRep) {
  requirePlain(Filename);
  Text digits = numberText(std::int32_t{nZRep});
  const std::size_t sign = nZRep < 0 ? 1 : 0;
  digits.insert(sign, kZNumberLength - std::min(kZNumberLength, digits.size() - sign), u'0');
  for (const Text& folder : folders(subPath(Filename, digits))) save(folder, Filename, Filedata);
  Filedata.clear();
  return 0;
}

Text FiscalJournal::outcomeText(const Reply& end) {
  const Text code = numberText(std::int32_t{end.result});
  return end.succeeded() ? code : code + u"~" + end.message;
}

std::int32_t FiscalJournal::eMakeZreport(Text& errorDesc, bool& bExecZReport, bool& bWithForm) {
  const Reply end = copyDay(bExecZReport, bWithForm);
  errorDesc = outcomeText(end);
  return end.result;
}

Reply FiscalJournal::copyDay(bool closesDay, bool withForm) {
  Reply day = askUntilPrepared(closesDay ? u"A/" : u"#/");
  if (!day.succeeded()) return day;
  std::int16_t zNumber = zNumberIn(day, closesDay ? 0 : 1);

  Download journal;
  if (withForm) {
    journal.view = moduleState().platform->screen.showJournal();
  } else {
    askCurrentDriver(u"7/1/ΑΝΑΓΝΩΣΗ ΦΟΡΟΛ/");
  }
  Reply end = journal.run(
      true,
      [&] {
        eEJFileSave(journal.fileName, journal.text, zNumber);
        if (!withForm) askCurrentDriver(u"7/2/OK/");
      },
      [&] {
        if (!journal.fileName.empty() && !journal.text.empty()) eEJFileSave(journal.fileName, journal.text, zNumber);
      });
  if (end.succeeded() && hasSuffix(journal.fileName, kSummarySuffix) && !journal.text.empty()) {
    eEJFileSave(journal.fileName, journal.text, zNumber);
  }
  return end;
}

std::int32_t FiscalJournal::MakeZreport(Text& errorDesc) {
  const Reply end = copyWholeDay();
  errorDesc = outcomeText(end);
  return end.result;
}

Reply FiscalJournal::copyWholeDay() {
  Reply name = askUntilPrepared(u")/");
  if (!name.succeeded()) return name;
  Text fileName = name.textAt(0);
  Reply day = askUntilPrepared(u"A/");
  if (!day.succeeded()) return day;
  Text signature = day.textAt(1);

  Download journal;
  journal.view = moduleState().platform->screen.showJournal();
  Reply end = journal.run(
      false, [] {}, [] {});
  if (end.succeeded()) EJFileSave(fileName, journal.text, signature);
  return end;
}

const ClassInfo& FiscalJournal::describe() {
  static const ClassInfo info =
      throughDoor(ClassBuilder<FiscalJournal>()
                      .property("bBox", &FiscalJournal::bBox, &FiscalJournal::setbBox)
                      .method("MakeZreport", &FiscalJournal::MakeZreport, {output("errorDesc")})
                      .method("eMakeZreport", &FiscalJournal::eMakeZreport,
                              {output("errorDesc"), optional("bExecZReport", true), optional("bWithForm", true)})
                      .method("EJFileSave", &FiscalJournal::EJFileSave, {"Filename", "Filedata", "FileSign"})
                      .method("eEJFileSave", &FiscalJournal::eEJFileSave, {"Filename", "Filedata", "nZRep"})
                      .build());
  return info;
}

}  // namespace mirvane
