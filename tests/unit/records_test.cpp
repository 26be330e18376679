#include <set>

#include "interface/cls_eft.h"
#include "interface/cls_param.h"
#include "interface/dec2bin.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

using Access = ClassInfo::Access;

ObjectPtr create(std::string_view className) {
  for (const PublicClass& entry : publicClasses()) {
    if (entry.describe().name() == className) return entry.create();
  }
  ADD_FAILURE() << className << " cannot be created";
  return nullptr;
}

std::string typeName(const Type& type) {
  static constexpr const char* kNames[] = {"-", "b", "y", "i", "l", "d", "t", "v"};
  return type.name.empty() ? kNames[static_cast<std::size_t>(type.kind)] : std::string(type.name);
}

/// "name(parameter:type& parameter:type&?default):result", and "get name:type" or "put name:type" for a property.
std::string signature(const Member& member) {
  if (member.kind == MemberKind::put) {
    return "put " + std::string(member.name) + ":" + typeName(member.parameters.back().type);
  }
  std::string list;
  for (const Parameter& parameter : member.parameters) {
    const Value& preset = parameter.defaultValue;
    list.append(list.empty() ? "" : " ").append(parameter.name).append(":").append(typeName(parameter.type));
    list += parameter.byReference ? "&" : "";
    list += parameter.isOptional ? "?" : "";
    if (const auto* flag = std::get_if<bool>(&preset)) list += *flag ? "True" : "False";
    if (const auto* number = std::get_if<Short>(&preset)) list += std::to_string(*number);
  }
  const bool isGet = member.kind == MemberKind::get;
  if (!isGet || !list.empty()) list = "(" + list + ")";
  return (isGet ? "get " : "") + std::string(member.name) + list + ":" + typeName(member.result);
}

std::vector<std::string> signatures(const ClassInfo& info) {
  std::vector<std::string> rows;
  for (const Member& member : info.members()) rows.push_back(signature(member));
  return rows;
}

std::vector<std::string> words(const std::string& text) {
  std::vector<std::string> result;
  for (const Text& word : split(fromUtf8(text), u' ')) result.push_back(toUtf8(word));
  return result;
}

const std::string kResult = "Result:i& Exresult:t& SupressError_:b&";
const std::string kItem = "(itemDesc:t& itemQuan:d& itemUnitPrice:d& itemVatRate:d& itemDep:i& " + kResult +
                          " itemComment:t&? itemCategory:i&?1):v";
const std::string kFive =
    "(line1:t& line1Size:i& line2:t& line2Size:i& line3:t& line3Size:i& line4:t& line4Size:i& "
    "line5:t& line5Size:i& " +
    kResult + "):v";
const std::string kThree = "(line1:t& line1Size:i& line2:t& line2Size:i& line3:t& line3Size:i& " + kResult + "):v";
const std::string kRates = "(VatA:d& VatB:d& VatC:d& VatD:d& VatE:d& " + kResult + "):v";
const std::string kPlain = "(" + kResult + "):v";

std::string with(const std::string& before, const std::string& rest = "):v") { return "(" + before + kResult + rest; }

const std::vector<std::string> kDriverInterface = {
    "SendCommand_" + with("CmdString:t& ", " Pass:t&):-"),
    "GetVersionInfo" + with("", " Pass:t&):-"),
    "Connect_" + with("PORT:t ", "):-"),
    "DisConnect_" + with("PORT:t& "),
    "ItemSale" + kItem,
    "ItemVoid" + kItem,
    "ItemRefund" + kItem,
    "Payment" + with("paymentNumber:i& paymentDesc:t& paymentAmount:d& ", " paymentDesc2:t&? bReadEJ:b&?False):v"),
    "FeedPaper" + with("Lines_:i& "),
    "commentPrinterPrint" + with("CommentText_:t& Size_:i& "),
    "commentDisplayPrint" + with("lineNumber:i& CommentText_:t& "),
    "issueZReport" + kPlain,
    "issueZReprintReport" + kPlain,
    "issueXReport" + kPlain,
    "DrawerOpen" + kPlain,
    "CutPaper" + with("Full_:b& "),
    "executeCashIn" + with("Amount:d& cashInDesc:t& "),
    "executeCashOut" + with("Amount:d& cashOutDesc:t& "),
    "VoidReceipt" + kPlain,
    "getDate" + with("d:t& "),
    "getTime" + with("d:t& "),
    "getSerialNumber" + with("sN:t& "),
    "getHeader" + kFive,
    "setHeader" + kFive,
    "getFooter" + kThree,
    "setFooter" + kThree,
    "setTempFooter" + with("line1:t& line2:t& line3:t& "),
    "getVatCategories" + kRates,
    "setVatCategories" + kRates,
    "sentBitmapData" + with("BMPfileName:t& BitmapID:i& "),
    "setReceiptBitmap" + with("BitmapID:i& "),
    "setReceiptBitmapSize" + with("sizeOf:i& "),
    "settingsRead" + with("c:clsParam& ", "):-"),
    "settingsWrite" + with("c:clsParam& ", "):-"),
    "setDepartment" + with("depID:i& depDescription:t& depCategory:i& ", "):-"),
    "setCategory" + with("catID:i& catDescription:t& ", "):-"),
    "transactionTotals" + with("c:clsTransTotal& ", "):-"),
    "getSalesPerDepartment" + with("c:clsAccumulator& ", "):-"),
    "getSalesPerCategory" + with("c:clsAccumulator& ", "):-"),
    "getDailyTotals" + with("c:clsDailyAcc& ", "):-"),
    "get StatusRead:clsStatus",
    "printerStatusRead" + with("", "):-"),
    "setVATNumber" + with("sVat:t& ", " Pass:t&):-"),
    "setServer" + with("bActiveSend:y sWeb:t sPort:t sAES:t ", " Pass:t&):-"),
    "getServer" + with("bActiveSend:y& sWeb:t& sPort:t& sAES:t& ", " Pass:t&):-"),
    "eftRead" + with("c:clsEFT& ", "):-"),
    "eftWrite" + with("c:clsEFT& ", "):-"),
    "eftTest" + with("c:clsEFT& ", "):-"),
    "get logoLineDescLength:i",
    "bFixableError(iErr:i&):b",
    "isErrorFixable(iErr:i&):b",
    "bShouldRetry(iErr:i&):b",
    "isCriticalError(iErr:i&):b",
};

