#include "emulator/program/station.h"

#include <chrono>
#include <filesystem>

#include "http/machine.h"

namespace mirvane::emulator {
namespace {

constexpr std::size_t kMostEntries = 1000;
constexpr std::size_t kMostHappenings = 5000;

}  // namespace

std::int64_t millisecondsNow() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

/// What the station hears of one line.
class Station::Watcher : public Witness {
 public:
  Watcher(Station& station, std::string name) : station_(station), name_(std::move(name)) {}

  void answered(const Exchange& exchange) override { station_.record(name_, exchange); }
  void acknowledged() override {
    if (station_.keeper_) station_.keeper_->keepLines(station_.lines_);
  }

 private:
  Station& station_;
  const std::string name_;
};

Station::Station(Paper::Sink paper) : device(std::move(paper), [this] { return clock.time(); }) {}

Station::~Station() {
  // Its tapes belong to the store.
  device.journal().keepOn(nullptr, nullptr);
}

void Station::attach(Line& line, const std::string& name) {
  lines_.push_back({name, &line});
  line.setWitness(&watchers_.emplace_back(*this, name));
}

std::string Station::execute(const std::string& command) {
  std::string reply = device.execute(command, faults.switches.printer);
  record("http", {command, reply, {}});
  return reply;
}

void Station::record(const std::string& line, const Exchange& exchange) {
  conversation_.push_back({++lastEntry_, systemTime(), static_cast<int>(millisecondsNow() % 1000), line, exchange});
  if (conversation_.size() > kMostEntries) conversation_.pop_front();
  happened(Happening::Kind::kExchange, lastEntry_);
  if (!exchange.fault.rule.empty()) happened(Happening::Kind::kStruck, lastEntry_);
  changed();
}

void Station::happened(Happening::Kind kind, int subject) {
  happenings_.push_back({++lastHappening_, kind, device.time(), subject, device.display()});
  if (happenings_.size() > kMostHappenings) happenings_.pop_front();
  if (onHappening) onHappening(happenings_.back());
}

void Station::notice() {
  for (const Document* next = nullptr; (next = device.roll().find(lastEnded_ + 1)); ++lastEnded_) {
    if (next->kind == Document::Kind::kNote) continue;
    if (next->state == Document::State::kOpen) break;
    const bool isReceipt = next->kind == Document::Kind::kReceipt;
    const bool isReport = next->kind == Document::Kind::kReport;
    happened(isReceipt  ? Happening::Kind::kReceipt
             : isReport ? Happening::Kind::kReport
                        : Happening::Kind::kCash,
             next->id);
  }
  if (device.drawerOpenings() > drawerOpenings_) happened(Happening::Kind::kDrawer, device.drawerOpenings());
  if (device.display() != display_) happened(Happening::Kind::kDisplay, 0);
  drawerOpenings_ = device.drawerOpenings();
  display_ = device.display();
}

void Station::tick() {
  const bool wasUnderWay = device.cards().isUnderWay();
  device.settleCard();
  const bool isDecided = wasUnderWay && !device.cards().isUnderWay();
  if (faults.forgetEnded(steadySeconds()) || isDecided) changed();
}

void Station::changed() {
  save();
  notice();
  if (onChange) onChange();
}

void Station::keepStateIn(const std::string& path, bool isAnew) {
  // An absolute path stays valid if the working folder changes.
  const std::u8string absolute = std::filesystem::absolute(pathOf(path)).u8string();
  store_ = std::make_unique<Store>(std::string(absolute.begin(), absolute.end()), isAnew);
  device.journal().keepOn(store_->tape(0), store_->tape(1));
  recall(remembered(), *store_);
  keeper_ = std::make_unique<Keeper>(*store_, store_->values());
  save();
}

void Station::save() {
  if (keeper_) keeper_->keep(remembered());
}

void Station::calm() {
  faults.clear();
  device.cards().options = cardDefaults;
  device.conditions() = {};
  for (const auto& [name, line] : lines_) line->dropHeld();
}

bool Station::reset(const std::string& preset) {
  FiscalState fiscal;
  if (preset == "kiosk") {
    fiscal.header = {{{u"ΠΕΡΙΠΤΕΡΟ", 4},
                      {u"ΕΞΟΜΟΙΩΤΗΣ ΤΑΜΕΙΑΚΗΣ - ΔΕΝ ΕΙΝΑΙ ΑΠΟΔΕΙΞΗ", 1},
                      {u"ΠΛΑΤΕΙΑ ΠΑΡΑΔΕΙΓΜΑΤΟΣ 1, 546 24 ΘΕΣΣΑΛΟΝΙΚΗ", 1},
                      {},
                      {}}};
    fiscal.vatNumber = "099999999";
    const Text names[] = {u"ΤΥΠΟΣ", u"ΑΝΑΨΥΚΤΙΚΑ", u"ΓΛΥΚΑ", u"ΚΑΠΝΙΚΑ"};
    for (std::size_t i = 0; i < std::size(names); ++i) fiscal.departments[i].description = names[i];
    fiscal.cardTerminals.clear();
  } else if (preset == "restaurant") {
    fiscal.header = {{{u"ΕΣΤΙΑΤΟΡΙΟ", 4},
                      {u"Ο ΠΛΑΤΑΝΟΣ", 2},
                      {u"ΕΞΟΜΟΙΩΤΗΣ ΤΑΜΕΙΑΚΗΣ - ΔΕΝ ΕΙΝΑΙ ΑΠΟΔΕΙΞΗ", 1},
                      {u"ΟΔΟΣ ΠΑΡΑΔΕΙΓΜΑΤΟΣ 3, 185 36 ΠΕΙΡΑΙΑΣ", 1},
                      {}}};
    fiscal.footer = {{{u"ΕΥΧΑΡΙΣΤΟΥΜΕ ΠΟΥ ΜΑΣ ΠΡΟΤΙΜΗΣΑΤΕ", 1}, {}, {}}};
    fiscal.vatNumber = "099999998";
    const Text names[] = {u"ΚΟΥΖΙΝΑ", u"ΠΟΤΑ", u"ΚΑΦΕΣ", u"ΓΛΥΚΑ"};
    for (std::size_t i = 0; i < std::size(names); ++i) fiscal.departments[i].description = names[i];
    fiscal.cardTerminals[1].description = u"ΤΑΜΕΙΟ";
    fiscal.cardTerminals[2] = {true, 0, "192.168.1.51", 4000, u"ΣΑΛΑ", 0, 60, {}, "", "", "", 0};
    fiscal.cardTerminals[3] = {true, 0, "192.168.1.52", 4000, u"ΑΥΛΗ", 0, 60, {}, "", "", "", 0};
    fiscal.settings.usesCutter = true;
  } else if (preset != "fresh") {
    return false;
  }
  fiscal.serialNumber = device.fiscal().serialNumber;
  device.journal().startAnew();
  device.restore(std::move(fiscal), {}, {});
  calm();
  clearConversation();
  happenings_.clear();
  lastEnded_ = device.roll().firstId() - 1;
  for (const auto& [name, line] : lines_) line->setMemory({});
  clock = {};
  return true;
}

}  // namespace mirvane::emulator
