#include "platform/tabula/Interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <string>

namespace tabula {

namespace {

// Whether the operation that this thread ran last was interrupted.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
thread_local bool interrupted = false;

bool writable(int fd, int milliseconds) {
  pollfd request{fd, POLLOUT, 0};
  return ::poll(&request, 1, milliseconds) > 0;
}

// Most interrupted commands have a reader that has stopped, so the pipe is full. A pipe that is one page
// larger takes the line even if nobody reads.
void widenPipe(int fd) {
  const int capacity = ::fcntl(fd, F_GETPIPE_SZ);
  if (capacity > 0) ::fcntl(fd, F_SETPIPE_SZ, capacity + 1);
}

}  // namespace

namespace detail {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
std::atomic<bool> pendingInterrupt{false};

void raiseInterrupt() {
  pendingInterrupt.store(false);
  throw SigIntException();
}

void operationBegins() noexcept {
  interrupted = false;
}

void operationEndsEarly(bool wasInterrupted) noexcept {
  const bool another = pendingInterrupt.exchange(false);
  interrupted = wasInterrupted || another;
}

}  // namespace detail

bool operationInterrupted() noexcept {
  return interrupted;
}

void sayExiting(const SigIntException& interrupt) noexcept {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point deadline = Clock::now() + std::chrono::seconds(1);
  const std::string line = std::string("exiting ") + interrupt.what() + "\n";
  std::string_view rest = line;
  if (!writable(STDOUT_FILENO, 0)) widenPipe(STDOUT_FILENO);
  do {
    if (!writable(STDOUT_FILENO, 50)) continue;
    const ssize_t written = ::write(STDOUT_FILENO, rest.data(), rest.size());
    if (written < 0 && errno != EINTR && errno != EAGAIN) return;
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
  } while (!rest.empty() && !interruptPending() && Clock::now() < deadline);
}

}  // namespace tabula
