#pragma once

namespace loamshow {

/// While it lives, SIGINT interrupts the operation that is running, or else the next one, instead of ending
/// the program; tabula::operationInterrupted and interruptPending tell. After it SIGINT is ignored: the
/// answer is written then, and its exit status holds.
class Interrupts {
 public:
  Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;
  ~Interrupts();
};

}  // namespace loamshow
