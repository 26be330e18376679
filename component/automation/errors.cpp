#include "automation/errors.h"

namespace mirvane {
namespace {

const char* describe(AutomationCode code) {
  switch (code) {
    case AutomationCode::memberNotFound:
      return "Member not found";
    case AutomationCode::parameterNotFound:
      return "Parameter not found";
    case AutomationCode::typeMismatch:
      return "Type mismatch";
    case AutomationCode::overflow:
      return "Overflow";
    case AutomationCode::badIndex:
      return "Subscript out of range";
    case AutomationCode::badParameterCount:
      return "Wrong number of arguments";
    case AutomationCode::objectNotSet:
      return "Object variable not set";
  }
  return "Automation error";
}

}  // namespace

AutomationError::AutomationError(AutomationCode code, int argument)
    : std::runtime_error(describe(code)), code_(code), argument_(argument) {}

}  // namespace mirvane
