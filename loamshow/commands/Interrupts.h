#pragma once

namespace loamshow {

/// While it lives, SIGINT interrupts the running command instead of ending the program.
class Interrupts {
 public:
  Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;
  ~Interrupts();

  /// Whether a command has been interrupted.
  static bool happened();
};

}  // namespace loamshow
