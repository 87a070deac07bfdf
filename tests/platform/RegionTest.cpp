// Counter regions: readers get consistent records as they were written, or an error, whatever happens to the
// file.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "loamshow/state/Capture.h"
#include "loamshow/state/RegionState.h"
#include "loamshow/state/Source.h"
#include "loamshow/state/StateFile.h"
#include "platform/counteragent/RegionReader.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using namespace LoamCounters;
using Brim::Counters::Counter;
using loamshow::SwitchState;
using testing::HasSubstr;
using testing::ThrowsMessage;

Region::PtrConst mapped(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  auto region = Mote::make<Region>(fd, "R");
  ::close(fd);
  return region;
}

/// A region of a switch, in its own directory.
struct Made {
  explicit Made(const SwitchState& state) : writer(loamshow::publish(state, path)) {}
  SwitchState read() const { return loamshow::Source(path).read(); }
  Region::PtrConst mapped() const { return loamtest::mapped(path); }
  std::string content() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  TemporaryDirectory directory;
  std::string path = directory.path() + "/region";
  CounterRegionWriter writer;
};

/// A switch with records of each kind, and two FAPs with debug counters.
SwitchState busyState() {
  Json state = smallSwitch();
  state["counters"]["egressAcl"] = {{"Ethernet1", 7}, {"Loopback0", nullptr}};
  state["counters"]["egressMtu"] = {{"7", {{"enqueuedPackets", 5}, {"totalPackets", 9}}},
                                    {"3", {{"droppedPackets", 1}}}};
  state["counters"]["ingress"].push_back(
      {{"fapId", 0}, {"coreId", 6}, {"intfId", ""}, {"queues", Json::array({quad(1)})}, {"total", quad(9)}});
  state["debug"]["faps"]["F1"]["snapshots"] = {
      {"now", Json::array({{{"value", 3}, {"lastUpdate", 1.5}, {"overflow", true}}, {{"value", 4}}})},
      {"old", Json::array()}};
  state["debug"]["faps"]["F2"]["snapshots"] = Json::object();
  return loamshow::parseState("state", state.dump());
}

/// The state file of a switch, without the time at which it was read.
std::string captured(SwitchState state) {
  state.takenAt = {};
  std::string text;
  loamshow::JsonWriter out(text, loamshow::JsonWriter::Layout::indented);
  loamshow::capture(state, out);
  return text;
}

bool same(const IngressTcCounter& left, const IngressTcCounter& right) {
  return left.total == right.total && std::ranges::equal(left.queues(), right.queues());
}

const Nexo::IntfId intf1("Ethernet1");
const EgressCounterKey key1{intf1, 56};
const FapId fap3(3);
const LocalCoreId core1(1);

TEST(Region, HoldsWhatItsSwitchHolds) {
  for (const SwitchState& state : {SwitchState(), busyState()}) {
    const Made made(state);
    EXPECT_EQ(captured(made.read()), captured(state));
    EXPECT_EQ(made.directory.names(), std::vector<std::string>{"region"}) << "no file of the making is left";

    // Sums, and keys without a record.
    const RegionTables tables(made.mapped());
    const RecordTables& want = *state.counters;
    for (const char* const name : {"Ethernet1", "Ethernet3", "Port-Channel1", "Loopback0", "nobody", ""}) {
      const Nexo::IntfId intf(name);
      const EgressCounterKey key{intf, 56};
      for (const auto& [fap, core] : {std::pair(fap3, core1), std::pair(fap3, LocalCoreId(5)),
                                      std::pair(Hardware::Loam::nullFap, Hardware::Loam::aggregateCore)}) {
        EXPECT_TRUE(same(tables.ingressTcCounter(fap, core, intf), want.ingressTcCounter(fap, core, intf)));
        for (const U8 t : {U8{0}, U8{7}, U8{8}, U8{79}}) {
          const IngressCounterKey queue{intf, fap, core, t};
          EXPECT_EQ(tables.ingressCounter(queue), want.ingressCounter(queue)) << name << ' ' << int{t};
        }
      }
      EXPECT_EQ(tables.ingressSources(intf), want.ingressSources(intf));
      EXPECT_EQ(tables.egressCounter(key).counts, want.egressCounter(key).counts);
      EXPECT_EQ(tables.egressTmCounter(key).counts, want.egressTmCounter(key).counts);
      EXPECT_EQ(tables.egressLagCounter(key).counts, want.egressLagCounter(key).counts);
      EXPECT_EQ(tables.egressAclCounter(key).null(), want.egressAclCounter(key).null());
    }
    EXPECT_TRUE(tables.egressMtuTotalCounter(FapId(11)).null());
  }
}

