#pragma once

#include "automation/object.h"

namespace mirvane {

/// The same class, with its operations going through the door: those that report through Result, or through errorDesc
/// as reading a journal does.
///
/// One operation runs at a time. While it waits or shows a window, program code may run. An operation called from there
/// is a call from within: it is refused with 14 before a driver is chosen, because it would talk into the exchange in
/// progress. Nothing is sent or shown; only its outcome is written. The member `connect` still returns 0 if
/// `isConnected`. Properties, records and saving files work.
///
/// An operation's outcome is written to the program's variables at its end, whatever else has been written to them in
/// the meantime.
///
/// The flight record gets each operation's member when it starts, and how it ended. It does not record arguments, which
/// are in the frames that follow, and of a success only the number: the text may be a secret of the register.
ClassInfo throughDoor(ClassInfo table, std::string_view connect = {}, bool (*isConnected)() = nullptr);

/// Forgets a call that will never return, so that the next one can enter: its thread has ended, or the program has left
/// it. Does nothing if no call is inside.
void forgetCall();

/// Called when a facade ends: releases the driver, and switches the trace off with the last facade. If an operation is
/// inside, this waits until it is over, and does nothing then if a Connect_ has returned 0 in the meantime.
void endFacade();

}  // namespace mirvane
