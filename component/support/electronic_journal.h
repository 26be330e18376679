#pragma once

#include "automation/object.h"
#include "protocol/reply.h"

namespace mirvane {

/// Copies the register's electronic journal into text files, normally when the day is closed. Files are in code page
/// 1253, one copy in each journal folder. A file appears complete or not at all.
///
/// A file error raises typeMismatch, by which programs recognise it. A register error is the result.
class FiscalJournal : public ObjectOf<FiscalJournal> {
 public:
  static constexpr std::string_view kName = "FiscalJournal";
  static const ClassInfo& describe();

  /// The journal box, an optional component that decides the journal folders; Nothing if it is not installed.
  ObjectPtr bBox();
  /// Assigns to the default member of the journal box; the box stays the same. Raises objectNotSet if there is none.
  void setbBox(ObjectPtr value);

  /// The earlier form of eMakeZreport: ends the day's sales, shows the journal during transfer and saves the whole day
  /// as one pair of files with EJFileSave.
  std::int32_t MakeZreport(Text& errorDesc);
  /// Reads the journal from the register, file by file. `bExecZReport`: ends the day's sales first; otherwise reads
  /// what the day holds so far. `bWithForm`: shows the journal during transfer; otherwise shows progress on the
  /// register's display and acknowledges every file. Returns 0 with "0" in errorDesc, or the register's code with code,
  /// "~" and its text in errorDesc.
  std::int32_t eMakeZreport(Text& errorDesc, bool& bExecZReport, bool& bWithForm);
  /// Does the work of eMakeZreport; returns the register's reply that ended it.
  Reply copyDay(bool closesDay, bool withForm);
  /// The errorDesc for that reply: "0", or code, "~" and text.
  static Text outcomeText(const Reply& end);
  /// Saves a day: `Filedata` as Filename + "_a.txt" and `FileSign` as Filename + "_b.txt". The first 11 characters of
  /// Filename (the register's serial number) and the next 4 (the Z number) are the folders. Returns 0.
  std::int32_t EJFileSave(Text& Filename, Text& Filedata, Text& FileSign);
  /// Saves one file under its own name, in the folders of the serial number and of `nZRep` in four digits, and empties
  /// Filedata. Returns 0.
  std::int32_t eEJFileSave(Text& Filename, Text& Filedata, std::int16_t& nZRep);

  /// The journal folders, with "$" in place of the day's own folders: those that the journal box gives, or the fixed
  /// ones if it is not installed.
  std::vector<Text> folderPatterns();

 private:
  Reply copyWholeDay();
  std::vector<Text> folders(TextView subPath);

  ObjectPtr box_;
};

}  // namespace mirvane
