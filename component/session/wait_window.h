#pragma once

#include <memory>

#include "interface/outcome.h"
#include "link/transport.h"
#include "platform/ports.h"

namespace mirvane {

/// Marks that the operator is waiting for the device, so that nothing shows a second window. A mark that a call left
/// behind counts for nothing in the next.
class WaitMark {
 public:
  WaitMark();
  WaitMark(const WaitMark&) = delete;
  WaitMark& operator=(const WaitMark&) = delete;
  ~WaitMark();

  /// The window that stands, once there is one.
  static void setView(platform::WaitView* view);
};

/// Whether the operator is waiting already, and the window that stands then; null for none.
bool isWaitShown();
platform::WaitView* waitView();

/// What the wait window says of a code and the device's text.
platform::WaitText waitText(const Reply& reason);

/// What is to be seen of a serial device that does not answer: the caller's variables, and the wait window, unless
/// errors are suppressed. Where one stands already, that one tells it.
class SilenceWindow : public SilenceObserver {
 public:
  explicit SilenceWindow(Outcome outcome) : outcome_(outcome) {}
  SilenceWindow(const SilenceWindow&) = delete;
  SilenceWindow& operator=(const SilenceWindow&) = delete;
  ~SilenceWindow() override;

  void fallsSilent() override;
  void waits() override;

 private:
  Outcome outcome_;
  std::unique_ptr<WaitMark> mark_;
  std::unique_ptr<platform::WaitView> view_;
};

}  // namespace mirvane
