#include "interface/members.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "component/component.h"
#include "driver/fiscal_varlen_module2.h"

namespace mirvane::test {
namespace {

// "fiscalTrevikModule 7 method ItemSale", and so on: what programs are compiled with.
std::set<std::string> publicMembers() {
  constexpr std::string_view kKinds[] = {"method", "get", "put"};
  std::set<std::string> all;
  for (const PublicClass& c : publicClasses()) {
    for (const Member& member : c.describe().members()) {
      std::ostringstream line;
      line << c.describe().name() << " " << member.dispatchId << " " << kKinds[static_cast<int>(member.kind)] << " "
           << member.name;
      all.insert(line.str());
    }
  }
  return all;
}

TEST(Members, KeepTheirDispatchIds) {
  std::ifstream golden(TYPE_LIBRARY_GOLDEN);
  if (!golden) GTEST_SKIP() << "the type library's golden is on the machine that builds";
  const std::set<std::string> all = publicMembers();
  std::size_t lines = 0;
  for (std::string line; std::getline(golden, line);) {
    std::istringstream words(line);
    std::string owner, id, kind, name;
    std::getline(words >> owner >> id >> kind, name, '(');
    if (id.find_first_not_of("0123456789") != std::string::npos) continue;  // a class
    ++lines;
    const std::string wanted = owner + " " + id + " " + (kind == "putref" ? "put" : kind) + name;
    EXPECT_TRUE(all.contains(wanted)) << wanted
                                      << ": compiled programs call it so for ever; a new member gets the next "
                                      << "dispatch id of its class, in interface/members.h";
  }
  EXPECT_GT(lines, 200U);
}

TEST(Members, HaveABodyInTheDriver) {
  for (const contract::AnyMember& member : contract::kMembers) {
    if (member.places.facade == 0) continue;
    EXPECT_NE(FiscalVarlenModule2::describe().find(member.name, Access::callOrRead), nullptr)
        << member.name << " is offered to programs: implement<" << member.name << "> in driver/ says what it does";
  }
}

}  // namespace
}  // namespace mirvane::test
