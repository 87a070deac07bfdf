#include "loamshow/state/Source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

#include "loamshow/state/RegionState.h"
#include "loamshow/state/StateFile.h"

namespace loamshow {

namespace {

/// Owns a descriptor, unless it is that of standard input.
class OpenFile {
 public:
  explicit OpenFile(const std::string& path)
      : fd_(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (fd_ != STDIN_FILENO) ::close(fd_);
  }
  int fd() const { return fd_; }

 private:
  int fd_;
};

/// A growing buffer. It uses realloc, which moves the pages of a large block instead of copying them.
class Buffer {
 public:
  explicit Buffer(std::size_t room) { grow(room); }

  std::size_t size() const { return size_; }
  /// Returns the number of bytes read; negative on failure, 0 at the end.
  ssize_t append(int fd) {
    if (size_ == room_) grow(2 * room_);
    const ssize_t got = ::read(fd, bytes_.get() + size_, room_ - size_);
    if (got > 0) size_ += static_cast<std::size_t>(got);
    return got;
  }
  JsonText text() && { return {std::move(bytes_), size_}; }

 private:
  void grow(std::size_t room) {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): unused room stays untouched
    auto* grown = static_cast<char*>(std::realloc(bytes_.get(), room + JsonText::padding));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(bytes_.release());
    bytes_.reset(grown);
    room_ = room;
  }

  JsonText::Bytes bytes_;
  std::size_t size_ = 0;
  std::size_t room_ = 0;
};

/// Initial room: one byte more than a file, to detect its end; a minimum for a pipe.
std::size_t roomFor(int fd, std::size_t most) {
  constexpr std::size_t least = std::size_t{64} * 1024;
  struct stat status {};
  if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) return least;
  return std::clamp(static_cast<std::size_t>(status.st_size), least, most) + 1;
}

}  // namespace

Source::Source(std::string path, std::size_t most)
    : path_(std::move(path)), name_(path_ == "-" ? "standard input" : printable(path_)), most_(most) {
}

SwitchState Source::read() const {
  const auto failed = [&](int error) {
    return Unreadable(name_ + ": cannot read: " + std::generic_category().message(error));
  };
  const OpenFile file(path_);
  if (file.fd() < 0) throw failed(errno);
  if (isRegion(file.fd())) return regionState(name_, file.fd());
  Buffer buffer(roomFor(file.fd(), most_));
  for (ssize_t got = 1; got != 0;) {
    got = buffer.append(file.fd());
    if (got < 0 && errno != EINTR) throw failed(errno);
    if (buffer.size() > most_) {
      throw InputError(name_ + ": more than " + std::to_string(most_) + " bytes, too much for a state file");
    }
  }
  return parseState(name_, std::move(buffer).text());
}

}  // namespace loamshow
