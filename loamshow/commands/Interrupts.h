#pragma once

namespace loamshow {

/// During its lifetime, SIGINT interrupts the running operation, or the next one, instead of ending the
/// program; see tabula::operationInterrupted and interruptPending. Afterwards SIGINT is ignored, because the
/// output is complete and its exit status is final.
class Interrupts {
 public:
  static constexpr int exitStatus = 130;  // exit status of an interrupted program

  Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;
  ~Interrupts();

  /// Sets an action that the signal handler runs first; null for none.
  static void firstIs(void (*action)() noexcept);

  /// During its lifetime, SIGINT ends the program at once, with status 130. So does an earlier one that no
  /// operation has noticed. For the time between two operations.
  class Pause {
   public:
    Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause();
  };
};

}  // namespace loamshow