TEST(Region, ShowsUpdatesOfItsRecords) {
  const Made made(busyState());
  const CounterRegionWriter& writer = made.writer;
  const Region::PtrConst region = made.mapped();
  const RegionTables tables(region);
  const RegionShmemManager manager(region, region->managers().at(0));

  IngressTcCounter ingress({CounterQuad{9, 8, 7, 6}}, {});
  ingress.queueIs(IngressCounterIndex(0), {{5, 6, 7, 8}});
  EXPECT_TRUE(writer.ingressIs(fap3, core1, intf1, ingress));
  ingress.queueIs(IngressCounterIndex(7), {});
  EXPECT_TRUE(same(tables.ingressTcCounter(fap3, core1, intf1), ingress)) << "the other queues are zero";
  EXPECT_TRUE(writer.egressAclIs(intf1, {}));
  EXPECT_TRUE(tables.egressAclCounter(key1).null());
  EXPECT_TRUE(writer.debugCounterIs("F1", "now", 1, {.value = 8}));
  EXPECT_EQ(manager.counter("now", 1).value, 8U);
  EXPECT_EQ(manager.counter("now", 2).value, 0U);
  const U64 heartbeat = region->heartbeat();
  writer.alive();
  EXPECT_GT(region->heartbeat(), heartbeat);

  const std::string settled = made.content();
  const Nexo::IntfId intf3("Ethernet3");
  ingress.queueIs(IngressCounterIndex(8), {});
  EXPECT_FALSE(writer.ingressIs(fap3, core1, intf1, ingress)) << "more queues than the record has";
  EXPECT_FALSE(writer.ingressIs(fap3, LocalCoreId(2), intf1, {}));
  EXPECT_FALSE(writer.egressIs(intf3, {}));
  EXPECT_FALSE(writer.egressTmIs(intf1, {}));
  EXPECT_FALSE(writer.egressLagIs(intf1, {}));
  EXPECT_FALSE(writer.egressAclIs(intf3, {}));
  EXPECT_FALSE(writer.egressMtuIs(FapId(4), {}));
  EXPECT_FALSE(writer.debugCounterIs("F1", "now", 2, {}));
  EXPECT_FALSE(writer.debugCounterIs("F2", "now", 0, {}));
  EXPECT_EQ(made.content(), settled);

  // Readers keep the region that they have mapped.
  const CounterRegionWriter next = loamshow::publish(busyState(), made.path);
  EXPECT_TRUE(tables.egressAclCounter(key1).null());
  EXPECT_FALSE(made.read().counters->egressAclCounter(key1).null());
  writer.remove();
  EXPECT_EQ(made.directory.names(), std::vector<std::string>{"region"}) << "that is another writer's file";
  next.remove();
  EXPECT_EQ(made.directory.names(), std::vector<std::string>());
}

/// The bytes of a region, with access to its parts.
struct Bytes {
  std::string bytes;

  template <class T>
  T& at(U64 offset) {
    return *static_cast<T*>(static_cast<void*>(&bytes[offset]));
  }
  /// A part with a fraction of the region's size.
  RegionPart part(U64 divisor) const { return {sizeof(RegionHeader), bytes.size() / divisor}; }
  RegionHeader& header() { return at<RegionHeader>(0); }
  RegionInterface& intf(U64 i) { return (&at<RegionInterface>(header().interfaces.offset))[i]; }
  RegionSource& source(U64 i, U64 j) { return (&at<RegionSource>(intf(i).sources.offset))[j]; }
  RegionFap& fap(U64 i) { return (&at<RegionFap>(header().faps.offset))[i]; }
  RegionManager& manager(U64 i) { return (&at<RegionManager>(header().managers.offset))[i]; }
  RegionSnapshot& snapshot(U64 i) { return (&at<RegionSnapshot>(manager(0).snapshots.offset))[i]; }
};

