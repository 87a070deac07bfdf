#include "platform/Wisp.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <system_error>

#include "platform/tabula/Utf8.h"

namespace Wisp {

namespace {

constexpr int disabled = -1;

int openTraceFile() {
  const char* path =
      std::getenv("LOAM_TRACE");  // NOLINT(concurrency-mt-unsafe): called once, and nothing sets it
  if (path == nullptr || *path == '\0') return disabled;
  const int fd = ::open(path, O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0644);
  // Not a descriptor of a closed standard stream: other code writes to those by number.
  const int above = fd < 0 ? fd : ::fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (above < 0) {
    const std::string reason = std::generic_category().message(errno);
    constexpr std::size_t most = 240;
    const std::string name = tabula::masked(std::string_view(path).substr(0, most));
    std::fprintf(stderr, "trace file %s: %s\n", name.c_str(), reason.c_str());
  }
  if (fd >= 0) ::close(fd);
  return above;
}

int traceFile() noexcept {
  static const int fd = openTraceFile();
  return fd;
}

// One write per line, so that the lines of several processes do not mix.
void append(std::string_view text, std::string_view duration) noexcept {
  timespec now{};
  std::timespec_get(&now, TIME_UTC);
  tm utc{};
  ::gmtime_r(&now.tv_sec, &utc);
  std::array<char, 32> time{};
  std::strftime(time.data(), time.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  std::array<char, 256> line{};
  const int size = std::snprintf(line.data(), line.size(), "%s.%06ldZ %.*s%.*s\n", time.data(),
                                 now.tv_nsec / 1000, static_cast<int>(text.size()), text.data(),
                                 static_cast<int>(duration.size()), duration.data());
  line[line.size() - 2] = '\n';  // if the line was truncated
  // A failed write loses the trace line: tracing must not stop a command.
  [[maybe_unused]] const ssize_t written =
      ::write(traceFile(), line.data(), std::min(static_cast<std::size_t>(size), line.size() - 1));
}

}  // namespace

bool enabled() noexcept {
  return traceFile() != disabled;
}

void trace(std::string_view text) noexcept {
  if (enabled()) append(text, {});
}

void BlockTimer::end() const noexcept {
  const std::chrono::duration<double, std::micro> elapsed = std::chrono::steady_clock::now() - begin_;
  std::array<char, 48> duration{};
  const int size = std::snprintf(duration.data(), duration.size(), " took %.3f us", elapsed.count());
  append(text_, {duration.data(), static_cast<std::size_t>(size)});
}

}  // namespace Wisp
