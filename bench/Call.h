#pragma once

// Running loamshow as a process.

#include <sys/resource.h>

#include <string>
#include <vector>

#include "bench/Rounds.h"

namespace loambench {

/// A running process of loamshow, or of another program.
class Call {
 public:
  enum class Output { pipe, null };

  Call(const std::vector<std::string>& words, Output output);
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;
  ~Call();

  /// The peak of its memory so far in bytes, once its output into the pipe has begun; the rest of the
  /// output, larger than a pipe, keeps the process alive. The figure that the system gives when it ends would
  /// be no less than the peak of the process that started it.
  double peakMemory() const;
  /// Reads its output to the end; returns the CPU time that it took in seconds.
  double cpuTime();

 private:
  int pipe_[2] = {-1, -1};
  pid_t child_ = 0;
};

/// The words of a call of loamshow.
std::vector<std::string> loamshow(std::vector<std::string> arguments);

/// A way that runs a program, its output to /dev/null.
Way running(const std::vector<std::string>& words);

}  // namespace loambench
