#include "tests/Faults.h"

#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/tabula.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

/// The behaviour of a write.
struct Fault {
  const char* name;
  int error;         // errno of a failure; 0: it succeeds
  std::size_t most;  // number of bytes accepted
  bool interrupts;   // an interrupt arrives during the write
  bool isFinal;      // ends the output
};

constexpr std::size_t all = ~std::size_t{0};
constexpr Fault faults[] = {
    {"short", 0, 1, false, false},
    {"EINTR", EINTR, all, false, false},
    {"EAGAIN", EAGAIN, all, false, false},
    {"EPIPE", EPIPE, all, false, true},
    {"ENOSPC", ENOSPC, all, false, true},
    {"EIO", EIO, all, false, true},
    {"interrupt before", EINTR, all, true, true},
    {"interrupt within", 0, 1, true, true},
    {"interrupt after", 0, all, true, true},
};

/// One run: its writes and their results.
struct Run {
  const Command* command;
  const Fault* fault;
  std::size_t faultAt;  // counted from 1
  int fd = -1;
  std::vector<std::size_t> sizes = {};
  std::string said = {};  // on standard output
  std::string written = {};
  std::string raised = {};
};
Run* running = nullptr;

Run ran(const Command& command, const Fault* fault, std::size_t faultAt) {
  const MemoryFile file;
  Run run{&command, fault, faultAt, file.fd()};
  running = &run;
  try {
    command.run(file.fdNumber());
  } catch (const std::exception& error) {
    run.raised = error.what();
  }
  running = nullptr;
  run.written = file.content();
  return run;
}

}  // namespace

void expectEveryFaultHandled(const Command& command) {
  const Run whole = ran(command, nullptr, 0);
  EXPECT_EQ(whole.raised, command.raised) << command.name;
  EXPECT_EQ(whole.sizes.size(), command.writes) << command.name;
  std::size_t before = 0;
  for (std::size_t at = 1; at <= whole.sizes.size(); ++at) {
    const std::size_t size = whole.sizes[at - 1];
    for (const Fault& fault : faults) {
      SCOPED_TRACE(command.name + ", write " + std::to_string(at) + ": " + fault.name);
      const bool whileRaising = !command.raised.empty() && at == whole.sizes.size();
      if (whileRaising && fault.interrupts) continue;
      const Run got = ran(command, &fault, at);
      const std::size_t taken = before + (fault.error == 0 ? std::min(fault.most, size) : 0);
      EXPECT_EQ(got.written, fault.isFinal ? whole.written.substr(0, taken) : whole.written);
      EXPECT_TRUE(!fault.isFinal || got.sizes.size() == at) << "nothing is written after it";
      EXPECT_EQ(got.said, fault.interrupts ? "exiting interrupted by user\n" : "");
      const bool fails = fault.isFinal && !fault.interrupts && !whileRaising;
      const std::string failure = "cannot write the answer: " + std::generic_category().message(fault.error);
      EXPECT_EQ(got.raised, fails ? failure : fault.interrupts ? "" : command.raised);
      EXPECT_FALSE(tabula::interruptPending());
    }
    before += size;
  }
}

}  // namespace loamtest

// Replaces the C library's write, also for the platform library.
extern "C" ssize_t write(int fd, const void* data, size_t size) {
  loamtest::Run* const run = loamtest::running;
  if (run != nullptr && fd == STDOUT_FILENO) {
    run->said.append(static_cast<const char*>(data), size);
    run->command->whenSaid();
    tabula::interrupt();  // a second interrupt, which must not affect the next operation
    return static_cast<ssize_t>(size);
  }
  if (run != nullptr && fd == run->fd) {
    run->sizes.push_back(size);
    if (run->fault != nullptr && run->sizes.size() == run->faultAt) {
      if (run->fault->interrupts) tabula::interrupt();
      errno = run->fault->error;
      if (errno != 0) return -1;
      size = std::min(size, run->fault->most);
    }
  }
  return ::syscall(SYS_write, fd, data, size);
}
