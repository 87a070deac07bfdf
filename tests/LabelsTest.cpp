#include "LoamCounters/QueueCountersPrinter/Labels.h"

#include <gmock/gmock.h>

#include "LoamCounters/QueueCountersPrinter/NaturalOrder.h"

namespace LoamCounters {

namespace {

TEST(Labels, TrafficClasses) {
  EXPECT_EQ(trafficClassLabel(3, 8, 8, false), "TC3");
  EXPECT_EQ(trafficClassLabel(1, 4, 8, false), "TC2-3");
  EXPECT_EQ(trafficClassLabel(2, 3, 8, false), "TC4-5");
  EXPECT_EQ(trafficClassLabel(2, 8, 8, true), "TC2,6");
  EXPECT_THAT(queueNamesByQueuesPerPort(2, 8), testing::ElementsAre("TC0-3", "TC4-7"));
  EXPECT_THAT(queueNamesByQueuesPerPort(1, 8), testing::ElementsAre("TC0-7"));
  EXPECT_THAT(queueNamesByQueuesPerPort(0, 8), testing::IsEmpty());
  EXPECT_DEATH(trafficClassLabel(0, 9, 8, false), "tcPerPort >= countersPerPort");
  EXPECT_DEATH(trafficClassLabel(4, 8, 8, true), "index < fapAmbiguousTcLabel.size\\(\\)");
}

TEST(Labels, FapCoresAndDestinationTypes) {
  const Hardware::Loam::LocalCoreId core(1);
  EXPECT_EQ(fapCoreLabel("X", core, 0), "X");
  EXPECT_EQ(fapCoreLabel("X", core, 1), "X");
  EXPECT_EQ(fapCoreLabel("X", core, 2), "X.1");
  EXPECT_EQ(destTypeLabel(0, 1), "UC");
  EXPECT_EQ(destTypeLabel(1, 1), "MC");
  EXPECT_EQ(destTypeLabel(1, 3), "MC");
  EXPECT_EQ(destTypeLabel(0, 2), "ucastQueues");
  EXPECT_EQ(destTypeLabel(1, 2), "mcastQueues");
  EXPECT_DEATH(destTypeLabel(2, 1), "false && \"Invalid destType\"");
}

TEST(NaturalOrder, ComparesAsPeopleRead) {
  struct Case {
    const char* a;
    const char* b;
    bool less;     // a before b
    bool greater;  // b before a
  };
  const Case cases[] = {
      {"", "", false, false},
      {"", "a", true, false},
      {"x9", "x10", true, false},
      {"x3", "X3", false, false},
      {"x007", "x7", false, false},
      {"x007a", "x7b", true, false},
      {"a  b", "a b", false, false},
      {"a ", "a  ", false, false},
      {"a", "a ", true, false},
      {"  a", " b", true, false},
      {"B", "a", false, true},
      {"Z", "[", false, true},         // '[' is below 'z'
      {"z", "\xc3\xa4", true, false},  // bytes are unsigned
      {"1.5", "1.50", false, false},
      {"1.50", "1.5x", true, false},
      {"1.05", "1.5", true, false},
      {"1.10", "1.9", true, false},  // a fraction: 0.10 < 0.9
      {"1.1", "1.1001", true, false},
      {"v1.2", "v1.", false, true},
      {"18446744073709551616", "18446744073709551617", true, false},
      {"9", "18446744073709551616", true, false},
      {"a1b", "a1", false, true},
      {"a-1", "a1", true, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(naturalCompare(c.a, c.b), c.less) << '"' << c.a << "\" before \"" << c.b << '"';
    EXPECT_EQ(naturalCompare(c.b, c.a), c.greater) << '"' << c.b << "\" before \"" << c.a << '"';
  }
}

}  // namespace

}  // namespace LoamCounters
