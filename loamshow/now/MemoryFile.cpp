#include "loamshow/now/MemoryFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace loamshow {

namespace {

[[noreturn]] void fail() {
  throw std::system_error(errno, std::generic_category(), "cannot keep an answer in memory");
}

/// Whether files may not grow as they like, those in memory included.
bool isLimited() {
  rlimit limit{};
  return ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
}

}  // namespace

MemoryFile::MemoryFile() {
  clear();
}

MemoryFile::~MemoryFile() {
  release();
}

void MemoryFile::release() {
  if (mapped_ != nullptr) ::munmap(std::exchange(mapped_, nullptr), size_);
  if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  if (collector_.joinable()) collector_.join();
  collected_.clear();
}

void MemoryFile::clear() {
  if (fd_ >= 0 && !collector_.joinable()) {
    if (mapped_ != nullptr) ::munmap(std::exchange(mapped_, nullptr), size_);
    if (::lseek(fd_, 0, SEEK_SET) != 0) fail();
    return;
  }
  release();
  if (!isLimited()) {
    fd_ = ::memfd_create("answer", MFD_CLOEXEC);
    if (fd_ < 0) fail();
    return;
  }
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) fail();
  fd_ = ends[1];
  collector_ = std::thread(&MemoryFile::collect, this, ends[0]);
}

void MemoryFile::collect(int from) {
  std::array<char, 65536> part;
  for (ssize_t size = 1; size > 0 || errno == EINTR;) {
    size = ::read(from, part.data(), part.size());
    if (size == 0) break;
    if (size > 0) collected_.append(part.data(), static_cast<std::size_t>(size));
  }
  ::close(from);
}

std::string_view MemoryFile::content(std::size_t padding) {
  if (collector_.joinable()) {
    ::close(std::exchange(fd_, -1));
    collector_.join();
    const std::size_t written = collected_.size();
    collected_.append(padding, '\0');
    return std::string_view(collected_).substr(0, written);
  }
  const off_t end = ::lseek(fd_, 0, SEEK_CUR);
  if (end < 0) fail();
  const auto written = static_cast<std::size_t>(end);
  size_ = written + padding;
  if (size_ == 0) return {};
  const std::string zeros(padding, '\0');
  if (::write(fd_, zeros.data(), padding) != static_cast<ssize_t>(padding)) fail();
  void* mapped = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd_, 0);
  if (mapped == MAP_FAILED) fail();
  mapped_ = mapped;
  return {static_cast<const char*>(mapped), written};
}

}  // namespace loamshow
