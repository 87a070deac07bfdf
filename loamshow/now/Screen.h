#pragma once

// The alternate screen of a terminal.

#include <csignal>
#include <string>
#include <string_view>

namespace loamshow {

/// A terminal's alternate screen, on which outputs replace each other. The normal screen and its contents are
/// restored by the destructor, and also before SIGTERM or SIGHUP ends the program or SIGTSTP stops it. Only
/// one object may exist at a time.
class Screen {
 public:
  /// Whether the descriptor is a terminal that has such a screen.
  static bool isAvailable(int fd);

  explicit Screen(int fd);
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen();

  /// Shows the first lines of a text, as many as fit.
  void show(std::string text);
  const std::string& text() const { return text_; }
  /// Shows the text again if the window's size has changed. SIGWINCH is blocked except in system calls that
  /// unblock it.
  void follow() const;
  /// Restores the normal screen. For signal handlers; does nothing if there is no object.
  static void leave() noexcept;

 private:
  void draw() const;

  int fd_;
  std::string text_;
  sigset_t before_{};  // the signals that were blocked
};

}  // namespace loamshow
