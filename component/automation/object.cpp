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
  const auto isFirst = [this](const Member& member) { return dispatchId(member.name).value_or(0) == 0; };
  std::int32_t last = 0;
  for (Member& member : members_) {
    if (member.dispatchId == 0) member.dispatchId = isFirst(member) ? ++last : *dispatchId(member.name);
  }
  std::ranges::stable_sort(members_, {}, &Member::dispatchId);
  for (std::int32_t id = 1; const Member& member : members_) {
    const bool isOther = &member != &members_.front() && !sameName(member.name, (&member - 1)->name);
    id += isOther ? 1 : 0;
    if (member.dispatchId != id) {
      throw std::logic_error(std::string(name_) + "." + std::string(member.name) + " has dispatch id " +
                             std::to_string(member.dispatchId) + ", and " + std::to_string(id) +
                             " is next: every member keeps its own for ever, and a new one gets the next");
    }
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
