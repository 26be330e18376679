#pragma once

#include "automation/object.h"

namespace mirvane {

/// The same class, whose operations come in through the door: those that report through Result, or through errorDesc as
/// reading a journal does.
///
/// One operation is inside at a time. While it waits or shows a window the program's own code may run; an operation
/// that it calls then is from within, and is refused with 14, before a driver is chosen. It would talk between the
/// lines of the one that is under way. Nothing is sent and nothing shown, and only the outcome is written.
/// The member `connect` is answered with 0 as ever where `isConnected`. Properties, records and saving files work.
///
/// What an operation reports is the program's at its end, whatever has been written to the same variables meanwhile.
///
/// The flight record tells each operation with its member when it begins, and how it ended. What a program gave is not
/// told, being in the frames that follow, and a success is told by its number alone: its text may be a secret of the
/// device.
ClassInfo throughDoor(ClassInfo table, std::string_view connect = {}, bool (*isConnected)() = nullptr);

/// Forgets a call that will never return, so that the next one may come in: its thread has ended, or the program has
/// left past it. Does nothing where none is inside.
void forgetCall();

/// What the end of a facade means for all: the driver is released, and the trace goes off with the last one. While an
/// operation is inside this waits until that is over, unless a Connect_ is answered with 0 in between.
void endFacade();

}  // namespace mirvane
