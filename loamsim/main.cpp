// loamsim: simulates a switch. Publishes a state file in a region and lets its counters move.

#include <args.hxx>
#include <charconv>
#include <chrono>
#include <cmath>
#include <csignal>
#include <iostream>
#include <system_error>
#include <thread>

#include "loamshow/state/RegionState.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"
#include "loamsim/Motion.h"

namespace loamsim {

namespace {

using loamshow::InputError;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr int exitDone = 0;
constexpr int exitFailed = 1;
constexpr int exitUsage = 2;

constexpr const char* help = R"(usage: loamsim [OPTIONS] STATE REGION

Simulates a switch: publishes the switch of a state file in a counter region
and lets its counters move until it is interrupted, then removes the region.
loamshow -s REGION reads it.

  STATE                  state file, '-' for standard input
  REGION                 file to create, preferably in /dev/shm; an existing
                         one is replaced
  --speed X              X times the speed that doubles the counts in an hour;
                         0: counters do not move (default: 1)
  --period MILLISECONDS  time between two updates, 0: as fast as possible
                         (default: 100)
  --seed N               seed of the random sequence (default: 1)
  --for SECONDS          stop after this time
  -h, --help             print help and exit
)";

struct Settings {
  std::string state;
  std::string region;
  double speed = 1;
  double periodMs = 100;
  U64 seed = 1;
  double seconds = HUGE_VAL;
};

template <class Number>
void read(const std::string& option, const std::string& value, const char* expected, double most,
          Number& number) {
  const char* end = value.data() + value.size();
  const auto [rest, error] = std::from_chars(value.data(), end, number);
  if (error != std::errc() || rest != end || !(number >= 0) || static_cast<double>(number) > most) {
    throw InputError(option + ": expected " + expected + ", not \"" + loamshow::printable(value) + '"');
  }
}

/// An option with a value, which is empty if it is missing.
struct Option : args::ImplicitValueFlag<std::string> {
  Option(args::Group& parser, const char* word)
      : args::ImplicitValueFlag<std::string>(parser, "", "", {word}, "", "") {}
};

/// Nothing if help was requested.
std::optional<Settings> settingsOf(int argc, char** argv) {
  args::ArgumentParser parser("");
  args::HelpFlag helpFlag(parser, "", "", {'h', "help"});
  Option speed(parser, "speed");
  Option period(parser, "period");
  Option seed(parser, "seed");
  Option seconds(parser, "for");
  args::Positional<std::string> state(parser, "", "");
  args::Positional<std::string> region(parser, "", "");
  try {
    parser.ParseCLI(argc, argv);
  } catch (const args::Help&) {
    return {};
  } catch (const args::Error& error) {
    // The text ends with the word, an option without its dashes, one of a letter in quotes.
    std::string text = error.what();
    std::erase(text, '\'');
    const std::string word = loamshow::printable(text.substr(text.rfind(' ') + 1));
    const char* const dashes = !text.starts_with("Flag") ? "" : word.size() == 1 ? "-" : "--";
    throw InputError("unexpected argument: " + (dashes + word) + " (see --help)");
  }
  if (!region) throw InputError("expected a state file and a region (see --help)");
  Settings settings{args::get(state), args::get(region)};
  constexpr double mostSpeed = 1e9;
  constexpr double mostMs = 86'400'000;
  constexpr double mostSeconds = 1e9;
  if (speed) read("--speed", args::get(speed), "a number from 0 to 1e9", mostSpeed, settings.speed);
  if (period) {
    read("--period", args::get(period), "milliseconds from 0 to 86400000", mostMs, settings.periodMs);
  }
  if (seed) read("--seed", args::get(seed), "an integer from 0", HUGE_VAL, settings.seed);
  if (seconds) read("--for", args::get(seconds), "seconds from 0 to 1e9", mostSeconds, settings.seconds);
  return settings;
}

volatile std::sig_atomic_t stopped = 0;  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

void stopOnSignals() {
  struct sigaction action {};
  action.sa_handler = [](int) { stopped = 1; };  // no SA_RESTART, so that a sleep ends
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaction(signal, &action, nullptr);
}

/// Waits until the given time, a signal, or the next sign of life.
void rest(Clock::time_point until) {
  constexpr Seconds signOfLife{0.5};
  const Seconds left = std::min<Seconds>(until - Clock::now(), signOfLife);
  if (left <= Seconds::zero()) return;
  const timespec time{0, static_cast<long>(left.count() * 1e9)};
  ::nanosleep(&time, nullptr);
}

void run(const Settings& settings) {
  const loamshow::SwitchState state = loamshow::loadStateFile(settings.state);
  stopOnSignals();
  const LoamCounters::CounterRegionWriter writer = loamshow::publish(state, settings.region);
  Motion motion(state, settings.speed, settings.seed);
  const Clock::time_point start = Clock::now();
  Clock::time_point last = start;
  while (stopped == 0 && Seconds(Clock::now() - start).count() < settings.seconds) {
    writer.alive();
    const Clock::time_point now = Clock::now();
    if (settings.speed > 0 && Seconds(now - last).count() * 1000 >= settings.periodMs) {
      motion.advance(Seconds(now - last).count(), writer);
      last = now;
    }
    if (settings.periodMs == 0 && settings.speed > 0) continue;
    const Seconds next =
        std::min(Seconds(last - start).count() + settings.periodMs / 1000, settings.seconds) * Seconds(1);
    rest(start +
         std::chrono::duration_cast<Clock::duration>(std::max(next, Seconds(now - start) + Seconds(0.001))));
  }
  writer.remove();
}

int complain(int status, const char* problem) {
  std::cerr << "loamsim: " << problem << std::endl;
  return status;
}

}  // namespace

}  // namespace loamsim

int main(int argc, char** argv) {
  using namespace loamsim;
  try {
    if (const auto settings = settingsOf(argc, argv)) {
      run(*settings);
    } else {
      std::cout << help << std::flush;
    }
    return exitDone;
  } catch (const loamshow::InputError& error) {
    return complain(exitUsage, error.what());
  } catch (const LoamCounters::RegionException& error) {
    return complain(exitUsage, error.what());
  } catch (const std::exception& error) {
    return complain(exitFailed, error.what());
  }
}
