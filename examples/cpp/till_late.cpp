// A small till, late bound: connect, sell, handle refusals, pay, disconnect.
//
//   g++ -std=c++20 -municode -static till_late.cpp -o till_late.exe -lole32 -loleaut32 -luuid
//   .\till_late.exe 127.0.0.1:9100

#include "automation.h"

namespace {

/// The register, called by name. Result and Exresult are those of the last operation.
class Register {
 public:
  Register() : module_(create(classId(L"VarlenFiscalQ7734.fiscalTrevikModule"))) {}

  static CLSID classId(const wchar_t* name) {
    CLSID id{};
    check(CLSIDFromProgID(name, &id), "CLSIDFromProgID");
    return id;
  }

  /// Whether the operation succeeded. Every one has Result, Exresult and SupressError_ after its own parameters.
  bool operate(const wchar_t* name, std::vector<Argument> arguments, short success = 0) {
    for (const Argument& argument : {Argument(result_), Argument(exresult_), Argument(&silent_)}) {
      arguments.push_back(argument);
    }
    VARIANT unused = invoke(module_.get(), idOf(module_.get(), name), DISPATCH_METHOD, arguments);
    VariantClear(&unused);
    if (result_ != success) std::printf("  %ls: %d %s\n", name, result_, exresult_.utf8().c_str());
    return result_ == success;
  }

  bool receiptOpen() {
    const Object<> status(property(module_.get(), L"StatusRead").pdispVal);
    return property(status.get(), L"isTransactionOpen").boolVal != VARIANT_FALSE;
  }

  static VARIANT property(IDispatch* object, const wchar_t* name) {
    return invoke(object, idOf(object, name), DISPATCH_PROPERTYGET);
  }

 private:
  Object<> module_;
  short result_ = 0;
  Text exresult_;
  VARIANT_BOOL silent_ = VARIANT_TRUE;
};

/// The quantity is what somebody typed: a text that is a number is accepted.
bool sold(Register& till, const wchar_t* what, const wchar_t* howMany, double price, double vatRate) {
  Text description(what), quantity(howMany);
  short department = 1;
  std::printf("selling %s x %s\n", quantity.utf8().c_str(), description.utf8().c_str());
  try {
    return till.operate(L"ItemSale", {description, quantity, price, vatRate, department});
  } catch (const AutomationError& error) {
    // The call itself is invalid: nothing was sent, and the variables are unchanged.
    std::printf("  %08lX\n", error.code());
    return false;
  }
}

bool paid(Register& till, short kind, const wchar_t* how, double amount) {
  Text description(how);
  short noTerminal = 0;
  std::printf("paying %.2f %s\n", amount, description.utf8().c_str());
  return till.operate(L"Payment", {kind, description, amount, noTerminal, noTerminal}) && !till.receiptOpen();
}

void require(bool done, const char* step) {
  if (!done) throw std::runtime_error(step);
}

void sellAndPay(const wchar_t* address) {
  Register till;
  Text port(address), serialNumber, thanks(L"Σας ευχαριστούμε!");
  short size = 1;
  require(till.operate(L"Connect_", {port}), "connecting");
  require(till.operate(L"getSerialNumber", {serialNumber}), "finding a register");
  std::printf("register %s\n", serialNumber.utf8().c_str());

  require(sold(till, L"Καφές ελληνικός", L"2", 1.80, 24), "selling coffee");
  // The register has no VAT rate of 17 %.
  require(!sold(till, L"Τυρόπιτα", L"1", 2.20, 17) && sold(till, L"Τυρόπιτα", L"1", 2.20, 13), "a refused item");
  require(!sold(till, L"Νερό", L"μισό", 0.50, 13) && sold(till, L"Νερό", L"0,5", 0.50, 13), "an impossible quantity");
  require(till.operate(L"commentPrinterPrint", {thanks, size}), "thanking");

  const Object<> totals(create(Register::classId(L"VarlenFiscalQ7734.clsTransTotal")));
  require(till.operate(L"transactionTotals", {totals.get()}), "asking for the total");
  std::printf("total %.2f\n", Register::property(totals.get(), L"receiptTotalAmt").dblVal);
  // Change cannot be given on a card.
  require(!paid(till, 2, L"ΚΑΡΤΑ", 10) && paid(till, 1, L"ΜΕΤΡΗΤΑ", 10), "paying");

  // A closed port is reported as 1, the value of the system call that closed it.
  require(till.operate(L"DisConnect_", {port}, 1), "disconnecting");
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  SetConsoleOutputCP(CP_UTF8);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int status = 0;
  try {
    sellAndPay(count > 1 ? arguments[1] : L"127.0.0.1:9100");
    std::puts("ok");
  } catch (const std::exception& error) {
    std::printf("FAIL %s\n", error.what());
    status = 1;
  }
  CoUninitialize();
  return status;
}
