#pragma once

#include "platform/ports.h"

namespace mirvane::platform {

/// The window's controls for WaitText::state and WaitText::message.
constexpr int kWaitStateId = 101;
constexpr int kWaitMessageId = 102;

/// The window of Screen::waitWhile.
void runWaitDialog(const WaitText& text, const std::function<bool(WaitView&)>& tick);

/// The window of Screen::showWait.
std::unique_ptr<WaitView> showWaitWindow(const WaitText& text);

}  // namespace mirvane::platform
