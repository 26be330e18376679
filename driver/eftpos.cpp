#include <cmath>

#include "driver/command.h"
#include "driver/fiscal_varlen_module2.h"
#include "driver/reply_fields.h"
#include "interface/cls_eft.h"

namespace mirvane {
namespace {

constexpr std::size_t kDescription = 10;

std::uint8_t byteOf(int value) { return convertTo<std::uint8_t>(Value(std::int32_t{value})); }

// The device keeps the middleware flag inside the enabled flag of what is written; what is read has both.
Text wholeRecord(TextView code, const clsEFT& c) {
  return Command(code)
      .integer(c.eftId)
      .integer(byteOf(c.eftEnabled + c.eftMDW))
      .integer(c.eftPort)
      .integer(c.eftTimeout)
      .verbatim(c.eftIP)
      .text(c.eftDescription, kDescription)
      .integer(c.eftVariant)
      .integer(c.bitmap_Main)
      .integer(c.bitmap_2)
      .integer(c.bitmap_3)
      .integer(c.bitmap_4)
      .verbatim(c.MDW_ACQ)
      .verbatim(c.MDW_TID)
      .verbatim(c.eft_TRANS)
      .integer(c.eft_ECRIDFormat)
      .str();
}

}  // namespace

void FiscalVarlenModule2::eftRead(clsEFT& c, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  read(Command(u"E/0/").integer(c.eftId).str() + Text(7, u'/'), {Result, Exresult, SupressError_},
       [&](const ReplyFields& fields) {
         c.eftEnabled = fields.integer<std::int16_t>(0);
         c.eftIP = fields.text(1);
         c.eftPort = fields.integer<std::int32_t>(2);
         c.eftDescription = fields.text(3);
         c.eftVariant = fields.integer<std::int16_t>(4);
         c.eftTimeout = fields.integer<std::int16_t>(5);
         c.bitmap_Main = fields.integer<std::int16_t>(6);
         c.bitmap_2 = fields.integer<std::int16_t>(7);
         c.bitmap_3 = fields.integer<std::int16_t>(8);
         c.bitmap_4 = fields.integer<std::int16_t>(9);
         c.eftTID = fields.text(10);
         c.eftMDW = convertTo<std::int16_t>(Value(std::trunc(fields.number(11))));
         c.MDW_ACQ = fields.text(12);
         c.MDW_TID = fields.text(13);
         c.eft_TRANS = fields.text(14);
         c.eft_ECRIDFormat = fields.integer<std::int16_t>(15);
       });
}

void FiscalVarlenModule2::eftWrite(clsEFT& c, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  send(wholeRecord(u"E/1/", c), Result, Exresult, SupressError_);
}

void FiscalVarlenModule2::eftdel(clsEFT& c, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  send(wholeRecord(u"E/4/", c), Result, Exresult, SupressError_);
}

void FiscalVarlenModule2::eftTest(clsEFT& c, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  const Text command = Command(u"E/2/")
                           .integer(c.eftId)
                           .integer(byteOf(c.eftEnabled))
                           .integer(c.eftPort)
                           .integer(c.eftTimeout)
                           .verbatim(c.eftIP)
                           .text(c.eftDescription, kDescription)
                           .verbatim(u"1")
                           .verbatim(u"0")
                           .str();
  send(command, Result, Exresult, SupressError_);
}

}  // namespace mirvane
