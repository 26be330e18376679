#pragma once

#include <memory>

#include "interface/outcome.h"
#include "link/transport.h"
#include "platform/ports.h"

namespace mirvane {

/// Marks that the operator is being told to wait, so that no second window appears. A mark left by an earlier call does
/// not count.
class WaitMark {
 public:
  WaitMark();
  WaitMark(const WaitMark&) = delete;
  WaitMark& operator=(const WaitMark&) = delete;
  ~WaitMark();

  /// Sets the window that is shown, once there is one.
  static void setView(platform::WaitView* view);
};

/// Whether the operator is already told to wait, and the window shown; null for none.
bool isWaitShown();
platform::WaitView* waitView();

/// The wait window's text for a code and the register's message.
platform::WaitText waitText(const Reply& reason);

/// Tells about a serial register that does not answer: in the caller's variables and, unless errors are suppressed, in
/// the wait window. If one is already shown, that window changes its text.
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
