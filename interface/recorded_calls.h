#pragma once

#include "automation/object.h"

namespace mirvane {

/// The same class, whose calls the flight record tells: each with its member when it begins, and how it ended. Not
/// those that talk to no device: properties, and members that neither have a Result nor return a number. What a program
/// gave is not told, being in the frames that follow, and a success is told by its number alone: its text may be a
/// secret of the device.
ClassInfo recorded(ClassInfo table);

}  // namespace mirvane
