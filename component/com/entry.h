#pragma once

namespace mirvane::com {

/// Enters the component and runs `body(given)`. Everything that a program can trigger goes through here.
///
/// All objects share one register, so one call runs at a time, whichever apartment it comes from. Others wait: see
/// Turn::take. The thread inside may enter again at once, from program code that runs within its call: a message loop,
/// or an object of the program that is asked for its value. `body` runs with the component's own floating-point
/// settings.
///
/// A call that never returns is cleaned up too: its thread has ended, or the program has left it by an exception or a
/// jump. Its windows and locks are removed, and the next call enters.
void enter(void (*body)(void*), void* given);

/// Runs `body()`, which must not throw, inside the component.
template <class F>
void inside(F&& body) {
  enter([](void* given) { (*static_cast<F*>(given))(); }, &body);
}

/// Work to be done inside the component without waiting to enter.
class Errand {
 public:
  Errand() = default;
  Errand(const Errand&) = delete;
  Errand& operator=(const Errand&) = delete;

  /// Runs the errand at once if no thread or this thread is inside. Otherwise the thread inside runs it, before its
  /// next nested call or at the latest when it leaves.
  void go();

 protected:
  ~Errand() = default;

 private:
  friend class Errands;
  /// Called once for each `go`; `go` must not be called again before that. May destroy this object.
  virtual void run() = 0;

  Errand* next_ = nullptr;
};

}  // namespace mirvane::com
