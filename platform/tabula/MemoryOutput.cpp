#include "platform/tabula/MemoryOutput.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace tabula {

namespace {

constexpr std::size_t leastCapacity = std::size_t{2} * 1024 * 1024;  // a huge page

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
thread_local MemoryOutput* innermost = nullptr;

[[noreturn]] void fail() {
  throw std::system_error(errno, std::generic_category(), "cannot keep an answer in memory");
}

}  // namespace

// The open file reserves the number of its descriptor.
MemoryOutput::MemoryOutput() : fd_(::open("/dev/null", O_WRONLY | O_CLOEXEC)), outer_(innermost) {
  if (fd_ < 0) fail();
  innermost = this;
}

MemoryOutput::~MemoryOutput() {
  innermost = outer_;
  ::close(fd_);
  if (bytes_ != nullptr) ::munmap(bytes_, capacity_);
}

MemoryOutput* MemoryOutput::find(int fd) noexcept {
  MemoryOutput* output = innermost;
  while (output != nullptr && output->fd_ != fd) output = output->outer_;
  return output;
}

void MemoryOutput::append(std::string_view bytes) {
  reserve(size_ + bytes.size());
  std::memcpy(bytes_ + size_, bytes.data(), bytes.size());
  size_ += bytes.size();
}

std::string_view MemoryOutput::text(std::size_t padding) {
  reserve(size_ + padding);
  std::fill_n(bytes_ + size_, padding, '\0');
  return {bytes_, size_};
}

void MemoryOutput::reserve(std::size_t size) {
  if (size <= capacity_) return;
  const std::size_t capacity = std::max(leastCapacity, std::bit_ceil(size));
  void* const bytes = bytes_ == nullptr ? ::mmap(nullptr, capacity, PROT_READ | PROT_WRITE,
                                                 MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
                                        : ::mremap(bytes_, capacity_, capacity, MREMAP_MAYMOVE);
  if (bytes == MAP_FAILED) fail();
  bytes_ = static_cast<char*>(bytes);
  capacity_ = capacity;
  // The output of a large switch fills thousands of small pages. Without huge pages, small ones are used.
  ::madvise(bytes_, capacity_, MADV_HUGEPAGE);
}

}  // namespace tabula