TEST(Region, IsRefusedWhenDamaged) {
  const std::string whole = Made(busyState()).content();
  const auto refused = [](const std::string& bytes) {
    try {
      const Region region(MemoryFile(bytes).fd(), "R");
      return std::string("none");
    } catch (const RegionException& error) {
      return std::string(error.what());
    }
  };
  EXPECT_EQ(refused(whole), "none");
  for (const std::size_t size :
       {std::size_t{0}, sizeof(RegionHeader) - 1, sizeof(RegionHeader), whole.size() - 1}) {
    EXPECT_EQ(refused(whole.substr(0, size)), "R: truncated counter region");
  }
  EXPECT_THROW(Region(-1, "R"), RegionException);
  constexpr U64 far = ~U64{0};
  constexpr U64 aligned = far - 7;
  const char* const badRecord = "invalid offset or size of a record";
  const char* const badInterfaces = "invalid offset or size of the interfaces";
  const std::pair<void (*)(Bytes&), const char*> cases[] = {
      {[](Bytes& in) { in.header().magic[7] = 's'; }, "not a counter region"},
      {[](Bytes& in) { in.header().byteOrder = 0x04030201; }, "a counter region with another byte order"},
      {[](Bytes& in) { in.header().byteOrder = 0; }, "unknown byte order"},
      {[](Bytes& in) { in.header().version = 2; }, "a counter region of version 2, expected version 1"},
      {[](Bytes& in) { ++in.header().size; }, "truncated counter region"},
      {[](Bytes& in) { --in.header().size; }, "the size in its header is too small"},
      {[](Bytes& in) { in.header().description.count = far; }, "invalid offset or size of a text"},
      {[](Bytes& in) { in.header().interfaces.offset += 1; }, badInterfaces},
      {[](Bytes& in) { in.header().interfaces.count = far / 64 + 2; }, badInterfaces},
      {[](Bytes& in) { in.intf(1).name = in.intf(0).name; }, "a repeated interface"},
      {[](Bytes& in) { in.intf(1).name.offset = far; }, "invalid offset or size of a text"},
      {[](Bytes& in) { in.bytes[in.intf(1).name.offset] = '\0'; }, "a name with U+0000"},
      {[](Bytes& in) { in.bytes[in.intf(1).name.offset] = '\xff'; }, "a name that is not UTF-8"},
      {[](Bytes& in) { in.intf(1).sources.count = far / 16 + 2; },
       "invalid offset or size of an interface's sources"},
      {[](Bytes& in) { in.intf(1).sources = in.intf(0).sources = in.part(17); }, "damaged"},
      {[](Bytes& in) { std::swap(in.source(0, 0), in.source(0, 1)); },
       "sources of an interface out of order"},
      {[](Bytes& in) { in.source(0, 1) = in.source(0, 0); }, "sources of an interface out of order"},
      {[](Bytes& in) { in.source(0, 0).fap = 2047; }, "an unknown FAP or core"},
      {[](Bytes& in) { in.source(0, 0).core = 7; }, "an unknown FAP or core"},
      {[](Bytes& in) { in.source(0, 0).queues = 81; }, "a record with too many queues"},
      {[](Bytes& in) { in.source(0, 0).record = 0; }, "a missing record"},
      {[](Bytes& in) { in.source(0, 0).record += 4; }, badRecord},
      {[](Bytes& in) { in.source(0, 0).record = in.bytes.size() - 8; }, badRecord},
      {[](Bytes& in) { in.intf(0).egress = aligned; }, badRecord},
      {[](Bytes& in) { in.intf(0).egressTm = aligned; }, badRecord},
      {[](Bytes& in) { in.intf(0).egressLag = aligned; }, badRecord},
      {[](Bytes& in) { in.intf(0).egressAcl = aligned; }, badRecord},
      {[](Bytes& in) { in.header().faps.count = far; }, "invalid offset or size of the FAPs"},
      {[](Bytes& in) { std::swap(in.fap(0), in.fap(1)); }, "FAPs out of order"},
      {[](Bytes& in) { in.fap(1).fap = 2047; }, "an unknown FAP"},
      {[](Bytes& in) { in.fap(0).record = 0; }, "a missing record"},
      {[](Bytes& in) { in.header().managers.count = far; }, "invalid offset or size of the debug counters"},
      {[](Bytes& in) { in.manager(1).fap = in.manager(0).fap; }, "repeated debug counters of a FAP"},
      {[](Bytes& in) { in.manager(0).snapshots.offset = far; }, "invalid offset or size of the snapshots"},
      {[](Bytes& in) { in.snapshot(1).name = in.snapshot(0).name; }, "a repeated snapshot"},
      {[](Bytes& in) { in.snapshot(0).records.count = in.bytes.size(); },
       "invalid offset or size of a snapshot"},
      {[](Bytes& in) { in.manager(1).fap = in.manager(0).fap = in.part(2); }, "damaged"}};
  for (const auto& [damage, problem] : cases) {
    Bytes region{whole};
    damage(region);
    EXPECT_THAT(refused(region.bytes), testing::AllOf(testing::StartsWith("R: "), HasSubstr(problem)));
  }
}

