#pragma once

// The small switch of the tests, and helpers for commands in this process.

#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "loamshow/cli/CommandLine.h"
#include "platform/Mote.h"

namespace loamtest {

using Json = nlohmann::ordered_json;

/// Formats like printf.
[[gnu::format(printf, 1, 2)]] std::string line(const char* format, ...);

/// The four counts of a quad: base + 1 to base + 4.
Json quad(U64 base);
inline const Json zeros = {0, 0, 0, 0};
Json plus(const Json& left, const Json& right);
/// The quad as the members of a JSON row.
Json members(const Json& quad);
/// "TC0" to "TC7".
std::vector<std::string> tcs();

/// A switch with a FAP of two cores in port mode (id 3, "A"), and one of one core in queue mode (id 7, "B").
/// Its interfaces: Ethernet1 (port 64 on A), Ethernet1.5 (port 65 on A), Ethernet3 (port 66 on B),
/// Port-Channel1 (no port, in the LAG table), Loopback0 (no queues). `ingressBase` and the other bases give
/// the counts.
Json smallSwitch();
/// Its interfaces with counters, in that order.
enum SmallIntf : U64 { ethernet1 = 1, subInterface, ethernet3, portChannel1 };
/// Its egress records, and the destination types within them.
enum class EgressRecord : U64 { portMode, queueMode, lag };
enum class DestType : U64 { unicast, multicast };
/// The base of queue t of an interface from a source (0 core A.0, 1 core A.1, 2 core B).
inline U64 ingressBase(U64 intf, U64 source, U64 t) {
  return intf * 100'000 + source * 10'000 + t * 10;
}
/// The sum of a queue over the three sources.
Json ingressSum(U64 intf, U64 t);
/// The base of an egress queue of an interface.
inline U64 egressBase(EgressRecord record, U64 intf, U64 t, DestType destType) {
  return 1'000'000 * (static_cast<U64>(record) + 1) + intf * 100'000 + t * 100 +
         static_cast<U64>(destType) * 10;
}

/// A JSON text with one member per line, so that a failure shows which members differ.
std::string lines(const std::string& json);

/// The words of a text, separated by white space.
std::vector<std::string> words(const std::string& text);

/// The content of a file.
std::string contentOf(const std::string& path);
/// Changes eight bytes of a file.
void putWord(const std::string& path, U64 offset, U64 word);

/// A command line such as {"queues", "-j"}.
loamshow::CommandLine parsed(const std::vector<std::string>& arguments);
/// The output of a command line such as {"queues", "-j"} on a state, in this process. Throws the errors that
/// the program would report. With `then`, shows the counts since that state.
std::string answer(const Json& state, const std::vector<std::string>& arguments, const Json* then = nullptr);

/// A file in memory, with its descriptor.
class MemoryFile {
 public:
  MemoryFile() : fd_(::memfd_create("test", MFD_CLOEXEC)) {}
  explicit MemoryFile(const std::string& content) : MemoryFile() { std::ofstream(path()) << content; }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { ::close(fd_); }

  int fd() const { return fd_; }
  U32 fdNumber() const { return static_cast<U32>(fd_); }
  /// A path by which other processes can open it while this one runs.
  std::string path() const { return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(fd_); }
  std::size_t size() const { return std::filesystem::file_size(path()); }
  std::string content() const { return contentOf(path()); }

 private:
  int fd_;
};

/// A directory that is removed with its contents.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    if (::mkdtemp(path_.data()) == nullptr) std::abort();
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() { std::filesystem::remove_all(path_); }

  const std::string& path() const { return path_; }
  /// The names of its files.
  std::set<std::string> names() const;

 private:
  std::string path_ = std::filesystem::temp_directory_path() / "loamtest.XXXXXX";
};

}  // namespace loamtest
