#include "loamshow/now/Screen.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>
#include <vector>

#include "loamshow/commands/Interrupts.h"

namespace loamshow {

namespace {

// The alternate screen, without a cursor and without line wrap.
constexpr std::string_view enterSequence = "\x1b[?1049h\x1b[?25l\x1b[?7l";
constexpr std::string_view leaveSequence = "\x1b[?7h\x1b[?25h\x1b[?1049l";
constexpr std::string_view home = "\x1b[H";
constexpr std::string_view clearLine = "\x1b[K";
constexpr std::string_view clearBelow = "\x1b[J";

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): for signal handlers
volatile std::sig_atomic_t screenFd = -1;  // -1: there is no screen, or it was left
volatile std::sig_atomic_t resized = 0;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

/// Switches between screens. For signal handlers: a blocked terminal delays it for a limited time only.
void put(int fd, std::string_view sequence) noexcept {
  constexpr int patience = 1000;  // milliseconds
  pollfd request{fd, POLLOUT, 0};
  if (::poll(&request, 1, patience) <= 0) return;
  [[maybe_unused]] const ssize_t written = ::write(fd, sequence.data(), sequence.size());
}

void write(int fd, std::string_view frame) {
  while (!frame.empty()) {
    const ssize_t written = ::write(fd, frame.data(), frame.size());
    if (written < 0 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "cannot write the answer");
    }
    frame.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
  }
}

void onResize(int /*signal*/) {
  resized = 1;
}

void onEnd(int signal) {
  Screen::leave();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void onStop(int /*signal*/) {
  const int fd = screenFd;
  Screen::leave();
  std::raise(SIGSTOP);
  if (fd < 0) return;
  put(fd, enterSequence);
  screenFd = fd;
  resized = 1;
}

void handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  ::sigaction(signal, &action, nullptr);
}

constexpr std::pair<int, void (*)(int)> handlers[] = {
    {SIGTERM, onEnd}, {SIGHUP, onEnd}, {SIGTSTP, onStop}, {SIGWINCH, onResize}};

winsize windowOf(int fd) {
  winsize window{};
  ::ioctl(fd, TIOCGWINSZ, &window);
  if (window.ws_row == 0) window.ws_row = 24;
  if (window.ws_col == 0) window.ws_col = 80;
  return window;
}

bool beginsCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80;
}

/// Appends a line, truncated to a width, with control characters of names replaced.
void appendLine(std::string& frame, std::string_view line, std::size_t width) {
  std::size_t used = 0;
  for (const char byte : line) {
    if (beginsCharacter(byte) && ++used > width) return;
    const bool isControl = static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f;
    frame += isControl ? '?' : byte;
  }
  if (used < width) frame += clearLine;
}

}  // namespace

bool Screen::isAvailable(int fd) {
  const char* terminal = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): one thread
  return ::isatty(fd) != 0 && terminal != nullptr && *terminal != '\0' &&
         terminal != std::string_view("dumb");
}

Screen::Screen(int fd) : fd_(fd) {
  sigset_t resize;
  ::sigemptyset(&resize);
  ::sigaddset(&resize, SIGWINCH);
  ::pthread_sigmask(SIG_BLOCK, &resize, &before_);
  screenFd = fd;
  Interrupts::firstIs(leave);
  for (const auto& [signal, handler] : handlers) handle(signal, handler);
  put(fd, enterSequence);
}

Screen::~Screen() {
  leave();
  Interrupts::firstIs(nullptr);
  for (const auto& [signal, handler] : handlers) handle(signal, SIG_DFL);
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void Screen::show(std::string text) {
  text_ = std::move(text);
  draw();
}

void Screen::follow() const {
  if (resized == 0) return;
  resized = 0;
  draw();
}

void Screen::leave() noexcept {
  const int fd = screenFd;
  if (fd < 0) return;
  screenFd = -1;
  put(fd, leaveSequence);
}

void Screen::draw() const {
  const winsize window = windowOf(fd_);
  std::vector<std::string_view> lines;
  for (std::string_view rest = text_; !rest.empty();) {
    const std::size_t size = std::min(rest.find('\n'), rest.size());
    lines.push_back(rest.substr(0, size));
    rest.remove_prefix(std::min(size + 1, rest.size()));
  }
  std::string more;
  if (lines.size() > window.ws_row) {
    more = "... " + std::to_string(lines.size() - window.ws_row + 1) + " more lines";
    lines.resize(window.ws_row);
    lines.back() = more;
  }
  // A single write shows the complete frame without flicker.
  std::string frame(home);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i > 0) frame += "\r\n";
    appendLine(frame, lines[i], window.ws_col);
  }
  if (lines.size() < window.ws_row) (frame += "\r\n") += clearBelow;
  write(fd_, frame);
}

}  // namespace loamshow
