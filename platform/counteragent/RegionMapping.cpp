#include "platform/counteragent/RegionMapping.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace LoamCounters {

namespace {

/// A mapping, as the signal handler sees it. The handler can neither lock nor allocate, hence a table of
/// fixed size.
struct Place {
  std::atomic<char*> begin = nullptr;
  std::atomic<char*> end = nullptr;  // null: unused, or being filled
  std::atomic<int> protection = 0;
  std::atomic<bool> taken = false;
  std::atomic<bool> hole = false;
};

constexpr std::size_t mostMappings = 64;
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): for a signal handler
constinit std::array<Place, mostMappings> places;

Place& freePlace() {
  for (Place& place : places) {
    if (!place.taken.exchange(true)) return place;
  }
  throw std::system_error(ENOMEM, std::generic_category(), "too many counter regions are mapped");
}

Place& placeOf(const char* begin) {
  std::size_t i = 0;
  while (places[i].begin != begin || places[i].end == nullptr) ++i;
  return places[i];
}

}  // namespace

RegionMapping::RegionMapping(int fd, std::size_t size, RegionAccess access) : size_(size) {
  Place& place = freePlace();
  const int protection = access == RegionAccess::read ? PROT_READ : PROT_READ | PROT_WRITE;
  void* mapped = ::mmap(nullptr, size, protection, MAP_SHARED, fd, 0);
  if (mapped == MAP_FAILED) {
    const int error = errno;
    place.taken = false;
    throw std::system_error(error, std::generic_category(), "cannot be mapped");
  }
  bytes_ = static_cast<char*>(mapped);
  place.protection = protection;
  place.hole = false;
  place.begin = bytes_;
  place.end = bytes_ + size;
  hole_ = &place.hole;
}

RegionMapping::~RegionMapping() {
  Place& place = placeOf(bytes_);
  place.end = nullptr;
  ::munmap(bytes_, size_);
  place.taken = false;
}

bool coverRegionHole(void* address) noexcept {
  char* at = static_cast<char*>(address);
  for (Place& place : places) {
    char* end = place.end;
    if (end == nullptr || at < place.begin || at >= end) continue;
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    char* from = at - static_cast<std::size_t>(at - place.begin) % page;
    const auto rest = static_cast<std::size_t>(end - from);
    if (::mmap(from, rest, place.protection, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) == MAP_FAILED) {
      return false;
    }
    place.hole = true;
    return true;
  }
  return false;
}

}  // namespace LoamCounters
