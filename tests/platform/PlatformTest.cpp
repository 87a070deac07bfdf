#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <random>
#include <thread>

#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/Keel.h"
#include "platform/Nexo.h"
#include "platform/Vane.h"
#include "platform/Wisp.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

TEST(Mote, HandlesCountTheirUsers) {
  struct Thing : Mote::Node {
    explicit Thing(bool& ended) : gone(ended) {}
    ~Thing() override { gone = true; }
    bool& gone;
  };
  bool gone = false;
  Mote::Ptr<Thing> first = Mote::make<Thing>(gone);
  {
    const Mote::Ptr<const Thing> second = first;
    const Mote::Ptr<Mote::Node> third = first;
    EXPECT_EQ(first->users(), 3U);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        for (int j = 0; j < 100'000; ++j) const Mote::Ptr<const Thing> copy = second;
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(first->users(), 3U);
  }
  const Mote::Ptr<Thing> moved = std::move(first);
  EXPECT_EQ(moved->users(), 1U);
  EXPECT_EQ(moved->publisher(), moved.get());
  first = nullptr;
  EXPECT_FALSE(gone);
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
    try {
      make();
      ADD_FAILURE() << type;
    } catch (const Vane::RangeException& error) {
      EXPECT_EQ(error.what(),
                type + "::value < " + type + "::min or > " + type + "::" + most + " not allowed");
    }
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
      const auto item = ours.take(key);
      ASSERT_EQ(item.has_value(), theirs.contains(key));
      if (item) {
        ASSERT_EQ(*item, theirs[key]);
      }
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
  Ports elsewhere;
  const std::tuple<const char*, std::function<void(Ports&)>, std::vector<U32>> cases[] = {
      {"nothing", [](Ports&) {}, {101, 102, 103}},
      {"the entry before it", [](Ports& all) { all.remove(1); }, {101, 102, 103}},
      {"itself", [](Ports& all) { EXPECT_EQ(all.remove(2), Port(102)); }, {101, 102, 103}},
      {"the entry above it", [](Ports& all) { all.remove(3); }, {101, 102}},
      {"all entries", [](Ports& all) { all.clear(); }, {101, 102}},
      {"itself replaced", [](Ports& all) { all.set(2, Port(9)); }, {101, 102, 103}},
      // From a collection with the same number of changes.
      {"an assignment",
       [&](Ports& all) {
         all = ports({1, 4, 5});
       },
       {101, 102, 104, 105}},
      {"an assignment of itself", [](Ports& all) { all = Ports(all); }, {101, 102, 103}},
      {"a swap",
       [&](Ports& all) {
         std::swap(all, elsewhere = ports({7, 8, 9}));
       },
       {101, 102, 107, 108, 109}},
      {"a move", [&](Ports& all) { elsewhere = std::move(all); }, {101, 102, 103}}};
  for (const auto& [name, change, expected] : cases) {
    Ports all = ports({1, 2, 3});
    std::vector<U32> walked;
    for (const auto& [key, port] : all) {
      walked.push_back(port.value());
      if (key == 2) change(all);
    }
    EXPECT_EQ(walked, expected) << name;
  }
  Ports all = ports({1, 2, 3});
  const U32 version = all.version();
  all = ports({1, 2, 3});
  EXPECT_NE(all.version(), version);
  const U32 assigned = all.version();
  all.set(3, Port(103));
  EXPECT_NE(all.version(), assigned);
  EXPECT_EQ(all.get(3), Port(103));
  EXPECT_EQ(all.get(4), Hardware::Loam::nullPort);
  EXPECT_EQ(all.remove(4), Hardware::Loam::nullPort);
}

TEST(Records, AreTheirCountsUpToTheLastSetAndAreAssignedWhole) {
  using LoamCounters::IngressCounter;
  const std::array<IngressCounter, 3> queues = {{{1, 2, 3, 4}, {}, {5, 6, 7, 8}}};
  const LoamCounters::IngressTcCounter given({{9, 9, 9, 9}}, queues);
  LoamCounters::IngressTcCounter longer;
  longer.queueIs(LoamCounters::IngressCounterIndex(6), queues[0]);
  LoamCounters::IngressTcCounter none;
  for (LoamCounters::IngressTcCounter* record : {&longer, &none}) {
    *record = given;
    EXPECT_EQ(record->total, given.total);
    EXPECT_TRUE(std::ranges::equal(record->queues(), queues));
    EXPECT_EQ((*record)[LoamCounters::IngressCounterIndex(6)], IngressCounter());
  }
}

TEST(Wisp, TakesNoStandardStreamsPlace) {
  const MemoryFile file;
  const auto traceWithoutStandardInput = [&] {
    ::close(STDIN_FILENO);
    ::setenv("LOAM_TRACE", file.path().c_str(), 1);
    Wisp::trace("kept");
    std::_Exit(::fcntl(STDIN_FILENO, F_GETFD) < 0 ? 0 : 1);
  };
  EXPECT_EXIT(traceWithoutStandardInput(), testing::ExitedWithCode(0), "");
  EXPECT_THAT(file.content(), testing::EndsWith("Z kept\n"));
}

TEST(Nexo, NamesAndKinds) {
  using Kind = Nexo::IntfId::Kind;
  const std::tuple<const char*, const char*, Kind> cases[] = {
      {"Ethernet1/2", "Et1/2", Kind::ethernet},
      {"Ethernet1/2.100", "Et1/2.100", Kind::subInterface},
      {"Ethernet1.", "Et1.", Kind::ethernet},
      {"Ethernet1.Q0", "Et1.Q0", Kind::ethernet},
      {"Ethernet0", "Et0", Kind::ethernet},
      {"Ethernet9", "Et9", Kind::ethernet},
      {"Ethernet", "Et", Kind::other},
      {"EthernetA", "EtA", Kind::other},
      {"Ethernet-1", "Et-1", Kind::other},
      {"ethernet1", "ethernet1", Kind::other},
      {"Port-Channel7", "Po7", Kind::portChannel},
      {"Port-Channel7.1", "Po7.1", Kind::subInterface},
      {"Port-Channel", "Po", Kind::other},
      {".5", ".5", Kind::subInterface},
      {"MyEthernet1", "MyEthernet1", Kind::other}};
  for (const auto& [name, shortName, kind] : cases) {
    const Nexo::IntfId intf(name);
    EXPECT_EQ(intf.stringValue(), name);
    EXPECT_EQ(intf.shortName(), shortName) << name;
    EXPECT_EQ(intf.kind(), kind) << name;
    EXPECT_EQ(intf, Nexo::IntfId(std::string(name)));
  }
  EXPECT_EQ(Nexo::IntfId(""), Nexo::IntfId());
  EXPECT_NE(Nexo::IntfId("a"), Nexo::IntfId());
}

TEST(Threads, AgreeOnInterfaceIds) {
  std::vector<std::vector<Nexo::IntfId>> made(4);
  std::vector<std::thread> threads;
  for (auto& ids : made) {
    threads.emplace_back([&ids] {
      for (int i = 0; i < 20'000; ++i) ids.emplace_back("Thread" + std::to_string(i));
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const auto& ids : made) EXPECT_EQ(ids, made.front());
}

TEST(Keel, TimesAsText) {
  const std::pair<double, const char*> cases[] = {{0, "1970-01-01 00:00:00"},
                                                  {-0.5, "1969-12-31 23:59:59"},
                                                  {951782399.9, "2000-02-28 23:59:59"},
                                                  {951782400, "2000-02-29 00:00:00"},
                                                  {-62167219200, "0000-01-01 00:00:00"},
                                                  {-62167219200.5, "invalid"},
                                                  {253402300799.5, "9999-12-31 23:59:59"},
                                                  {253402300800, "invalid"},
                                                  {std::nan(""), "invalid"},
                                                  {-HUGE_VAL, "invalid"}};
  for (const auto& [utc, text] : cases) EXPECT_EQ(Keel::utcTimestampString(Vane::Seconds(utc)), text);
  EXPECT_EQ(Keel::MaybeU63(-7).stringValue(), "");
  EXPECT_EQ(Keel::MaybeU63(0).stringValue(), "0");
}

}  // namespace

}  // namespace loamtest