/// The rows of the driver interface from one number to another.
std::vector<std::string> interfaceRows(std::ptrdiff_t from, std::ptrdiff_t to) {
  return {kDriverInterface.begin() + from, kDriverInterface.begin() + to + 1};
}

class Records : public ComponentTest {};

TEST_F(Records, TheNullDriverOffersTheDriverInterfaceInOrder) {
  EXPECT_EQ(signatures(create("fiscalNullModule")->classInfo()), kDriverInterface);
}

TEST_F(Records, TheFacadeOffersItsMembersInOrder) {
  const auto renamed = [](std::string row, const std::string& from, const std::string& to) {
    return row.replace(row.find(from), from.size(), to);
  };
  std::vector<std::string> expected = {"get logoLineDescLength:i", "get getFiscalType:FISCAL_TYPES"};
  const auto add = [&expected](const std::vector<std::string>& rows) {
    expected.insert(expected.end(), rows.begin(), rows.end());
  };
  add(interfaceRows(0, 6));
  add({"get adjustment(onLastItem:b&):clsAdjust",
       "Payment" + with("paymentNumber:i& paymentDesc:t& paymentAmount:d& eftposNum:i& eftposType:i& ",
                        " paymentDesc2:t&? bReadEJ:b&?True inPrePayment:b&?False):v")});
  add(interfaceRows(8, 33));
  add({kDriverInterface[45], renamed(kDriverInterface[46], "eftWrite", "eftSet"), kDriverInterface[47],
       renamed(kDriverInterface[45], "eftRead", "eftdel")});
  add(interfaceRows(34, 42));
  add({renamed(kDriverInterface[43], "setServer", "setServerSettings"),
       renamed(kDriverInterface[44], "getServer", "getServerSettings"),
       renamed(kDriverInterface[42], "setVATNumber(sVat", "setTaxCardNumber(nTaxCard"), "get clsEFTpos:clsEFT",
       "activateDebug():-", "DeactivateDebug():-"});
  ASSERT_EQ(expected.size(), 56u);
  EXPECT_EQ(signatures(create("fiscalTrevikModule")->classInfo()), expected);
}

TEST_F(Records, TheNetworkEndpointOffersItsMembersInOrder) {
  EXPECT_THAT(
      signatures(create("cTCPIP")->classInfo()),
      ElementsAre("get SocketHnd:l", "OpenConnection(nPort:l):i", "ReceiveData(strData:v& lngBytesReceived:v&):b",
                  "SendData(strData:t):b", "IsDataAvailable(iTM:i&?1):b", "ShutdownConnection():-", "put RemotePort:l",
                  "put RemoteHostIP:t", "put LocalHostIP:t", "get ErrorDescription:t", "get ErrorCode:l"));
}

struct Record {
  const char* className;
  const char* properties;  ///< in order, with types; "!" where the write stands before the read
};
const Record kRecords[] = {
    {"clsParam",
     "printerId:i printerDescription:t cashierDesc:t printRECPluDepartment:y drawerOpenonTotal:y printREConNoSale:y "
     "printRECVATDetail:y printRECFooterComments:y printRECTopLogo:i printRECBottomLogo:i printerUSeCutter:y "
     "useLCDdisplay:y printerDrawerID:i !printerQuantityPrint:y"},
    {"clsTransTotal", "VatA:d VatB:d VatC:d VatD:d VatE:d receiptNumber:l receiptTotalAmt:d"},
    {"clsAccumulator", "Id:i Desc:t Count:d Amount:d"},
    {"clsDailyAcc",
     "VatA:d VatB:d VatC:d VatD:d VatE:d VatSum:d LegalReceiptCount:l illLegalReceiptCount:l amtVoid:d amtRefund:d "
     "amtCancel:d amtPaymentType1:d amtPaymentType2:d amtPaymentType3:d amtDiscount:d amtMarkUP:d"},
    {"clsStatus",
     "isFiscalFull:b isDayOpen:b isTransactionOpen:b isInPayment:b isEuro:b isInPaidOut:b isInROA:b isFlashNearFull:b "
     "isFiscalNearFull:b FiscalType:i FiscalSN:t"},
    {"clsEFT",
     "eftId:i eftEnabled:i eftIP:t eftPort:l !eftDescription:t eftVariant:i eftTimeout:i bitmap_Main:i bitmap_2:i "
     "bitmap_3:i bitmap_4:i eftTID:t eftMDW:i !MDW_ACQ:t !MDW_TID:t !eft_TRANS:t eft_ECRIDFormat:i"},
    {"cPortProp", "tcpPort:b comHandle:l TCPClass:cTCPIP isConnected:b"},
    {"clseSendProps", "URL:t QRURL:t AES:t PORT:i"},
};

