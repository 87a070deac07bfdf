#pragma once

#include <csignal>
#include <string>
#include <string_view>

namespace loamshow {

/// A terminal's alternate screen, on which answers replace each other. The normal screen, with what stood on
/// it, comes back when this object goes, and also before SIGTERM or SIGHUP ends the program or SIGTSTP stops
/// it. There is one object at a time.
class Screen {
 public:
  /// Whether the descriptor is a terminal that has such a screen.
  static bool isAvailable(int fd);

  explicit Screen(int fd);
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen();

  /// Shows the top of a text, as much of it as fits.
  void show(std::string text);
  const std::string& text() const { return text_; }
  /// Shows the text again if the window's size has changed. SIGWINCH is blocked but in system calls that
  /// unblock it.
  void follow() const;
  /// Brings the normal screen back. For signal handlers; without an object it does nothing.
  static void leave() noexcept;

 private:
  void draw() const;

  int fd_;
  std::string text_;
  sigset_t before_{};  // the signals that were blocked
};

}  // namespace loamshow
