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

using testing::ElementsAre;

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
  first = nullptr;
  EXPECT_FALSE(gone);
}

TEST(Mote, RQueueKeepsOrderAcrossBlocks) {
  Mote::RQueue<int> queue;
  EXPECT_EQ(queue.deq(), 0);
  for (int i = 1; i <= 20'000; ++i) queue.enq(i);
  for (int i = 1; i <= 10'000; ++i) ASSERT_EQ(queue.deq(), i);
  EXPECT_EQ(queue.front(), 10'001);
  EXPECT_EQ(queue.back(), 20'000);
  int next = 10'001;
  for (const int item : queue) ASSERT_EQ(item, next++);
  EXPECT_EQ(next, 20'001);
  EXPECT_EQ(queue.size(), 10'000U);
  queue.clear();
  EXPECT_EQ(queue.front(), 0);
  EXPECT_TRUE(queue.begin() == queue.end());
}

TEST(Vane, IdentifiersNameThemselvesInTheirErrors) {
  const auto text = [](auto make) {
    try {
      make();
      return std::string("no error");
    } catch (const Vane::RangeException& error) {
      return std::string(error.what());
    }
  };
  using namespace Hardware::Loam;
  const std::string port =
      "Hardware::Loam::SystemPhyPortId::value < Hardware::Loam::SystemPhyPortId::min or > "
      "Hardware::Loam::SystemPhyPortId::null not allowed";
  EXPECT_EQ(text([] { SystemPhyPortId(1); }), port);
  EXPECT_EQ(text([] { SystemPhyPortId(32768); }), port);
  EXPECT_EQ(text([] { SystemPhyPortId(65536 + 34); }), port);
  EXPECT_EQ(text([] { SystemPhyPortId(32767); }), "no error");
  EXPECT_EQ(text([] { ++LocalCoreId(6); }),
            "Hardware::Loam::LocalCoreId::value < Hardware::Loam::LocalCoreId::min or > "
            "Hardware::Loam::LocalCoreId::null not allowed");
  EXPECT_EQ(text([] { LoamCounters::EgressCounter().quad(32); }),
            "LoamCounters::EgressCounterIndex::value < LoamCounters::EgressCounterIndex::min or > "
            "LoamCounters::EgressCounterIndex::max not allowed");
  EXPECT_EQ(text([] { LoamCounters::EgressTmCounter().quad(61); }),
            "LoamCounters::EgressTmCounterIndex::value < LoamCounters::EgressTmCounterIndex::min or > "
            "LoamCounters::EgressTmCounterIndex::max not allowed");
}

TEST(Vane, OrderedMapsMayChangeDuringAWalk) {
  Vane::OrderedMap<int, std::string> map;
  for (const int key : {10, 20, 30, 40}) map.set(key, "old");
  std::vector<int> visited;
  for (const auto& [key, item] : map) {
    visited.push_back(key);
    EXPECT_EQ(item, key == 40 ? "new" : "old");
    if (key == 10) map.set(5, "below the walk");
    if (key == 20) {
      map.remove(20);  // the entry that the walk is at
      map.remove(30);
      map.set(40, "new");
      map.set(35, "old");
    }
  }
  EXPECT_THAT(visited, ElementsAre(10, 20, 35, 40));
  for (auto at = map.begin(); at != map.end(); ++at) map.clear();
  EXPECT_EQ(map.size(), 0U);
}

TEST(Vane, DenseMapsHoldWhatMapsHold) {
  // Few different hashes, so that searches run into each other.
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
    for (int other = 0; other < 60; ++other) ASSERT_EQ(ours.find(other) != nullptr, theirs.contains(other));
  }
}

TEST(Vane, VersionsMoveWithEveryChange) {
  Vane::HashMap<int, int> map;
  std::vector<U32> versions = {map.version()};
  const auto note = [&] { versions.push_back(map.version()); };
  map.set(1, 1);
  note();
  map.set(1, 2);
  note();
  map.remove(1);
  note();
  map.remove(1);
  EXPECT_EQ(map.version(), versions.back()) << "nothing changed";
  EXPECT_THAT(versions, ElementsAre(0, 1, 2, 3));
}

TEST(Nexo, NamesAndKinds) {
  using Kind = Nexo::IntfId::Kind;
  struct Case {
    const char* name;
    const char* shortName;
    Kind kind;
  };
  const Case cases[] = {{"Ethernet1/2", "Et1/2", Kind::ethernet},
                        {"Ethernet1/2.100", "Et1/2.100", Kind::subInterface},
                        {"Ethernet1.", "Et1.", Kind::ethernet},
                        {"Ethernet", "Et", Kind::other},
                        {"EthernetX1", "EtX1", Kind::other},
                        {"ethernet1", "ethernet1", Kind::other},
                        {"Port-Channel7", "Po7", Kind::portChannel},
                        {"Port-Channel7.1", "Po7.1", Kind::subInterface},
                        {"Port-Channel", "Po", Kind::other},
                        {".5", ".5", Kind::subInterface},
                        {"5", "5", Kind::other},
                        {"MyEthernet1", "MyEthernet1", Kind::other}};
  for (const Case& c : cases) {
    const Nexo::IntfId intf(c.name);
    EXPECT_EQ(intf.stringValue(), c.name);
    EXPECT_EQ(intf.shortName(), c.shortName) << c.name;
    EXPECT_EQ(intf.kind(), c.kind) << c.name;
    EXPECT_EQ(intf, Nexo::IntfId(std::string(c.name)));
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
  const auto text = [](double utc) { return Keel::utcTimestampString(Vane::Seconds(utc)); };
  EXPECT_EQ(text(0), "1970-01-01 00:00:00");
  EXPECT_EQ(text(-0.5), "1969-12-31 23:59:59");
  EXPECT_EQ(text(951782399.9), "2000-02-28 23:59:59");
  EXPECT_EQ(text(951782400), "2000-02-29 00:00:00");
  EXPECT_EQ(text(-62167219200), "0000-01-01 00:00:00");
  EXPECT_EQ(text(-62167219200.5), "invalid");
  EXPECT_EQ(text(253402300799.5), "9999-12-31 23:59:59");
  EXPECT_EQ(text(253402300800), "invalid");
  EXPECT_EQ(text(std::nan("")), "invalid");
  EXPECT_EQ(text(-HUGE_VAL), "invalid");
  EXPECT_EQ(Keel::MaybeU63(-7).stringValue(), "");
  EXPECT_EQ(Keel::MaybeU63(0).stringValue(), "0");
}

}  // namespace

}  // namespace loamtest
