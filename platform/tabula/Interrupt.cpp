#include "platform/tabula/Interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <string>

namespace tabula {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
std::atomic<InterruptState> interruptState{InterruptState::none};

namespace {

bool writable(int fd, int milliseconds) {
  pollfd request{fd, POLLOUT, 0};
  return ::poll(&request, 1, milliseconds) > 0;
}

// A command is mostly interrupted because its reader has stopped: the pipe is then full. One more page in the
// pipe takes the line without anybody having to read first.
void widenPipe(int fd) {
  const int capacity = ::fcntl(fd, F_GETPIPE_SZ);
  if (capacity > 0) ::fcntl(fd, F_SETPIPE_SZ, capacity + 1);
}

}  // namespace

void sayExiting(const SigIntException& interrupt) noexcept {
  constexpr int patience = 20;  // of 50 ms each
  const std::string line = std::string("exiting ") + interrupt.what() + "\n";
  std::string_view rest = line;
  if (!writable(STDOUT_FILENO, 0)) widenPipe(STDOUT_FILENO);
  for (int i = 0; i < patience && !rest.empty() && !interruptPending(); ++i) {
    if (!writable(STDOUT_FILENO, 50)) continue;
    const ssize_t written = ::write(STDOUT_FILENO, rest.data(), rest.size());
    if (written < 0 && errno != EINTR && errno != EAGAIN) return;
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace tabula
