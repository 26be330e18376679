#include "automation/object.h"

#include <algorithm>

namespace mirvane {
namespace {

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

bool allows(Access access, MemberKind kind) {
  switch (kind) {
    case MemberKind::method:
      return access == Access::call || access == Access::callOrRead;
    case MemberKind::get:
      return access == Access::read || access == Access::callOrRead;
    case MemberKind::put:
      return access == Access::write;
  }
  return false;
}

}  // namespace

ClassInfo::ClassInfo(std::string_view name, std::vector<Member> members) : name_(name), members_(std::move(members)) {
  std::int32_t last = 0;
  for (Member& member : members_) {
    const auto known = dispatchId(member.name).value_or(0);
    member.dispatchId = known != 0 ? known : ++last;
  }
}

std::optional<std::int32_t> ClassInfo::dispatchId(std::string_view member) const {
  const auto row = std::find_if(members_.begin(), members_.end(),
                                [member](const Member& candidate) { return sameName(candidate.name, member); });
  if (row == members_.end()) return std::nullopt;
  return row->dispatchId;
}

const Member* ClassInfo::find(std::int32_t dispatchId, Access access) const {
  const auto row = std::find_if(members_.begin(), members_.end(), [=](const Member& candidate) {
    return candidate.dispatchId == dispatchId && allows(access, candidate.kind);
  });
  return row == members_.end() ? nullptr : &*row;
}

const Member* ClassInfo::find(std::string_view member, Access access) const {
  const auto row = std::find_if(members_.begin(), members_.end(), [=](const Member& candidate) {
    return allows(access, candidate.kind) && sameName(candidate.name, member);
  });
  return row == members_.end() ? nullptr : &*row;
}

Value ClassInfo::invoke(Object& self, std::string_view member, Access access, Arguments arguments) const {
  const Member* row = find(member, access);
  if (row == nullptr) throw AutomationError(AutomationCode::memberNotFound);
  return row->invoke(self, arguments);
}

}  // namespace mirvane
