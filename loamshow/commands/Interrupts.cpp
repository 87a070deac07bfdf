#include "loamshow/commands/Interrupts.h"

#include <unistd.h>

#include <csignal>

#include "platform/tabula.h"

namespace loamshow {

namespace {

// From the first interrupt on, an alarm comes each second: a signal that arrives just before a write begins
// does not end that write, and the alarm does.
void onAlarm(int /*signal*/) {
  ::alarm(1);
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
  handle(SIGINT, SIG_IGN);
  handle(SIGALRM, SIG_IGN);
  ::alarm(0);
}

}  // namespace loamshow
