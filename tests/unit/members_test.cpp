#include "interface/members.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "component/component.h"
#include "driver/fiscal_varlen_module2.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

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
    const std::string wanted =
        (std::ostringstream() << owner << ' ' << id << ' ' << (kind == "putref" ? "put" : kind) << name).str();
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

class MembersOfTheDriver : public DriverTest {};

// A word that is not declared does something that must happen once: as a payment it could charge a card twice.
TEST_F(MembersOfTheDriver, SendNoWordThatIsNotDeclared) {
  const ObjectPtr facade = createObject("fiscalTrevikModule");
  screen.expectsWaits = true;
  for (const Member& member : facade->classInfo().members()) {
    if (member.kind != MemberKind::method || member.name == "SendCommand_") continue;
    std::vector<Value> variables(member.parameters.size());
    std::vector<Argument> arguments;
    for (std::size_t i = 0; i < variables.size(); ++i) {
      const Type& type = member.parameters[i].type;
      if (type.kind == TypeKind::object) variables[i] = createObject(type.name);
      if (type.kind == TypeKind::text) variables[i] = Text(u"text");
      arguments.emplace_back(Reference(&variables[i]));
    }
    answers(std::vector<std::string>(9, "3/4/5/6/7/8/9/10/11/12/13/14/15/16/17/18/"));
    facade->invoke(member.name, Access::call, arguments);
    moduleState().currentDriver = driver;
    connect(u"COM1");
  }
  EXPECT_GT(std::set(device.commands.begin(), device.commands.end()).size(), 40U);
  for (const std::string& command : device.commands) {
    EXPECT_TRUE(kSecondGenerationWords.find(fromUtf8(command))) << command << ": say in driver/words.cpp what it is";
  }
  EXPECT_FALSE(kSecondGenerationWords.find(u"~/"));
}

}  // namespace
}  // namespace mirvane::test
