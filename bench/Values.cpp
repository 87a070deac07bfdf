#include "bench/Values.h"

namespace loambench {

namespace {

U64 mixed(U64 n) {
  n = (n ^ (n >> 30U)) * 0xbf58476d1ce4e5b9;
  n = (n ^ (n >> 27U)) * 0x94d049bb133111eb;
  return n ^ (n >> 31U);
}

}  // namespace

U64 busyCount(U64 n) {
  const U64 random = mixed(n + 1);
  const U64 kind = random % 12;
  if (kind < 4) return 0;
  if (kind == 4) return random / 12 % 100'000;
  U64 power = 1'000'000'000;
  for (U64 i = random / 12 % 6; i > 0; --i) power *= 10;
  return power + mixed(random) % (power * 9);
}

LoamCounters::CounterQuad busyQuad(U64 n) {
  return {busyCount(4 * n), busyCount(4 * n + 1), busyCount(4 * n + 2), busyCount(4 * n + 3)};
}

}  // namespace loambench
