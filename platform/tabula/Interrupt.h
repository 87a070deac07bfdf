#pragma once

#include <atomic>
#include <exception>

namespace tabula {

/// Raised into a running command when the user interrupts it.
class SigIntException : public std::exception {
 public:
  const char* what() const noexcept override { return "interrupted by user"; }
};

// An interrupt is pending from the host's signal handler to the Printer call that sees it and raises
// SigIntException; from then on it is taken, which does not concern the next command.
enum class InterruptState : int { none, pending, taken };

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a signal handler sets it
extern std::atomic<InterruptState> interruptState;
static_assert(std::atomic<InterruptState>::is_always_lock_free, "a signal handler stores it");

/// Asks the running command to end. For signal handlers. A handler is to be installed so that it interrupts
/// system calls, and again from time to time while the interrupt is pending: a signal that arrives just
/// before a write begins does not interrupt it.
inline void interrupt() noexcept {
  interruptState.store(InterruptState::pending);
}
inline bool interruptPending() noexcept {
  return interruptState.load(std::memory_order_relaxed) == InterruptState::pending;
}

/// Writes "exiting " and the interrupt's text to standard output. When nobody reads standard output, it gives
/// up after a second or at the next interrupt.
void sayExiting(const SigIntException& interrupt) noexcept;

/// Runs the work of a show operation. On an interrupt, and after the work has released what it held, says
/// that it is exiting and returns; every other exception passes through.
template <class Work>
void endingOnInterrupt(Work&& work) {
  try {
    work();
  } catch (const SigIntException& interrupt) {
    sayExiting(interrupt);
  }
}

}  // namespace tabula
