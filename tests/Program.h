#pragma once

// Real programs in tests.

#include <chrono>
#include <csignal>
#include <functional>
#include <string>
#include <vector>

#include "tests/Support.h"

namespace loamtest {

/// Longer than any program here runs, even on a busy machine, and short enough for several timeouts within a
/// test's limit.
constexpr std::chrono::seconds patience(20);

/// A running program, with standard output on a descriptor of the test. Its standard input is empty.
class Program {
 public:
  Program(const std::vector<std::string>& arguments, int out, const char* executable = LOAMSHOW);

  int pid() const { return pid_; }
  void signal(int number) const { ::kill(pid_, number); }
  bool ends(std::chrono::milliseconds within) const;
  /// The exit status, or 1000 + the signal that killed it. A program that does not end is killed.
  int status() const;

  const MemoryFile err;  // what it has written to standard error

 private:
  int pid_;
};

struct Ran {
  int status;
  std::string out;
  std::string err;
};

Ran run(const std::vector<std::string>& arguments);

/// Tries a condition again and again; false if it stays false for as long as `patience`.
bool becomesTrue(const std::function<bool()>& condition);
/// Waits until a file contains a text; false if it does not get it.
bool awaitText(const MemoryFile& file, const std::string& text);

/// Waits until a descriptor without a reader is full.
void awaitFull(int fd);

/// The end that is read, and the end that a program writes to.
struct Ends {
  Ends() = default;
  Ends(const Ends&) = delete;
  Ends& operator=(const Ends&) = delete;
  ~Ends();

  void closeEnd(int end);
  /// Reads up to and including that text; if it is empty, until the last writer has closed its end.
  std::string readTo(const std::string& end) const;
  /// Closes this process's writing end, and reads the rest.
  std::string drain();

  int ends[2] = {-1, -1};
};
/// Each takes a few kilobytes without a reader. The terminal writes what it gets without changes.
struct Pipe : Ends {
  Pipe();
};
struct Terminal : Ends {
  Terminal();
};

}  // namespace loamtest