TEST_F(Records, PropertiesStandInOrderAndStoreWhatTheyAreGiven) {
  struct Sample {
    Value initial, stored;
  };
  const std::map<std::string, Sample> samples = {{"b", {false, true}},         {"y", {Byte{0}, Byte{255}}},
                                                 {"i", {Short{0}, Short{-7}}}, {"l", {Long{0}, Long{-70000}}},
                                                 {"d", {0.0, -1.25}},          {"t", {Text(), Text(u"ά/\"~\n")}}};
  for (const auto& [className, properties] : kRecords) {
    const ObjectPtr record = create(className);
    std::vector<std::string> rows;
    for (std::string row : words(properties)) {
      const bool writeFirst = row.front() == '!';
      if (writeFirst) row.erase(0, 1);
      rows.push_back((writeFirst ? "put " : "get ") + row);
      rows.push_back((writeFirst ? "get " : "put ") + row);
      const std::string name = row.substr(0, row.find(':')), type = row.substr(row.find(':') + 1);
      if (!samples.contains(type)) continue;
      const Argument stored[] = {Argument(samples.at(type).stored)};
      EXPECT_EQ(record->call(name), samples.at(type).initial) << className << "." << name;
      record->invoke(name, Access::write, stored);
      if (name != "useLCDdisplay") {
        EXPECT_EQ(record->call(name), samples.at(type).stored) << className << "." << name;
      }
    }
    EXPECT_EQ(signatures(record->classInfo()), rows);
  }
}

TEST_F(Records, DispatchIdsFollowTheTables) {
  for (const PublicClass& entry : publicClasses()) {
    std::map<std::string_view, Long> ids;
    for (const Member& member : entry.describe().members()) {
      const auto [row, isNew] = ids.emplace(member.name, member.dispatchId);
      EXPECT_EQ(member.dispatchId, isNew ? static_cast<Long>(ids.size()) : row->second) << member.name;
    }
  }
}

TEST_F(Records, TheDisplaySettingIsStoredInverted) {
  const ObjectPtr settings = create("clsParam");
  const std::pair<Byte, Byte> cases[] = {{1, 0}, {0, 1}, {2, 1}, {255, 254}};
  for (const auto& [given, read] : cases) {
    const Argument value[] = {Argument(Value(given))};
    settings->invoke("useLCDdisplay", Access::write, value);
    EXPECT_EQ(settings->call("useLCDdisplay"), Value(read)) << int(given);
  }
}

TEST_F(Records, BinaryDigits) {
  const ObjectPtr converter = create("dec2Bin");
  EXPECT_THAT(signatures(converter->classInfo()), ElementsAre("put Decimal_:i", "get Bin_:v"));
  EXPECT_EQ(converter->call("Bin_"), Value());
  const std::pair<Short, Text> cases[] = {
      {0, u"0"},   {1, u"1"},   {2, u"10"},         {3, u"11"},          {4, u"100"},
      {5, u"101"}, {6, u"110"}, {255, u"11111111"}, {256, u"100000000"}, {32767, Text(15, u'1')},
      {-1, u"1"},  {-2, u"0"},  {-3, u"1"},         {-32768, u"0"}};
  for (const auto& [number, digits] : cases) {
    const Argument value[] = {Argument(Value(number))};
    converter->invoke("Decimal_", Access::write, value);
    EXPECT_EQ(converter->call("Bin_"), Value(digits)) << number;
  }
}

TEST_F(Records, ThePortPropertiesAlwaysHaveANetworkEndpoint) {
  const ObjectPtr properties = create("cPortProp");
  const Value first = properties->call("TCPClass");
  ASSERT_NE(std::get<ObjectPtr>(first), nullptr);
  EXPECT_EQ(properties->call("TCPClass"), first);
  const Value other = create("cTCPIP");
  const Argument set[] = {Argument(other)}, nothing[] = {Argument(Value(ObjectPtr()))};
  properties->invoke("TCPClass", Access::write, set);
  EXPECT_EQ(properties->call("TCPClass"), other);
  properties->invoke("TCPClass", Access::write, nothing);
  EXPECT_NE(std::get<ObjectPtr>(properties->call("TCPClass")), nullptr);
}

}  // namespace
}  // namespace mirvane::test
