#pragma once

// The user's interrupt, from the host's signal handler to the end of the operation that it ends. There are
// two facts: an interrupt is pending, until an operation sees it; and an operation was interrupted.

#include <atomic>
#include <exception>

namespace tabula {

/// Raised into a running command when the user interrupts it.
class SigIntException : public std::exception {
 public:
  const char* what() const noexcept override { return "interrupted by user"; }
};

namespace detail {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a signal handler sets it
extern std::atomic<bool> pendingInterrupt;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler stores it");

/// Raises SigIntException for the pending interrupt, which is then pending no longer.
[[noreturn]] void raiseInterrupt();
void operationBegins() noexcept;
/// Ends an operation at an exception. An interrupt that is still pending was meant for this operation.
void operationEndsEarly(bool wasInterrupted) noexcept;

}  // namespace detail

/// Asks the running operation to end. For signal handlers. A handler is to be installed so that it interrupts
/// system calls, and again from time to time until the operation has ended: a signal that arrives just before
/// a write begins does not interrupt it.
inline void interrupt() noexcept {
  detail::pendingInterrupt.store(true);
}

/// Whether an interrupt waits for an operation to see it. Between two operations: whether the next one would
/// be interrupted at once.
inline bool interruptPending() noexcept {
  return detail::pendingInterrupt.load(std::memory_order_relaxed);
}

/// Raises SigIntException when an interrupt is pending. For each step of a walk while no Printer exists; once
/// there is one, its call of the same name takes this one's place.
inline void checkInterrupt() {
  if (interruptPending()) [[unlikely]] {
    detail::raiseInterrupt();
  }
}

/// Whether the show operation that this thread ran last was interrupted.
bool operationInterrupted() noexcept;

/// Writes "exiting " and the interrupt's text to standard output. When standard output takes nothing, it
/// gives up after a second, or at the next interrupt, but not without one attempt.
void sayExiting(const SigIntException& interrupt) noexcept;

/// Runs the work of a show operation. On an interrupt, and after the work has released what it held, says
/// that it is exiting and returns; every other exception passes through. No interrupt stays pending for the
/// next operation.
template <class Work>
void endingOnInterrupt(Work&& work) {
  detail::operationBegins();
  try {
    work();
    checkInterrupt();
  } catch (const SigIntException& interrupt) {
    sayExiting(interrupt);
    detail::operationEndsEarly(true);
  } catch (...) {
    detail::operationEndsEarly(false);
    throw;
  }
}

}  // namespace tabula
