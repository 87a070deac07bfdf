#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <random>
#include <thread>

#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/Keel.h"
#include "platform/Nexo.h"
#include "platform/Vane.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

TEST(Threads, CountTheUsersOfANode) {
  const Mote::Ptr<const Mote::Node> node = Mote::make<Hardware::Loam::Status>();
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int j = 0; j < 1'000'000; ++j) const Mote::Ptr<const Mote::Node> copy = node;
    });
  }
  threads.clear();
  EXPECT_EQ(node->users(), 1U);
  EXPECT_EQ(node->publisher(), node.get());
}

TEST(Mote, StringsChangeTheCaseOfAsciiLetters) {
  const Mote::String text("@AZ[`az{\xc4");
  EXPECT_EQ(text.lowerCase(), "@az[`az{\xc4");
  EXPECT_EQ(text.upperCase(), "@AZ[`AZ{\xc4");
}

TEST(Mote, RQueueKeepsOrderAcrossBlocks) {
  Mote::RQueue<int> queue;
  EXPECT_EQ(queue.deq(), 0);
  for (int i = 1; i <= 20'000; ++i) queue.enq(i);
  for (int i = 1; i <= 10'000; ++i) ASSERT_EQ(queue.deq(), i);
  EXPECT_EQ(queue.back(), 20'000);
  int next = 10'001;
  for (const int item : queue) ASSERT_EQ(item, next++);
  EXPECT_EQ(next, 20'001);
}

TEST(Vane, IdentifiersNameThemselvesInTheirErrors) {
  using namespace Hardware::Loam;
  using namespace LoamCounters;
  const std::tuple<std::function<void()>, std::string, const char*> cases[] = {
      {[] { SystemPhyPortId(1); }, "Hardware::Loam::SystemPhyPortId", "null"},
      {[] { SystemPhyPortId(32768); }, "Hardware::Loam::SystemPhyPortId", "null"},
      {[] { SystemPhyPortId(65536 + 34); }, "Hardware::Loam::SystemPhyPortId", "null"},
      {[] { ++LocalCoreId(6); }, "Hardware::Loam::LocalCoreId", "null"},
      {[] { FapId(2048); }, "Hardware::Loam::FapId", "null"},
      {[] { FapPortId(257); }, "Hardware::Loam::FapPortId", "null"},
      {[] { VoqId(U64{1} << 32U); }, "Hardware::Loam::VoqId", "max"},
      {[] { IngressCounterIndex(80); }, "LoamCounters::IngressCounterIndex", "max"},
      {[] { EgressCounter().quad(32); }, "LoamCounters::EgressCounterIndex", "max"},
      {[] { EgressTmCounter().quad(61); }, "LoamCounters::EgressTmCounterIndex", "max"},
      {[] { EgressLagCounter().quad(128); }, "LoamCounters::EgressLagCounterIndex", "max"}};
  for (const auto& [make, type, most] : cases) {
    EXPECT_THAT(make, testing::ThrowsMessage<Vane::RangeException>(
                          type + "::value < " + type + "::min or > " + type + "::" + most + " not allowed"));
  }
  EXPECT_NO_THROW(SystemPhyPortId(32767));
}

TEST(Vane, DenseMapsHoldWhatMapsHold) {
  // Few different hashes, to cause collisions.
  struct Clash {
    std::size_t operator()(int key) const { return static_cast<std::size_t>(key % 7); }
  };
  Vane::DenseMap<int, int, Clash> ours;
  std::map<int, int> theirs;
  std::mt19937 random(1);
  for (int i = 0; i < 20'000; ++i) {
    const int key = static_cast<int>(random() % 60);
    if (random() % 2 == 0) {
      ours.set(key, i);
      theirs[key] = i;
    } else {
      ASSERT_EQ(ours.take(key), theirs.contains(key) ? std::optional(theirs[key]) : std::nullopt);
      theirs.erase(key);
    }
    std::map<int, int> walked;
    for (const auto& [at, item] : ours) walked[at] = item;
    ASSERT_EQ(walked, theirs);
  }
}

TEST(Vane, AWalkGoesOnAboveItsEntryWhateverChanges) {
  using Port = Hardware::Loam::SystemPhyPortId;
  using Ports = decltype(Hardware::Loam::Status::olpPort);
  const auto ports = [](std::initializer_list<U16> keys) {
    Ports made;
    for (const U16 key : keys) made.set(key, Port(100U + key));
    return made;
  };
  const Ports sameVersion = ports({1, 4, 5});
  Ports elsewhere = ports({7, 8, 9});
  const std::pair<std::function<void(Ports&)>, std::vector<U32>> cases[] = {
      {[](Ports& all) { all.remove(2); }, {101, 102, 103}},
      {[](Ports& all) { all.remove(3); }, {101, 102}},
      {[](Ports& all) { all.clear(); }, {101, 102}},
      {[&](Ports& all) { all = sameVersion; }, {101, 102, 104, 105}},
      {[&](Ports& all) { std::swap(all, elsewhere); }, {101, 102, 107, 108, 109}},
      {[&](Ports& all) { elsewhere = std::move(all); }, {101, 102, 103}}};
  for (const auto& [change, expected] : cases) {
    Ports all = ports({1, 2, 3});
    std::vector<U32> walked;
    for (const auto& [key, port] : all) {
      walked.push_back(port.value());
      if (key == 2) change(all);
    }
    EXPECT_EQ(walked, expected);
  }
  Ports all = ports({1, 2, 3});
  const U32 made = all.version();
  all = ports({1, 2, 3});
  all.set(3, Port(9));
  EXPECT_EQ(all.remove(3), Port(9));
  EXPECT_EQ(all.remove(3), Hardware::Loam::nullPort);
  EXPECT_EQ(all.version(), made + 3);
}

TEST(Records, AreTheirCountsUpToTheLastSetAndAreAssignedWhole) {
  using namespace LoamCounters;
  const std::vector<IngressCounter> queues = {{{1, 2, 3, 4}}, {}, {{5, 6, 7, 8}}};
  IngressTcCounter record;
  record.queueIs(IngressCounterIndex(6), queues[0]);
  record = IngressTcCounter(queues[2], queues);
  EXPECT_EQ(record.total, queues[2]);
  EXPECT_TRUE(std::ranges::equal(record.queues(), queues));
  EXPECT_EQ(record[IngressCounterIndex(6)], IngressCounter());
}

TEST(Nexo, NamesAndKinds) {
  using Kind = Nexo::IntfId::Kind;
  const std::tuple<const char*, const char*, Kind> cases[] = {
      {"Ethernet1/2", "Et1/2", Kind::ethernet},    {"Ethernet1/2.100", "Et1/2.100", Kind::subInterface},
      {"Ethernet1.Q0", "Et1.Q0", Kind::ethernet},  {"Ethernet0", "Et0", Kind::ethernet},
      {"Ethernet9", "Et9", Kind::ethernet},        {"Ethernet", "Et", Kind::other},
      {"Ethernet-1", "Et-1", Kind::other},         {"ethernet1", "ethernet1", Kind::other},
      {"Port-Channel7", "Po7", Kind::portChannel}, {"Port-Channel7.1", "Po7.1", Kind::subInterface},
      {"Port-Channel", "Po", Kind::other},         {".5", ".5", Kind::subInterface},
      {"Ethernet1.", "Et1.", Kind::ethernet}};
  for (const auto& [name, shortName, kind] : cases) {
    const Nexo::IntfId intf(name);
    EXPECT_EQ(intf.shortName(), shortName);
    EXPECT_EQ(intf.kind(), kind) << name;
  }
  EXPECT_EQ(Nexo::IntfId(""), Nexo::IntfId());
}

TEST(Threads, AgreeOnInterfaceIds) {
  std::vector<std::vector<Nexo::IntfId>> made(4);
  std::vector<std::jthread> threads;
  for (auto& ids : made) {
    threads.emplace_back([&ids] {
      for (int i = 0; i < 20'000; ++i) ids.emplace_back("Thread" + std::to_string(i));
    });
  }
  threads.clear();
  for (const auto& ids : made) EXPECT_EQ(ids, made.front());
}

TEST(Keel, TimesAsText) {
  const std::pair<double, const char*> cases[] = {{-0.5, "1969-12-31 23:59:59"},
                                                  {951868799.9, "2000-02-29 23:59:59"},
                                                  {-62167219200, "0000-01-01 00:00:00"},
                                                  {-62167219200.5, "invalid"},
                                                  {253402300799.5, "9999-12-31 23:59:59"},
                                                  {253402300800, "invalid"},
                                                  {std::nan(""), "invalid"}};
  for (const auto& [utc, text] : cases) EXPECT_EQ(Keel::utcTimestampString(Vane::Seconds(utc)), text);
  EXPECT_EQ(Keel::MaybeU63(-7).stringValue(), "");
}

}  // namespace

}  // namespace loamtest
