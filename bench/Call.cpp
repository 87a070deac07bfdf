#include "bench/Call.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace loambench {

Call::Call(const std::vector<std::string>& words, Output output) {
  if (::pipe2(pipe_, O_CLOEXEC) != 0) std::abort();
  std::vector<std::string> copies = words;
  std::vector<char*> arguments;
  arguments.reserve(copies.size() + 1);
  for (std::string& word : copies) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  if (output == Output::pipe) {
    ::posix_spawn_file_actions_adddup2(&actions, pipe_[1], STDOUT_FILENO);
  } else {
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  }
  if (::posix_spawn(&child_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) std::abort();
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(pipe_[1]);
}

Call::~Call() {
  ::close(pipe_[0]);
}

double Call::peakMemory() const {
  char first = 0;
  if (::read(pipe_[0], &first, 1) != 1) std::abort();
  std::ifstream status("/proc/" + std::to_string(child_) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return 1024.0 * std::stod(line.substr(6));
  }
  std::abort();
}

double Call::cpuTime() {
  std::vector<char> block(std::size_t{64} * 1024);
  while (::read(pipe_[0], block.data(), block.size()) > 0) {
  }
  int status = 0;
  rusage usage{};
  if (::wait4(child_, &status, 0, &usage) != child_ || status != 0) std::abort();
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::vector<std::string> loamshow(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LOAMSHOW);
  return arguments;
}

Way running(const std::vector<std::string>& words) {
  return [words] { return Call(words, Call::Output::null).cpuTime(); };
}

}  // namespace loambench
