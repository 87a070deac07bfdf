#include "loamshow/commands/Interrupts.h"

#include <unistd.h>

#include <csignal>

#include "platform/tabula.h"

namespace loamshow {

namespace {

// After the first interrupt, an alarm comes every second. A signal that arrives just before a write
// begins does not interrupt that write, but the alarm does.
void onAlarm(int /*signal*/) {
  ::alarm(1);
}

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): for the signal handler
volatile std::sig_atomic_t pausing = 0;
void (*volatile first)() noexcept = nullptr;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

void takeFirst() {
  if (first != nullptr) first();
}

void onInterrupt(int /*signal*/) {
  takeFirst();
  if (pausing != 0) ::_exit(Interrupts::exitStatus);
  tabula::interrupt();
  ::alarm(1);
}

void handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;  // no SA_RESTART, so that a blocked write ends
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

Interrupts::Interrupts() {
  handle(SIGALRM, onAlarm);
  handle(SIGINT, onInterrupt);
}

Interrupts::~Interrupts() {
  handle(SIGINT, SIG_IGN);
  handle(SIGALRM, SIG_IGN);
  ::alarm(0);
}

void Interrupts::firstIs(void (*action)() noexcept) {
  first = action;
}

Interrupts::Pause::Pause() {
  pausing = 1;
  if (tabula::interruptPending()) onInterrupt(SIGINT);
}

Interrupts::Pause::~Pause() {
  pausing = 0;
}

}  // namespace loamshow
