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

/// A window of the component. It belongs to the thread that creates it.
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

  /// Creates the window, hidden and without a size, on the monitor of `owner`, or without an owner on the primary one.
  /// Returns that monitor's work area. Without a desktop no window is created.
  RECT make(const Look& look, HWND owner);

  /// Null before `make`, and after the program has destroyed the window.
  HWND window() const { return window_; }
  /// Converts a length for 96 dots per inch to the monitor's resolution.
  int scaled(int length) const;
  Font font(const wchar_t* name, int points, DWORD family) const;

  /// Called when earlier lengths and fonts no longer fit; also by `make`.
  virtual void resolutionChanged() = 0;
  /// Draws the window's whole client area.
  virtual void draw(HDC dc, RECT client) const;
  /// Handles a message; the default draws the window and does not let it be closed.
  virtual LRESULT handle(UINT message, WPARAM first, LPARAM second);

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);
  void paint() const;

  HWND window_ = nullptr;
  UINT dpi_ = 0;
};

/// What a call shows or locks while this exists. Always created with `new`, because the call may end without a return.
class DuringCall {
 public:
  DuringCall();
  DuringCall(const DuringCall&) = delete;
  DuringCall& operator=(const DuringCall&) = delete;
  virtual ~DuringCall();

  /// How many there are.
  static std::size_t count();
  /// Destroys all but the oldest `kept`: the call that made them will never return. Call it on their thread.
  static void endFrom(std::size_t kept);
  /// Forgets all of them: their thread has ended, and its windows with it.
  static void forget();
};

/// No window of the thread takes input while this exists: a call started from there would talk into the exchange in
/// progress.
class InputLock {
 public:
  /// `spared` keeps its state: the owner of a message box, which the box itself disables.
  explicit InputLock(HWND spared = nullptr);
  InputLock(const InputLock&) = delete;
  InputLock& operator=(const InputLock&) = delete;
  ~InputLock() { release(); }

  /// Restores the focus if `own` took it or if it was lost. Call it before `own` is destroyed; otherwise the system
  /// would bring another program to the front.
  void release(HWND own = nullptr);

 private:
  static BOOL CALLBACK disable(HWND window, LPARAM self);

  HWND spared_;
  HWND active_;
  HWND focus_;
  std::vector<HWND> windows_;
};

/// The thread's messages, while a call keeps the program's own message loop from running.
class PendingMessages {
 public:
  PendingMessages() = default;
  PendingMessages(const PendingMessages&) = delete;
  PendingMessages& operator=(const PendingMessages&) = delete;
  /// Passes on a request to end the program, if one came, to the program's own loop.
  ~PendingMessages();

  void dispatch();
  /// Paints what needs it and serves what other threads have sent, for at most 50 ms; everything else waits.
  static void serve();
  /// The same, but drops input.
  static void repaint();

 private:
  std::optional<int> quit_;
};

}  // namespace mirvane::platform
