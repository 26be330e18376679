#pragma once

#include <functional>
#include <string>

#include "automation/object.h"

// How a call looks in the languages of the reference, made from its signature.
namespace mirvane {

/// What stands for a parameter in the examples, as the descriptions have it. Empty for one that only takes a result,
/// and for an optional one that is left out.
using ExampleValue = std::function<std::string(const Parameter&)>;

/// The call of a method, or of a property with parameters, as code blocks of Markdown: VBScript, C#, Python.
std::string callExamples(const ClassInfo& info, const Member& member, const ExampleValue& valueOf);

}  // namespace mirvane
