#include "loamshow/now/Repeat.h"

#include <poll.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <optional>
#include <utility>
#include <vector>

#include "loamshow/commands/Interrupts.h"
#include "loamshow/commands/Output.h"
#include "loamshow/commands/Warnings.h"
#include "loamshow/now/Amounts.h"
#include "loamshow/now/Answer.h"
#include "loamshow/now/Frozen.h"
#include "loamshow/now/Screen.h"
#include "platform/counteragent/RegionReader.h"
#include "platform/tabula.h"

namespace loamshow {

namespace {

/// The times of the turns, in periods since the start.
class Turns {
 public:
  explicit Turns(double period) : period_(period) {}

  /// Waits for the next turn. If several are due, skips all but the last one.
  void await(const Screen* screen) {
    next_ = std::max(next_ + 1, std::floor(elapsed() / period_));
    sigset_t resizable;
    ::pthread_sigmask(SIG_BLOCK, nullptr, &resizable);
    ::sigdelset(&resizable, SIGWINCH);
    for (double left = 0; (left = next_ * period_ - elapsed()) > 0;) {
      const timespec rest{static_cast<std::time_t>(left), static_cast<long>((left - std::floor(left)) * 1e9)};
      ::ppoll(nullptr, 0, &rest, &resizable);
      if (screen != nullptr) screen->follow();
    }
  }

 private:
  using Clock = std::chrono::steady_clock;

  double elapsed() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

  const double period_;
  const Clock::time_point start_ = Clock::now();
  double next_ = 0;
};

/// The current state of the source; nothing if it cannot be read this time.
std::optional<SwitchState> readIfPossible(const Source& source) {
  try {
    return frozen(source.read());
  } catch (const Unreadable& error) {
    warn(error.what());
  } catch (const LoamCounters::RecordException& error) {
    warn(error.what());
  }
  return {};
}

std::string headingOf(const Shown& shown) {
  return "--- " + shown.moment.text() + (shown.seconds ? ", " + seconds(*shown.seconds) : "") + '\n';
}

}  // namespace

void repeat(const CommandLine& line, const Source& source, History history, U32 fd) {
  const bool isText = line.format == tabula::formatText;
  const int terminal = static_cast<int>(fd);
  std::optional<Interrupts::Pause> pause(std::in_place);
  std::optional<SwitchState> state = frozen(source.read());
  Turns turns(*line.every);
  std::optional<Screen> screen;
  std::vector<std::string> warned;
  for (U64 answers = 0;;) {
    if (state) {
      const Shown shown = history.advance(std::move(*state));
      if (auto now = warnings(line, shown.state); now != warned) {
        for (const std::string& warning : now) warn(warning);
        warned = std::move(now);
      }
      const std::string heading = isText ? headingOf(shown) : "";
      if (isText && Screen::isAvailable(terminal)) {
        tabula::MemoryOutput output;
        pause.reset();
        answer(line, shown, heading, output.fd());
        pause.emplace();
        if (tabula::operationInterrupted()) return;
        if (!screen) screen.emplace(terminal);
        screen->show(std::string(output.text()));
      } else {
        pause.reset();
        answer(line, shown, heading, fd);
        pause.emplace();
        if (tabula::operationInterrupted()) return;
      }
      if (++answers == line.count) break;
    }
    turns.await(screen ? &*screen : nullptr);
    state = readIfPossible(source);
  }
  if (!screen) return;
  // Leave the last output on the normal screen.
  const std::string last = screen->text();
  screen.reset();
  print(last, fd);
}

}  // namespace loamshow
