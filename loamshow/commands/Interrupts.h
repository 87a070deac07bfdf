#pragma once

namespace loamshow {

/// While it lives, SIGINT interrupts the operation that is running, or else the next one, instead of ending
/// the program; tabula::operationInterrupted and interruptPending tell. After it SIGINT is ignored: the
/// answer is written then, and its exit status holds.
class Interrupts {
 public:
  static constexpr int exitStatus = 130;  // of an interrupted program

  Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;
  ~Interrupts();

  /// An action that an interrupt takes first, in the signal handler; null for none.
  static void firstIs(void (*action)() noexcept);

  /// While it lives, SIGINT ends the program at once, with status 130, and so does one that came before and
  /// that no operation has seen. For the time between two operations.
  class Pause {
   public:
    Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause();
  };
};

}  // namespace loamshow
