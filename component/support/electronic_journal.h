#pragma once

#include "automation/object.h"
#include "protocol/reply.h"

namespace mirvane {

/// Copies the device's electronic journal into text files, normally when the fiscal day is closed. Files are in code
/// page 1253, one copy in each journal folder; a file appears there whole or not at all.
///
/// A file error raises typeMismatch to the caller: programs know it as the sign of one. A device error is the result.
class FiscalJournal : public ObjectOf<FiscalJournal> {
 public:
  static constexpr std::string_view kName = "FiscalJournal";
  static const ClassInfo& describe();

  /// The journal box, an optional component that tells the journal folders; Nothing when it is not installed.
  ObjectPtr bBox();
  /// Assigns to the default member of the journal box; the box stays the same. Raises objectNotSet without one.
  void setbBox(ObjectPtr value);

  /// The earlier form of eMakeZreport: closes the fiscal day, shows the journal while it comes and saves the whole day
  /// as one pair of files by EJFileSave.
  std::int32_t MakeZreport(Text& errorDesc);
  /// Takes the journal from the device, file by file. `bExecZReport`: closes the fiscal day; otherwise reads what the
  /// day holds so far. `bWithForm`: shows the journal while it comes; otherwise tells on the device's display and
  /// acknowledges every file. 0 and "0" in errorDesc; or the device's code, and errorDesc is code, "~" and its text.
  std::int32_t eMakeZreport(Text& errorDesc, bool& bExecZReport, bool& bWithForm);
  /// What eMakeZreport does, and the device's reply that ended it.
  Reply copyDay(bool closesDay, bool withForm);
  /// What the two tell of that reply: "0", or code, "~" and its text.
  static Text outcomeText(const Reply& end);
  /// Saves a day: `Filedata` as Filename + "_a.txt" and `FileSign` as Filename + "_b.txt". The first eleven characters
  /// of Filename, the device's serial number, and the next four, the Z number, are the folders. Returns 0.
  std::int32_t EJFileSave(Text& Filename, Text& Filedata, Text& FileSign);
  /// Saves one file under its own name, in the folders of the serial number and of `nZRep` in four digits, and empties
  /// Filedata. Returns 0.
  std::int32_t eEJFileSave(Text& Filename, Text& Filedata, std::int16_t& nZRep);

  /// The journal folders, with a "$" where the day's own folders stand: those that the journal box tells, or the fixed
  /// ones where it is not installed.
  std::vector<Text> folderPatterns();

 private:
  Reply copyWholeDay();
  std::vector<Text> folders(TextView subPath);

  ObjectPtr box_;
};

}  // namespace mirvane
