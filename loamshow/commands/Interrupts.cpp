#include "loamshow/commands/Interrupts.h"

#include <unistd.h>

#include <csignal>

#include "platform/tabula.h"

namespace loamshow {

namespace {

// An alarm comes again each second until the interrupt is taken: a signal that arrives just before a write
// begins does not end that write, and the alarm does.
void onAlarm(int /*signal*/) {
  if (tabula::interruptPending()) ::alarm(1);
}

void onInterrupt(int /*signal*/) {
  tabula::interrupt();
  ::alarm(1);
}

void handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;  // and no SA_RESTART: a blocked write is to end
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

Interrupts::Interrupts() {
  handle(SIGALRM, onAlarm);
  handle(SIGINT, onInterrupt);
}

Interrupts::~Interrupts() {
  handle(SIGINT, SIG_DFL);
  ::alarm(0);
  handle(SIGALRM, SIG_DFL);
}

bool Interrupts::happened() {
  return tabula::interruptState.load() == tabula::InterruptState::taken;
}

}  // namespace loamshow
