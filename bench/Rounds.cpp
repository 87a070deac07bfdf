#include "bench/Rounds.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace loambench {

namespace {

double cpuTimeOfThisThread() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

}  // namespace

Way here(std::function<void()> work) {
  return [work = std::move(work)] {
    const double begin = cpuTimeOfThisThread();
    work();
    return cpuTimeOfThisThread() - begin;
  };
}

std::vector<Times> inRounds(int rounds, const std::vector<Way>& ways) {
  std::vector<Times> times(ways.size());
  for (const Way& way : ways) way();  // warms up
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < ways.size(); ++i) {
      const std::size_t turn = (static_cast<std::size_t>(round) + i) % ways.size();
      times[turn].push_back(ways[turn]());
    }
  }
  return times;
}

double undisturbed(Times times) {
  const auto place = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 10);
  std::nth_element(times.begin(), place, times.end());
  return *place;
}

double ratio(const Times& times, const Times& to) {
  return undisturbed(times) / undisturbed(to);
}

void requireSame(const std::string& what, const std::string& expected, const std::string& bytes) {
  if (expected == bytes) return;
  const auto at =
      std::mismatch(expected.begin(), expected.end(), bytes.begin(), bytes.end()).first - expected.begin();
  std::fprintf(stderr, "%s: the bytes differ at %td\n", what.c_str(), at);
  std::exit(1);  // NOLINT(concurrency-mt-unsafe): one thread
}

}  // namespace loambench
