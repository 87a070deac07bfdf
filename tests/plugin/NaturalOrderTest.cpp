#include "LoamCounters/QueueCountersPrinter/NaturalOrder.h"

#include <gmock/gmock.h>

#include <random>

namespace LoamCounters {

namespace {

TEST(NaturalOrder, ComparesAsPeopleRead) {
  enum Order { before, after, neither };
  const std::tuple<const char*, const char*, Order> cases[] = {
      {"", "", neither},         {"", "a", before},
      {"x9", "x10", before},     {"12", "101", before},
      {"x3", "X3", neither},     {"x007", "x7", neither},
      {"a  b", "a b", neither},  {"a ", "a  ", neither},
      {"a", "a ", before},       {"  a", " b", before},
      {"B", "a", after},         {"Z", "[", after},  // '[' is below 'z'
      {"z", "\xc3\xa4", before},                     // bytes are unsigned
      {"1.5", "1.50", neither},  {"1.50", "1.5x", before},
      {"1.05", "1.5", before},   {"1.10", "1.9", before},  // a fraction: 0.10 < 0.9
      {"1.1", "1.1001", before}, {".10", ".5", before},
      {"v1.2", "v1.", after},    {"18446744073709551616", "18446744073709551617", before},
      {"a-1", "a1", before},     {"x1bb", "x10", before},
  };
  for (const auto& [a, b, order] : cases) {
    EXPECT_EQ(naturalCompare(a, b), order == before) << '"' << a << "\" before \"" << b << '"';
    EXPECT_EQ(naturalCompare(b, a), order == after) << '"' << b << "\" before \"" << a << '"';
  }
}

TEST(NaturalOrder, IsAStrictWeakOrdering) {
  std::mt19937 random(1);
  // Few different characters, so that names have long common prefixes and differ in all respects that matter.
  const auto name = [&] {
    std::string text(random() % 7, '\0');
    for (char& character : text) character = "0019. aAbB\xc3-"[random() % 12];
    return text;
  };
  const auto same = [](const std::string& a, const std::string& b) {
    return !naturalCompare(a, b) && !naturalCompare(b, a);
  };
  for (int i = 0; i < 200'000; ++i) {
    const std::string a = name();
    const std::string b = name();
    const std::string c = name();
    ASSERT_TRUE(same(a, a));
    ASSERT_FALSE(naturalCompare(a, b) && naturalCompare(b, a));
    ASSERT_TRUE(naturalCompare(a, c) || !naturalCompare(a, b) || !naturalCompare(b, c)) << a << b << c;
    ASSERT_TRUE(same(a, c) || !same(a, b) || !same(b, c)) << a << '|' << b << '|' << c;
  }
}

}  // namespace

}  // namespace LoamCounters
