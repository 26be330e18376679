#include <cmath>

#include "driver/fiscal_varlen_module2.h"

// The register's card terminal settings. eftId selects the terminal. eftEnabled and eftMDW are written as one byte: a
// sum above 255 raises overflow, and nothing is sent.
namespace mirvane {
namespace {

constexpr std::size_t kDescription = 10;

std::uint8_t byteOf(int value) { return convertTo<std::uint8_t>(Value(std::int32_t{value})); }

// The register expects the middleware flag within the enabled flag; it returns the two separately.
auto recordWrite(TextView code) {
  return [code](Driver& driver, clsEFT& c, Outcome outcome) {
    driver.send(Command(code)
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
                    .integer(c.eft_ECRIDFormat),
                outcome);
  };
}

void readRecord(Driver& driver, clsEFT& c, Outcome outcome) {
  Command command(u"E/0/");
  command.integer(c.eftId);
  for (int unused = 0; unused < 7; ++unused) command.empty();
  const Reply reply = driver.send(command, outcome);
  if (!reply.succeeded()) return;
  c.eftEnabled = reply.integer<std::int16_t>(0);
  c.eftIP = reply.text(1);
  c.eftPort = reply.integer<std::int32_t>(2);
  c.eftDescription = reply.text(3);
  c.eftVariant = reply.integer<std::int16_t>(4);
  c.eftTimeout = reply.integer<std::int16_t>(5);
  c.bitmap_Main = reply.integer<std::int16_t>(6);
  c.bitmap_2 = reply.integer<std::int16_t>(7);
  c.bitmap_3 = reply.integer<std::int16_t>(8);
  c.bitmap_4 = reply.integer<std::int16_t>(9);
  c.eftTID = reply.text(10);
  c.eftMDW = convertTo<std::int16_t>(Value(std::trunc(reply.number(11))));
  c.MDW_ACQ = reply.text(12);
  c.MDW_TID = reply.text(13);
  c.eft_TRANS = reply.text(14);
  c.eft_ECRIDFormat = reply.integer<std::int16_t>(15);
}

}  // namespace

void addCardTerminals(Rows& rows) {
  using namespace contract;
  rows.implement<eftRead>(readRecord)
      .implement<eftWrite>(recordWrite(u"E/1/"))
      .implement<eftdel>(recordWrite(u"E/4/"))
      // Makes the register test the terminal.
      .implement<eftTest>([](Driver& driver, clsEFT& c, Outcome outcome) {
        driver.send(Command(u"E/2/")
                        .integer(c.eftId)
                        .integer(byteOf(c.eftEnabled))
                        .integer(c.eftPort)
                        .integer(c.eftTimeout)
                        .verbatim(c.eftIP)
                        .text(c.eftDescription, kDescription)
                        .verbatim(u"1")
                        .verbatim(u"0"),
                    outcome);
      });
}

}  // namespace mirvane
