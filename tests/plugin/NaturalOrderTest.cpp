#include "LoamCounters/QueueCountersPrinter/NaturalOrder.h"

#include <gmock/gmock.h>

namespace LoamCounters {

namespace {

TEST(NaturalOrder, ComparesAsPeopleRead) {
  enum Order { before, behind, neither };
  const std::tuple<const char*, const char*, Order> cases[] = {
      {"", "", neither},         {"", "a", before},
      {"x9", "x10", before},     {"12", "101", before},
      {"x3", "X3", neither},     {"x007", "x7", neither},
      {"a  b", "a b", neither},  {"a ", "a  ", neither},
      {"a", "a ", before},       {"  a", " b", before},
      {"B", "a", behind},        {"Z", "[", behind},  // '[' is below 'z'
      {"z", "\xc3\xa4", before},                      // bytes are unsigned
      {"1.5", "1.50", neither},  {"1.50", "1.5x", before},
      {"1.05", "1.5", before},   {"1.10", "1.9", before},  // a fraction: 0.10 < 0.9
      {"1.1", "1.1001", before}, {".10", ".5", before},
      {"v1.2", "v1.", behind},   {"18446744073709551616", "18446744073709551617", before},
      {"a-1", "a1", before},     {"x1bb", "x10", before},
  };
  for (const auto& [a, b, order] : cases) {
    EXPECT_EQ(naturalCompare(a, b), order == before) << '"' << a << "\" before \"" << b << '"';
    EXPECT_EQ(naturalCompare(b, a), order == behind) << '"' << b << "\" before \"" << a << '"';
  }
}

}  // namespace

}  // namespace LoamCounters
