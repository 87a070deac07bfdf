#pragma once

// The user's interrupt: from the host's signal handler to the end of the interrupted operation. There are two
// flags: an interrupt is pending, until an operation notices it; and an operation was interrupted.

#include <atomic>
#include <exception>

namespace tabula {

/// Thrown in a running command when the user interrupts it.
class SigIntException : public std::exception {
 public:
  const char* what() const noexcept override { return "interrupted by user"; }
};

namespace detail {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a signal handler sets it
extern std::atomic<bool> pendingInterrupt;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler stores it");

/// Throws SigIntException for the pending interrupt, and clears it.
[[noreturn]] void raiseInterrupt();
void operationBegins() noexcept;
/// Ends an operation after an exception. Clears a pending interrupt, which was meant for this operation.
void operationEndsEarly(bool wasInterrupted) noexcept;

}  // namespace detail

/// Requests that the running operation ends. For signal handlers. The handler must interrupt system calls,
/// and the signal must be repeated until the operation has ended, because a signal that arrives just before a
/// write begins does not interrupt it.
inline void interrupt() noexcept {
  detail::pendingInterrupt.store(true);
}

/// Whether an interrupt is pending. Between two operations: whether the next one would be interrupted at
/// once.
inline bool interruptPending() noexcept {
  return detail::pendingInterrupt.load(std::memory_order_relaxed);
}

/// Throws SigIntException if an interrupt is pending. For each step of a walk while there is no Printer;
/// otherwise use the Printer's function of this name.
inline void checkInterrupt() {
  if (interruptPending()) [[unlikely]] {
    detail::raiseInterrupt();
  }
}

/// Whether the show operation that this thread ran last was interrupted.
bool operationInterrupted() noexcept;

/// Writes "exiting " and the interrupt's text to standard output. If standard output is blocked, gives up
/// after a second or at the next interrupt, but makes at least one attempt.
void sayExiting(const SigIntException& interrupt) noexcept;

/// Runs the work of a show operation. After an interrupt, when the work has released its resources, writes
/// the "exiting" line and returns; other exceptions reach the caller. No interrupt stays pending for the next
/// operation.
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