TEST(Region, NamesARecordThatStaysHalfWritten) {
  const Made made(busyState());
  Bytes bytes{made.content()};
  const Region::PtrConst region = made.mapped();
  const RegionTables tables(region);
  const RegionShmemManager manager(region, region->managers().at(0));
  const auto halfWritten = [&](U64 record) { putWord(made.path, record, 1); };
  for (U64 i = 0; i < bytes.header().interfaces.count; ++i) {
    const RegionInterface& intf = bytes.intf(i);
    for (const U64 record : {intf.egress, intf.egressTm, intf.egressLag, intf.egressAcl}) {
      if (record != 0) halfWritten(record);
    }
  }
  halfWritten(bytes.source(0, 1).record);
  halfWritten(bytes.fap(0).record);
  for (U64 i = 0; i < bytes.manager(0).snapshots.count; ++i) {
    const RegionPart records = bytes.snapshot(i).records;
    if (records.count > 1) halfWritten(records.offset + region::recordSize(region::debugWords));
  }
  const EgressCounterKey key3{Nexo::IntfId("Ethernet3"), 56};
  const EgressCounterKey channel{Nexo::IntfId("Port-Channel1"), 56};
  const IngressCounterKey queue{intf1, fap3, core1, 2};
  constexpr auto all = Hardware::Loam::aggregateCore;
  const char* const ingress = "ingress counters of Ethernet1 on FAP 3, core 1";
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { tables.ingressTcCounter(fap3, core1, intf1); }, ingress},
      {[&] { tables.ingressTcCounter(Hardware::Loam::nullFap, all, intf1); }, ingress},
      {[&] { tables.ingressCounter(queue); }, ingress},
      {[&] { tables.egressCounter(key1); }, "egress counters of Ethernet1"},
      {[&] { tables.egressTmCounter(key3); }, "egress TM counters of Ethernet3"},
      {[&] { tables.egressLagCounter(channel); }, "egress LAG counters of Port-Channel1"},
      {[&] { tables.egressAclCounter(key1); }, "egress ACL counter of Ethernet1"},
      {[&] { tables.egressMtuTotalCounter(fap3); }, "egress MTU counters of FAP 3"},
      {[&] { manager.counter("now", 1); }, "debug counter 1 of F1, snapshot now"}};
  std::vector<std::jthread> threads;  // in threads, because each read waits
  for (const auto& [read, name] : cases) {
    threads.emplace_back([&read = read, name = name] {
      const auto start = std::chrono::steady_clock::now();
      EXPECT_THAT(read, ThrowsMessage<RecordException>(
                            std::string("R: ") + name +
                            " cannot be read: the writer stopped in the middle of the record"));
      EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    });
  }
  threads.clear();
  EXPECT_NO_THROW(tables.ingressTcCounter(fap3, LocalCoreId(0), intf1));
  // Overwriting usually changes the header, too: the error is then about the region, not the writer.
  putWord(made.path, 0, 0);
  EXPECT_THAT(cases[3].first,
              ThrowsMessage<RegionException>("R: damaged counter region: overwritten while it was read"));
}

