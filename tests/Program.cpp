#include "tests/Program.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <thread>
#include <utility>

#include "tests/Support.h"

namespace loamtest {

using std::chrono::milliseconds;

Program::Program(const std::vector<std::string>& arguments, int out, const char* executable) {
  std::vector<std::string> words = {executable};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  pid_ = ::fork();
  if (pid_ != 0) return;
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that takes too long is killed
  ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
  if (::dup2(out, STDOUT_FILENO) < 0) ::close(STDOUT_FILENO);
  ::dup2(err.fd(), STDERR_FILENO);
  ::execv(executable, argv.data());
  ::_exit(127);
}

bool Program::ends(milliseconds within) const {
  pollfd end{static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)), POLLIN, 0};
  const bool ended = ::poll(&end, 1, static_cast<int>(within.count())) > 0;
  ::close(end.fd);
  return ended;
}

int Program::status() const {
  if (!ends(patience)) signal(SIGKILL);
  int status = 0;
  ::waitpid(pid_, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

Ran run(const std::vector<std::string>& arguments) {
  const MemoryFile out;
  const Program program(arguments, out.fd());
  const int status = program.status();
  return {status, out.content(), program.err.content()};
}

bool becomesTrue(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(milliseconds(10));
  }
  return true;
}

bool awaitText(const MemoryFile& file, const std::string& text) {
  return becomesTrue([&] { return file.content().find(text) != std::string::npos; });
}

void awaitFull(int fd) {
  pollfd end{fd, POLLOUT, 0};
  const auto deadline = std::chrono::steady_clock::now() + patience;
  for (int full = 0; full<5; full = ::poll(&end, 1, 0)> 0 ? 0 : full + 1) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "nothing fills it";
    std::this_thread::sleep_for(milliseconds(20));
  }
}

Terminal::Terminal() {
  termios raw{};
  ::cfmakeraw(&raw);
  if (::openpty(ends, ends + 1, nullptr, &raw, nullptr) != 0) std::abort();
}

Pipe::Pipe() {
  if (::pipe2(ends, O_CLOEXEC) != 0) std::abort();
  ::fcntl(ends[1], F_SETPIPE_SZ, 4096);
}

Ends::~Ends() {
  closeEnd(0);
  closeEnd(1);
}

void Ends::closeEnd(int end) {
  if (ends[end] >= 0) ::close(std::exchange(ends[end], -1));
}

std::string Ends::readTo(const std::string& end) const {
  std::string text;
  std::array<char, 1000> part{};
  pollfd readable{ends[0], POLLIN, 0};
  while ((end.empty() || !text.ends_with(end)) && ::poll(&readable, 1, milliseconds(patience).count()) > 0) {
    const ssize_t size = ::read(ends[0], part.data(), end.empty() ? part.size() : 1);
    if (size <= 0) break;
    text.append(part.data(), static_cast<std::size_t>(size));
  }
  return text;
}

std::string Ends::drain() {
  closeEnd(1);
  return readTo("");
}

}  // namespace loamtest
