// Counter regions: readers get consistent records as they were written, or an error, whatever happens to the
// file.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
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
using loamshow::SwitchState;
using namespace testing;
using Clock = std::chrono::steady_clock;

/// A region of a switch, in its own directory.
struct Made {
  explicit Made(const SwitchState& state) : writer(loamshow::publish(state, path)) {}
  SwitchState read() const { return loamshow::Source(path).read(); }
  Region::PtrConst mapped() const {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    auto region = Mote::make<Region>(fd, "R");
    ::close(fd);
    return region;
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
  state["counters"]["ingress"].push_back({{"fapId", 0},
                                          {"coreId", 6},
                                          {"intfId", "Ethernet1"},
                                          {"queues", Json::array({quad(1)})},
                                          {"total", quad(9)}});
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
const Nexo::IntfId intf3("Ethernet3");
const Nexo::IntfId po1("Port-Channel1");
const FapId fap3(3);
const LocalCoreId core1(1);

EgressCounterKey keyOf(Nexo::IntfId intf) {
  return {intf, 56};
}

TEST(Region, HoldsWhatItsSwitchHolds) {
  for (const SwitchState& state : {SwitchState(), busyState()}) {
    const Made made(state);
    EXPECT_EQ(captured(made.read()), captured(state));
    EXPECT_THAT(made.directory.names(), ElementsAre("region")) << "no file of the making is left";

    // The last queue of a record, and what has no record.
    const RegionTables tables(made.mapped());
    for (const Nexo::IntfId intf : {intf1, Nexo::IntfId("nobody")}) {
      EXPECT_EQ(tables.ingressSources(intf), state.counters->ingressSources(intf));
      for (const auto& [core, t] : {std::pair(1U, U8{7}), {1U, U8{8}}, {5U, U8{0}}}) {
        const IngressCounterKey queue{intf, fap3, LocalCoreId(core), t};
        EXPECT_EQ(tables.ingressCounter(queue), state.counters->ingressCounter(queue));
      }
    }
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
  EXPECT_TRUE(tables.egressAclCounter(keyOf(intf1)).null());
  EXPECT_TRUE(writer.debugCounterIs("F1", "now", 1, {.value = 8, .lastUpdate = Vane::Seconds(-HUGE_VAL)}));
  EXPECT_THAT(captured(made.read()), HasSubstr("\"lastUpdate\": -1.7976931348623157e+308")) << "finite";
  EXPECT_EQ(manager.counter("now", 1).value, 8U);
  EXPECT_EQ(manager.counter("now", 2).value, 0U);
  const U64 heartbeat = region->heartbeat();
  writer.alive();
  EXPECT_GT(region->heartbeat(), heartbeat);

  // Updates of what has no record, or no room in it, change nothing.
  const std::string settled = contentOf(made.path);
  ingress.queueIs(IngressCounterIndex(8), {});
  EXPECT_FALSE(writer.ingressIs(fap3, core1, intf1, ingress));
  EXPECT_FALSE(writer.ingressIs(fap3, LocalCoreId(2), intf1, {}));
  EXPECT_FALSE(writer.egressIs(intf3, {}) || writer.egressTmIs(intf1, {}) || writer.egressLagIs(intf1, {}));
  EXPECT_FALSE(writer.egressAclIs(intf3, {}) || writer.egressMtuIs(FapId(4), {}));
  EXPECT_FALSE(writer.debugCounterIs("F1", "now", 2, {}) || writer.debugCounterIs("F2", "now", 0, {}));
  EXPECT_EQ(contentOf(made.path), settled);

  // Readers keep the region that they have mapped.
  const CounterRegionWriter next = loamshow::publish(busyState(), made.path);
  EXPECT_TRUE(tables.egressAclCounter(keyOf(intf1)).null());
  EXPECT_FALSE(made.read().counters->egressAclCounter(keyOf(intf1)).null());
  writer.remove();
  EXPECT_THAT(made.directory.names(), ElementsAre("region")) << "that is another writer's file";
  next.remove();
  EXPECT_THAT(made.directory.names(), ElementsAre());
}

/// The bytes of a region, with access to its parts.
struct Bytes {
  std::string bytes;

  template <class T>
  T& at(U64 offset, U64 i = 0) {
    return static_cast<T*>(static_cast<void*>(&bytes[offset]))[i];
  }
  /// A part with a fraction of the region's size.
  RegionPart part(U64 divisor) const { return {sizeof(RegionHeader), bytes.size() / divisor}; }
  RegionHeader& header() { return at<RegionHeader>(0); }
  RegionInterface& intf(U64 i) { return at<RegionInterface>(header().interfaces.offset, i); }
  RegionSource& source(U64 i) { return at<RegionSource>(intf(0).sources.offset, i); }
  RegionFap& fap(U64 i) { return at<RegionFap>(header().faps.offset, i); }
  RegionManager& manager(U64 i) { return at<RegionManager>(header().managers.offset, i); }
  RegionSnapshot& snapshot(U64 i) { return at<RegionSnapshot>(manager(0).snapshots.offset, i); }
};

TEST(Region, IsRefusedWhenDamaged) {
  const std::string whole = contentOf(Made(busyState()).path);
  const auto map = [](const std::string& bytes) { Region(MemoryFile(bytes).fd(), "R"); };
  for (const std::size_t size : {sizeof(RegionHeader) - 1, whole.size() - 1}) {
    EXPECT_THAT([&] { map(whole.substr(0, size)); },
                ThrowsMessage<RegionException>("R: truncated counter region"));
  }
  EXPECT_THROW(Region(-1, "R"), RegionException);
  constexpr U64 far = ~U64{0};
  const char* const badRecord = "invalid offset or size of a record";
  const char* const badInterfaces = "invalid offset or size of the interfaces";
  const std::pair<void (*)(Bytes&), const char*> cases[] = {
      {[](Bytes& in) { in.header().magic[7] = 's'; }, "not a counter region"},
      {[](Bytes& in) { in.header().byteOrder = 0x04030201; }, "a counter region with another byte order"},
      {[](Bytes& in) { in.header().byteOrder = 0; }, "unknown byte order"},
      {[](Bytes& in) { in.header().version = 2; }, "a counter region of version 2, expected version 1"},
      {[](Bytes& in) { --in.header().size; }, "the size in its header is too small"},
      {[](Bytes& in) { in.header().description.count = far; }, "invalid offset or size of a text"},
      {[](Bytes& in) { in.header().interfaces.offset += 1; }, badInterfaces},
      {[](Bytes& in) { in.header().interfaces.count = far / 64 + 2; }, badInterfaces},
      {[](Bytes& in) { in.intf(1).name = in.intf(0).name; }, "a repeated interface"},
      {[](Bytes& in) { in.intf(1).name.offset = far; }, "invalid offset or size of a text"},
      {[](Bytes& in) { in.bytes[in.intf(1).name.offset] = '\0'; }, "a name with U+0000"},
      {[](Bytes& in) { in.bytes[in.intf(1).name.offset] = '\xff'; }, "a name that is not UTF-8"},
      {[](Bytes& in) { in.intf(1).sources.count = far; }, "invalid offset or size of an interface's sources"},
      {[](Bytes& in) { in.intf(1).sources = in.intf(0).sources = in.part(17); }, "damaged"},
      {[](Bytes& in) { std::swap(in.source(0), in.source(1)); }, "sources of an interface out of order"},
      {[](Bytes& in) { in.source(1) = in.source(0); }, "sources of an interface out of order"},
      {[](Bytes& in) { in.source(0).fap = 2047; }, "an unknown FAP or core"},
      {[](Bytes& in) { in.source(0).core = 7; }, "an unknown FAP or core"},
      {[](Bytes& in) { in.source(0).queues = 81; }, "a record with too many queues"},
      {[](Bytes& in) { in.source(0).record = 0; }, "a missing record"},
      {[](Bytes& in) { in.source(0).record += 4; }, badRecord},
      {[](Bytes& in) { in.source(0).record = in.bytes.size() - 8; }, badRecord},
      {[](Bytes& in) { in.intf(0).egress = far - 7; }, badRecord},
      {[](Bytes& in) { in.intf(0).egressTm = far - 7; }, badRecord},
      {[](Bytes& in) { in.intf(0).egressLag = far - 7; }, badRecord},
      {[](Bytes& in) { in.intf(0).egressAcl = far - 7; }, badRecord},
      {[](Bytes& in) { in.header().faps.count = far; }, "invalid offset or size of the FAPs"},
      {[](Bytes& in) { std::swap(in.fap(0), in.fap(1)); }, "FAPs out of order"},
      {[](Bytes& in) { in.fap(1).fap = 2047; }, "an unknown FAP"},
      {[](Bytes& in) { in.fap(0).record = 0; }, "a missing record"},
      {[](Bytes& in) { in.header().managers.count = far; }, "invalid offset or size of the debug counters"},
      {[](Bytes& in) { in.manager(1).fap = in.manager(0).fap; }, "repeated debug counters of a FAP"},
      {[](Bytes& in) { in.manager(0).snapshots.offset = far; }, "invalid offset or size of the snapshots"},
      {[](Bytes& in) { in.snapshot(1).name = in.snapshot(0).name; }, "a repeated snapshot"},
      {[](Bytes& in) { in.snapshot(0).records.count = far; }, "invalid offset or size of a snapshot"},
      {[](Bytes& in) { in.manager(1).fap = in.manager(0).fap = in.part(2); }, "damaged"}};
  for (const auto& [damage, problem] : cases) {
    Bytes region{whole};
    damage(region);
    EXPECT_THAT([&] { map(region.bytes); },
                ThrowsMessage<RegionException>(AllOf(StartsWith("R: "), HasSubstr(problem))));
  }
}

TEST(Region, NamesARecordThatStaysHalfWritten) {
  const Made made(busyState());
  const Region::PtrConst region = made.mapped();
  constexpr std::chrono::milliseconds noWait{0};
  const RegionTables tables(region, noWait);
  const Region::Manager f1 = region->managers().at(0);
  const RegionShmemManager manager(region, f1, noWait);
  const U64 queues1 = region->sourceOf(region->sources(intf1), {fap3, core1}).record;
  const RegionInterface at1 = region->interface(intf1);
  const U64 tm3 = region->interface(intf3).egressTm;
  const U64 lag = region->interface(po1).egressLag;
  const U64 secondNow = f1.snapshots.at(0).records.offset + region::recordSize(region::debugWords);
  const IngressCounterKey queue{intf1, fap3, core1, 2};
  constexpr auto all = Hardware::Loam::aggregateCore;
  const char* const ingress = "ingress counters of Ethernet1 on FAP 3, core 1";
  const std::tuple<U64, std::function<void()>, std::string> cases[] = {
      {queues1, [&] { tables.ingressTcCounter(fap3, core1, intf1); }, ingress},
      {queues1, [&] { tables.ingressTcCounter(Hardware::Loam::nullFap, all, intf1); }, ingress},
      {queues1, [&] { tables.ingressCounter(queue); }, ingress},
      {at1.egress, [&] { tables.egressCounter(keyOf(intf1)); }, "egress counters of Ethernet1"},
      {tm3, [&] { tables.egressTmCounter(keyOf(intf3)); }, "egress TM counters of Ethernet3"},
      {lag, [&] { tables.egressLagCounter(keyOf(po1)); }, "egress LAG counters of Port-Channel1"},
      {at1.egressAcl, [&] { tables.egressAclCounter(keyOf(intf1)); }, "egress ACL counter of Ethernet1"},
      {region->fapOf(fap3).record, [&] { tables.egressMtuTotalCounter(fap3); },
       "egress MTU counters of FAP 3"},
      {secondNow, [&] { manager.counter("now", 1); }, "debug counter 1 of F1, snapshot now"}};
  for (const auto& [record, read, name] : cases) {
    putWord(made.path, record, 1);
    EXPECT_THAT(read, ThrowsMessage<RecordException>(
                          "R: " + name + " cannot be read: the writer stopped in the middle of the record"));
  }
  EXPECT_NO_THROW(tables.ingressTcCounter(fap3, LocalCoreId(0), intf1));
  const auto begin = Clock::now();
  EXPECT_THROW(RegionTables(region).egressCounter(keyOf(intf1)), RecordException);
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(1));
  // Overwriting usually changes the header, too: the error is then about the region, not the writer.
  putWord(made.path, 0, 0);
  EXPECT_THAT([&] { tables.egressCounter(keyOf(intf1)); },
              ThrowsMessage<RegionException>("R: damaged counter region: overwritten while it was read"));
}

TEST(Threads, ReadRecordsOfARegionWhole) {
  const auto telling = [](U64 value) {  // each count determines all others
    const IngressCounter each{{value, value, value, value}};
    return IngressTcCounter(each, std::vector<IngressCounter>(8, each));
  };
  const Made made(busyState());
  const auto write = [&](U64 value) { made.writer.ingressIs(fap3, core1, intf1, telling(value)); };
  write(0);
  const std::jthread writing([&](const std::stop_token& stop) {
    for (U64 i = 1; !stop.stop_requested(); ++i) write(i);
  });
  const RegionTables tables(made.mapped());
  U64 last = 0;
  for (const auto end = Clock::now() + std::chrono::seconds(3); Clock::now() < end;) {
    const IngressTcCounter read = tables.ingressTcCounter(fap3, core1, intf1);
    const U64 before = std::exchange(last, read.total.enqueuedPackets);
    ASSERT_TRUE(same(read, telling(last)));
    ASSERT_GE(last, before) << "never back to an older one";
  }
  EXPECT_GT(last, 10U);  // a low limit, for busy machines
}

}  // namespace

}  // namespace loamtest