TEST(Region, SurvivesBeingTruncatedWhileRead) {
  loamshow::surviveTruncatedRegions();
  const Made made(busyState());
  const RegionTables tables(made.mapped());
  const auto read = [&] { tables.egressCounter(key1); };
  EXPECT_NO_THROW(read());
  std::filesystem::resize_file(made.path, 0);
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(read,
                ThrowsMessage<RegionException>("R: the counter region was truncated while it was read"));
  }
}

/// A record in which each count determines all others.
IngressTcCounter telling(U64 value) {
  IngressTcCounter record({CounterQuad{value, value * 64, value, value * 64}}, {});
  for (U64 t = 0; t < 8; ++t) {
    record.queueIs(IngressCounterIndex(t), {{value + t, (value + t) * 64, value - t, (value - t) * 64}});
  }
  return record;
}

TEST(Threads, ReadRecordsOfARegionWhole) {
  const TemporaryDirectory directory;
  const std::string path = directory.path() + "/region";
  const auto tables = Mote::make<MemoryCounterTables>();
  const auto manager = Mote::make<Brim::Counters::MemoryShmemManager>();
  manager->values.set("now", std::vector<Counter>(1));
  for (const U64 core : {0U, 1U}) tables->ingressIs(FapId(0), LocalCoreId(core), intf1, telling(0));
  const CounterRegionWriter writer(path, "", *tables, {{"F", manager}});
  std::vector<std::jthread> writing;
  for (const U64 core : {0U, 1U}) {
    writing.emplace_back([&, core](const std::stop_token& stop) {
      for (U64 i = 1; !stop.stop_requested(); ++i) {
        const Vane::Seconds time(static_cast<double>(i));
        writer.ingressIs(FapId(0), LocalCoreId(core), intf1, telling(i));
        if (core == 0) writer.debugCounterIs("F", "now", 0, {i, time, time, time, i % 2 != 0});
        writer.alive();
      }
    });
  }
  const Region::PtrConst region = mapped(path);
  const RegionTables reader(region);
  const RegionShmemManager debug(region, region->managers().at(0));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
  U64 changes = 0;
  for (U64 last = 0; std::chrono::steady_clock::now() < end;) {
    const IngressTcCounter read = reader.ingressTcCounter(FapId(0), LocalCoreId(1), intf1);
    const U64 value = read.total.enqueuedPackets;
    ASSERT_GE(value, last) << "never back to an older one";
    ASSERT_TRUE(same(read, telling(value)));
    changes += value != last ? 1 : 0;
    last = value;
    const IngressCounter one = reader.ingressCounter({intf1, FapId(0), LocalCoreId(0), 3});
    ASSERT_EQ(one.enqueuedPackets * 64, one.enqueuedBytes);
    const IngressTcCounter sum =
        reader.ingressTcCounter(Hardware::Loam::nullFap, Hardware::Loam::aggregateCore, intf1);
    ASSERT_TRUE(same(sum, IngressTcCounter(telling(0)) += telling(sum.total.enqueuedPackets)));
    const Counter counter = debug.counter("now", 0);
    ASSERT_EQ(static_cast<double>(counter.value), counter.lastDiscontinuity.value());
    ASSERT_EQ(counter.value % 2 != 0, counter.overflow);
  }
  EXPECT_GT(changes, 10U);  // a low limit, for busy machines
}

}  // namespace

}  // namespace loamtest
