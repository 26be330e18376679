// Sells a receipt from a native program: ./run build native, ./run emulator, then
//   build/native/examples/native/sell-receipt 127.0.0.1:9100
#include <iostream>

#include "embedding/component.h"
#include "embedding/till.h"
#include "text/code_page.h"

int main(int count, char** arguments) {
  using mirvane::Text;
  const mirvane::embedding::Component component;
  mirvane::embedding::Till till;
  const auto must = [&till](bool done) {
    if (done) return;
    std::cerr << till.Result << " " << mirvane::toUtf8(till.Exresult) << "\n";
    std::exit(1);
  };
  must(till.call("Connect_", mirvane::fromUtf8(count > 1 ? arguments[1] : "127.0.0.1:9100")));
  must(till.call("ItemSale", u"Καφές", 2.0, 2.5, 24.0, 1));
  must(till.call("Payment", 1, u"", 5.0, 0, 0));
  till.call("DisConnect_", u"");
  std::cout << "The receipt is printed.\n";
}
