#pragma once

namespace mirvane::com {

/// Enters the component and runs `body(given)`: everything that a program can set off goes through this.
///
/// All objects share one device, so there is one call at a time, from whichever apartment. The others wait; see
/// Turn::take. The thread that is inside comes in again at once, from whatever of the program runs within its call:
/// from a message loop, or an object of the program's that is asked for its value. `body` runs in the component's own
/// floating-point environment.
///
/// A call that never returns is over all the same: its thread has ended, or the program has left past it with an
/// exception or a jump. What it has shown and locked goes, and the next call comes in.
void enter(void (*body)(void*), void* given);

/// Runs `body()`, which raises nothing, inside.
template <class F>
void inside(F&& body) {
  enter([](void* given) { (*static_cast<F*>(given))(); }, &body);
}

/// What is to be done inside, but never waited for.
class Errand {
 public:
  Errand() = default;
  Errand(const Errand&) = delete;
  Errand& operator=(const Errand&) = delete;

  /// Done at once when nobody is inside or this thread is; else by whoever is, before the next call from within comes
  /// in, at the latest at the end.
  void go();

 protected:
  ~Errand() = default;

 private:
  friend class Errands;
  /// Called once for each `go`, which must not come again before that. May end this object.
  virtual void run() = 0;

  Errand* next_ = nullptr;
};

}  // namespace mirvane::com
