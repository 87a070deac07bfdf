// A shared region with damaged bytes is refused by name, or every counter of it can be read.

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "fuzz/Fuzz.h"
#include "platform/BrimCounters.h"

namespace {

using namespace Brim::Counters;

std::string wholeRegion() {
  const ShmemWriter writer(
      {{"F1", "now", {Counter{.value = 1}, Counter{.value = 2}}}, {"F1", "then", {}}, {"F2", "now", {{}}}});
  std::string region(static_cast<std::size_t>(::lseek(writer.fd(), 0, SEEK_END)), '\0');
  loamfuzz::require(::pread(writer.fd(), region.data(), region.size(), 0) > 0);
  return region;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string whole = wholeRegion();
  loamfuzz::Input input(data, size);
  std::string region = whole;
  region.resize(region.size() - (input.flag() ? input.number(region.size()) : 0));
  while (!input.atEnd()) {
    const U64 value = input.number(~U64{0}) >> input.number(64);
    const std::size_t at = input.number(256);
    if (at + sizeof value <= region.size()) std::memcpy(region.data() + at, &value, sizeof value);
  }
  const int fd = ::memfd_create("fuzz", 0);
  loamfuzz::require(::write(fd, region.data(), region.size()) == static_cast<ssize_t>(region.size()));
  try {
    const auto attached = Mote::make<ShmemRegion>(fd, "R");
    for (const char* fap : {"F1", "F2", ""}) {
      const auto manager = Mote::make<RegionShmemManager>(attached, fap);
      for (const char* snapshot : {"now", "then", ""}) {
        for (const U32 index : {0U, 1U, 2U, 1000U, ~0U}) manager->counter(snapshot, index);
      }
    }
  } catch (const Vane::InternalException& error) {
    loamfuzz::require(std::string_view(error.what()).starts_with("counter region R: "));
  }
  ::close(fd);
  return 0;
}
