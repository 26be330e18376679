#include <unistd.h>

#include <fstream>

#include "bench/till.h"
#include "component/component.h"
#include "facade/fiscal_trevik_module.h"
#include "state/module_state.h"
#include "support/electronic_journal.h"
#include "text/code_page.h"

namespace mirvane::bench {
namespace {

class NativeTill : public Till {
 public:
  NativeTill() { startComponent(); }

  void connect(const Text& port) override {
    facade_->call("Connect_", port, result_, text_, silent_);
    check("Connect_", 0);
  }
  void disconnect() override {
    Text port;
    facade_->call("DisConnect_", port, result_, text_, silent_);
    check("DisConnect_", 1);
  }
  Text send(const Text& command) override {
    Text sent = command;
    Text password;
    facade_->call("SendCommand_", sent, result_, text_, silent_, password);
    check("SendCommand_", 0);
    return text_;
  }
  void sell() override {
    Text description(kItemDescription);
    double quantity = 1;
    double price = 2.5;
    double rate = 24;
    std::int16_t department = 1;
    facade_->call("ItemSale", description, quantity, price, rate, department, result_, text_, silent_);
    check("ItemSale", 0);
  }
  void setTrace(bool active) override { facade_->call(active ? "activateDebug" : "DeactivateDebug"); }
  void makeRecordFolder() override {
    moduleState().recordFolder = u"records";
    platform::hostPlatform().files.makeFolder(u"records\\");
  }
  void readJournal() override {
    bool closesDay = false;
    if (journal_.eMakeZreport(text_, closesDay, withForm_) != 0) fail(toUtf8(text_));
  }
  void callNothing() override { facade_->call("getFiscalType"); }
  std::size_t memory() override {
    std::size_t pages = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  }
  std::size_t componentSize() override { return 0; }

 private:
  void check(const char* member, std::int16_t expected) const {
    if (result_ != expected) fail(std::string(member) + ": " + std::to_string(result_) + " " + toUtf8(text_));
  }

  FiscalJournal journal_;
  bool withForm_ = true;
  std::shared_ptr<fiscalTrevikModule> facade_ = std::make_shared<fiscalTrevikModule>();
  std::int16_t result_ = 0;
  Text text_;
  bool silent_ = true;
};

}  // namespace

std::unique_ptr<Till> makeTill() { return std::make_unique<NativeTill>(); }

}  // namespace mirvane::bench
