#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/Mote.h"

namespace loamtest {

/// What no program here takes, however busy the machine is; several of them fit into a test's time limit.
constexpr std::chrono::seconds patience(20);

/// A running program, its standard output and error on descriptors of the test's choice. Its LOAM_STATE is
/// this process's LOAM_TEST_STATE, and its standard input is empty.
class Program {
 public:
  Program(const std::vector<std::string>& arguments, int out, int err, const char* executable = LOAMSHOW);

  int pid() const { return pid_; }
  void signal(int number) const;
  bool ends(std::chrono::milliseconds within) const;
  /// The exit status, or 1000 + the signal that killed it: one that does not end is killed.
  int status() const;

 private:
  int pid_;
};

struct Ran {
  int status;
  std::string out;
  std::string err;
};

Ran run(const std::vector<std::string>& arguments);

/// What can be read until the last writer has closed the other end, or nothing more comes.
std::string drained(int fd);

/// Waits until an end that nobody reads from takes no more of what its writer has.
void awaitFull(int fd);

struct Pipe {
  Pipe();
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe();

  void closeEnd(int end);
  std::string drain();

  int ends[2] = {-1, -1};
};

}  // namespace loamtest
