#include "tools/result_codes.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace mirvane::test {
namespace {

TEST(ResultCodes, TheTextTellsWhoGaveTheNumber) {
  EXPECT_EQ(findResultCode(100, "Battery Error")->name, "battery");
  EXPECT_EQ(findResultCode(100, "Λάθος τύπος Φορολ. Εκτυπωτή")->name, "no-device");
  EXPECT_EQ(findResultCode(25, "DEVICE STATUS:Tέλος Χαρτιού !")->name, "paper-end");
  EXPECT_EQ(findResultCode(-6, "")->text, "Η θύρα της ταμειακής δεν είναι ανοικτή!");
  EXPECT_EQ(findResultCode(167, ""), nullptr);
}

TEST(ResultCodes, AnExplanationThatIsMissingOrWrongIsAnError) {
  const std::string_view spoiled[][3] = {
      {"[151 152 ", "[151 ", "152 is not explained"},
      {"[151 152 ", "[151 151 ", "151 is explained twice, or is no result"},
      {"[166 sale-type]", "[166 paper-end]", "166 has no name of its own"},
      {"cashier.el: Περιμένετε.\n", "", "[146 busy-server] lacks cashier.el"},
      {"program: @mended", "program: @amended", "there is no {amended}"},
      {"repeat: no\n\n[159", "repeat: yes\n\n[159", "158: the component holds it otherwise with repeating"}};
  for (const auto& [from, to, problem] : spoiled) {
    std::string text(kResultCodesText);
    text.replace(text.find(from), from.size(), to);
    try {
      parseResultCodes(text);
      ADD_FAILURE() << problem;
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string_view(error.what()).find(problem), std::string_view::npos) << error.what();
    }
  }
}

}  // namespace
}  // namespace mirvane::test
