// A small till, early bound, with the header that widl makes from MirvaneEFT.idl: connect, sell, handle refusals, pay,
// disconnect.
//
//   widl -h -I ..\.. -o VarlenFiscalQ7734.h ..\..\MirvaneEFT.idl
//   g++ -std=c++20 -municode -static -I . till_early.cpp -o till_early.exe -lole32 -loleaut32 -luuid
//   .\till_early.exe 127.0.0.1:9100

#include "automation.h"
// Include the system's headers first.
#include "VarlenFiscalQ7734.h"

namespace {

/// The register, with the members that the till uses. Each is called by its dispatch id from the IDL; these never
/// change. An operation returns whether it succeeded. Result and Exresult are those of the last one.
class Register {
 public:
  Register() : module_(create<_fiscalTrevikModule>(__uuidof(fiscalTrevikModule), __uuidof(_fiscalTrevikModule))) {}

  bool connect(Text& port) { return operate(5, {port}); }
  // A closed port is reported as 1, the value of the system call that closed it.
  bool disconnect(Text& port) { return operate(6, {port}, 1); }
  bool itemSale(Text& description, double& quantity, double& price, double& vatRate, short& department) {
    return operate(7, {description, quantity, price, vatRate, department});
  }
  bool payment(short& number, Text& description, double& amount, short& terminal, short& terminalType) {
    return operate(11, {number, description, amount, terminal, terminalType});
  }
  bool commentPrinterPrint(Text& comment, short& size) { return operate(13, {comment, size}); }
  bool getSerialNumber(Text& serialNumber) { return operate(25, {serialNumber}); }
  bool transactionTotals(_clsTransTotal* totals) { return operate(44, {totals}); }
  bool receiptOpen() {
    const Object<> status(invoke(module_.get(), 48, DISPATCH_PROPERTYGET).pdispVal);
    return invoke(status.get(), 3, DISPATCH_PROPERTYGET).boolVal != VARIANT_FALSE;
  }

 private:
  /// Every operation has Result, Exresult and SupressError_ after its own parameters.
  bool operate(DISPID id, std::vector<Argument> arguments, short success = 0) {
    for (const Argument& argument : {Argument(result_), Argument(exresult_), Argument(&silent_)}) {
      arguments.push_back(argument);
    }
    VARIANT unused = invoke(module_.get(), id, DISPATCH_METHOD, arguments);
    VariantClear(&unused);
    if (result_ != success) std::printf("  %ld: %d %s\n", id, result_, exresult_.utf8().c_str());
    return result_ == success;
  }

  Object<_fiscalTrevikModule> module_;
  short result_ = 0;
  Text exresult_;
  VARIANT_BOOL silent_ = VARIANT_TRUE;
};

bool sold(Register& till, const wchar_t* what, double quantity, double price, double vatRate) {
  Text description(what);
  short department = 1;
  std::printf("selling %.3f x %s\n", quantity, description.utf8().c_str());
  return till.itemSale(description, quantity, price, vatRate, department);
}

bool paid(Register& till, short kind, const wchar_t* how, double amount) {
  Text description(how);
  short noTerminal = 0;
  std::printf("paying %.2f %s\n", amount, description.utf8().c_str());
  return till.payment(kind, description, amount, noTerminal, noTerminal) && !till.receiptOpen();
}

bool totalled(Register& till, _clsTransTotal* totals) {
  try {
    return till.transactionTotals(totals);
  } catch (const AutomationError& error) {
    // The call itself is invalid: nothing was sent, and the variables are unchanged.
    std::printf("  %08lX\n", error.code());
    return false;
  }
}

void require(bool done, const char* step) {
  if (!done) throw std::runtime_error(step);
}

void sellAndPay(const wchar_t* address) {
  Register till;
  Text port(address), serialNumber, thanks(L"Σας ευχαριστούμε!");
  short size = 1;
  require(till.connect(port), "connecting");
  require(till.getSerialNumber(serialNumber), "finding a register");
  std::printf("register %s\n", serialNumber.utf8().c_str());

  require(sold(till, L"Καφές ελληνικός", 2, 1.80, 24), "selling coffee");
  // The register has no VAT rate of 17 %.
  require(!sold(till, L"Τυρόπιτα", 1, 2.20, 17) && sold(till, L"Τυρόπιτα", 1, 2.20, 13), "a refused item");
  require(sold(till, L"Νερό", 0.5, 0.50, 13), "selling water");
  require(till.commentPrinterPrint(thanks, size), "thanking");

  // A record to be filled must exist.
  require(!totalled(till, nullptr), "totals into nothing");
  const Object<_clsTransTotal> totals(create<_clsTransTotal>(__uuidof(clsTransTotal), __uuidof(_clsTransTotal)));
  require(totalled(till, totals.get()), "asking for the total");
  std::printf("total %.2f\n", invoke(totals.get(), 7, DISPATCH_PROPERTYGET).dblVal);
  // Change cannot be given on a card.
  require(!paid(till, 2, L"ΚΑΡΤΑ", 10) && paid(till, 1, L"ΜΕΤΡΗΤΑ", 10), "paying");
  require(till.disconnect(port), "disconnecting");
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
