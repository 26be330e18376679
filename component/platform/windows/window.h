#pragma once

#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

#include "platform/windows/windows.h"

// What the component's own windows share.
namespace mirvane::platform {

struct FontDeleter {
  void operator()(HFONT font) const { DeleteObject(font); }
};
using Font = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

/// A window of the component. It belongs to the thread that makes it.
class Window {
 public:
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  virtual ~Window();

 protected:
  struct Look {
    const wchar_t* className;
    const wchar_t* title;
    UINT classStyle;
    DWORD style;
    DWORD extendedStyle;
  };

  Window() = default;

  /// Makes the window, hidden and without a size, on the monitor of `owner`, or without an owner on the primary one.
  /// Returns that monitor's work area. Without a desktop there is no window afterwards.
  RECT make(const Look& look, HWND owner);

  /// Null before `make`, and when the program has destroyed the window.
  HWND window() const { return window_; }
  /// A length written for 96 dots per inch.
  int scaled(int length) const;
  Font font(const wchar_t* name, int points, DWORD family) const;

  /// The lengths and fonts from before no longer fit; called by `make` too.
  virtual void resolutionChanged() = 0;
  /// Draws all of the window's inside.
  virtual void draw(HDC dc, RECT client) const;
  /// A message; unless overridden the window is drawn, and does not let itself be closed.
  virtual LRESULT handle(UINT message, WPARAM first, LPARAM second);

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);
  void paint() const;

  HWND window_ = nullptr;
  UINT dpi_ = 0;
};

/// What a call shows or locks while it lives; always made with `new`, as the call may end without a return.
class DuringCall {
 public:
  DuringCall();
  DuringCall(const DuringCall&) = delete;
  DuringCall& operator=(const DuringCall&) = delete;
  virtual ~DuringCall();

  /// How many there are.
  static std::size_t count();
  /// Ends all but the oldest `kept`: the call that made them will never return. On its thread.
  static void endFrom(std::size_t kept);
  /// Forgets all of them: their thread has ended, and the windows with it.
  static void forget();
};

/// No window of the thread takes input while this lives: a call started from there would talk between the lines of the
/// one that is under way.
class InputLock {
 public:
  /// `spared` stays as it is: the owner of a box, which the box itself keeps from input.
  explicit InputLock(HWND spared = nullptr);
  InputLock(const InputLock&) = delete;
  InputLock& operator=(const InputLock&) = delete;
  ~InputLock() { release(); }

  /// Gives the focus back where it was if `own` took it, or if it got lost. To be done before `own` is destroyed, or
  /// the system would look for another program to bring to the front.
  void release(HWND own = nullptr);

 private:
  static BOOL CALLBACK disable(HWND window, LPARAM self);

  HWND spared_;
  HWND active_;
  HWND focus_;
  std::vector<HWND> windows_;
};

/// The thread's messages, while a call keeps the program's own loop from running.
class PendingMessages {
 public:
  PendingMessages() = default;
  PendingMessages(const PendingMessages&) = delete;
  PendingMessages& operator=(const PendingMessages&) = delete;
  /// Gives a request to end the program, met in between, to the program's own loop.
  ~PendingMessages();

  void dispatch();
  /// Paints what needs it and serves what other threads have sent, for 50 ms at most; everything else waits.
  static void serve();
  /// The same, and drops input.
  static void repaint();

 private:
  std::optional<int> quit_;
};

}  // namespace mirvane::platform
