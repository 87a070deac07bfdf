#include "platform/tabula/Printer.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <system_error>

namespace tabula {

Printer::Printer(int fd, U32 format, bool, bool, bool, U32)
    : Renderer(format), fd_(fd), memory_(MemoryOutput::find(fd)), exceptions_(std::uncaught_exceptions()) {
}

Printer::~Printer() {
  const bool endsEarly = std::uncaught_exceptions() > exceptions_;
  try {
    flushBuffer();
  } catch (const SigIntException&) {
    interrupt();  // cannot be thrown here, so it stays pending
  } catch (const std::exception& failure) {
    if (!endsEarly) std::fprintf(stderr, "%s\n", failure.what());
  }
}

void Printer::close() {
  checkClosed();
  ioflush();
  checkInterrupt();
}

void Printer::take(std::string_view bytes) {
  if (memory_ != nullptr) {
    memory_->append(bytes);
    return;
  }
  while (!bytes.empty()) {
    checkInterrupt();
    const ssize_t written = ::write(fd_, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {
      awaitWritable();
    } else if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "cannot write the answer");
    }
  }
}

void Printer::awaitWritable() const {
  pollfd request{fd_, POLLOUT, 0};
  ::poll(&request, 1, -1);
}

}  // namespace tabula
