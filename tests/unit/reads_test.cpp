#include <sstream>

#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

/// One read. `outputs` names the arguments, or the properties of `record`, in the order in which they are taken, each
/// with the number of its field and, where that is not the same text, what it then holds.
struct Read {
  std::string member, record, command, fields, outputs;
};
const Read kReads[] = {
    {"getDate", "", "t/", "25-03~24 /", "d 0"},
    {"getTime", "", "t/", "250324/12:34/", "d 1"},
    {"getSerialNumber", "", "a/", "ΑΒΓ 01/", "sN 0"},
    {"getHeader", "", "h/", "1/Καλή μέρα/2/ b /3//4/~d/-7/e/",
     "line1 1 size1 0 line2 3 size2 2 line3 5 size3 4 line4 7 size4 6 line5 9 size5 8"},
    {"getFooter", "", "{/", "1/a/2/ b /32767/c/", "line1 1 size1 0 line2 3 size2 2 line3 5 size3 4"},
    {"getVatCategories", "", "e/", "6/13/24.5/0/36/", "VatA 0 VatB 1 VatC 2 VatD 3 VatE 4"},
    {"getFooter", "", "{/", "2x/a/2.5/b/3.5/c/", "line1 1 size1 0=0 line2 3 size2 2=2 line3 5 size3 4=4"},
    {"getVatCategories", "", "e/", "24abc/abc/-1.5.2/.5//", "VatA 0=24 VatB 1=0 VatC 2=-1.5 VatD 3=0.5 VatE 4=0"},
    {"transactionTotals", "clsTransTotal", "9/", "1.5/2.25/-3/4/6/70000/10.75/",
     "VatA 0 VatB 1 VatC 2 VatD 3 VatE 4 receiptNumber 5 receiptTotalAmt 6"},
    {"getSalesPerDepartment", "clsAccumulator", "D/5/", "Ποτά/1/2/33.5/44.25/", "Id 0=5 Desc 0 Amount 3 Count 4"},
    {"getSalesPerCategory", "clsAccumulator", "k/5/", "Ποτά/11.5/22.25/", "Id 0=5 Desc 0 Amount 1 Count 2"},
    {"getDailyTotals", "clsDailyAcc", "0/", "0.5/1.5/2.5/3.5/4.5/12.5/70006/70007/8.5/9.5/-10.5/11/12/13/14/15.25/",
     "VatA 0 VatB 1 VatC 2 VatD 3 VatE 4 VatSum 5 LegalReceiptCount 6 illLegalReceiptCount 7 amtVoid 8 amtRefund 9 "
     "amtCancel 10 amtPaymentType1 11 amtPaymentType2 12 amtPaymentType3 13 amtDiscount 14 amtMarkUP 15"},
    {"settingsRead", "clsParam", "s/", "300/Ταμείο/Άννα/1/2/3/400/255/0/",
     "printerId 0 printerDescription 1 cashierDesc 2 drawerOpenonTotal 3 printRECVATDetail 4 printRECFooterComments 5 "
     "printRECTopLogo 6 printerUSeCutter 7 useLCDdisplay 8=1 printRECPluDepartment 8=1 printREConNoSale 8=0 "
     "printRECBottomLogo 8=0 printerDrawerID 8=1 printerQuantityPrint 8=0"}};

class Reads : public DriverTest {
 protected:
  /// Reads into variables, or into a record, that hold 5 everywhere.
  std::uint32_t perform(const Read& read, const std::string& reply) {
    const ObjectPtr record = read.record.empty() ? nullptr : createObject(read.record);
    Value variables[10];
    std::vector<Argument> arguments;
    if (record) arguments.emplace_back(Value(record));
    outputs.clear(), after.clear();
    std::istringstream list(read.outputs);
    for (std::string name, field; list >> name >> field; outputs.emplace_back(name, field)) {
      if (record) put(*record, name, Text(u"5"));
      if (!record) arguments.emplace_back(&(variables[outputs.size()] = Text(u"5")));
    }
    arguments.insert(arguments.end(), {Argument(&Result), Argument(&Exresult), Argument(&SupressError_)});
    device.commands.clear();
    answers({reply}, "");
    const auto error = errorOf([&] { driver->invoke(read.member, ClassInfo::Access::callOrRead, arguments); });
    EXPECT_THAT(device.commands, ElementsAre(read.command));
    for (std::size_t i = 0; const auto& [name, field] : outputs) {
      after[name] = toUtf8(convertTo<Text>(record ? record->call(name) : variables[i++]));
    }
    return error;
  }

  std::vector<std::pair<std::string, std::string>> outputs;
  std::map<std::string, std::string> after;
};

TEST_F(Reads, FieldsGoToTheirOutputs) {
  for (const Read& read : kReads) {
    std::vector<std::string> fields;
    std::istringstream list(read.fields);
    for (std::string field; std::getline(list, field, '/');) fields.push_back(field);
    // The whole reply comes first: short ones must not take what it left behind.
    std::string reply = read.fields;
    for (std::size_t count = fields.size() + 1; count-- > 0; reply.resize(reply.rfind('/', reply.size() - 2) + 1)) {
      for (const std::string status : {"00/00/00/", "00/04/00/", "19/00/00/"}) {
        SCOPED_TRACE(testing::Message() << read.member << " " << status << reply);
        const std::size_t taken = status[0] == '1' ? 0 : count;
        EXPECT_EQ(perform(read, status + reply), status[0] == '1' || taken == fields.size() ? 0 : kBadIndex);
        EXPECT_EQ(Result, status[0] == '1' ? 25 : 0);
        for (const auto& [name, field] : outputs) {
          const std::size_t i = std::stoul(field), text = field.find('=') + 1;
          const std::string untouched = name == "useLCDdisplay" ? "4" : "5";
          EXPECT_EQ(after[name], i >= taken ? untouched : text > 0 ? field.substr(text) : fields[i]) << name;
        }
      }
    }
    EXPECT_TRUE(read.member != "getSerialNumber" || statusOf(*driver)->FiscalSN == u"ΑΒΓ 01") << "kept";
  }
}

}  // namespace
}  // namespace mirvane::test
