// Counter regions: readers get consistent records as they were written, or an error, whatever happens to the
// file.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <map>
#include <thread>

#include "loamshow/state/StateFile.h"
#include "platform/counteragent/RegionReader.h"
#include "platform/counteragent/RegionSequence.h"
#include "platform/counteragent/RegionWriter.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using namespace LoamCounters;
using Brim::Counters::Counter;
using Brim::Counters::MemoryShmemManager;
using testing::HasSubstr;
using testing::StartsWith;
using testing::ThrowsMessage;

constexpr const char* description = R"({"interfaces": ["é"]})";

std::string fileOf(const TemporaryDirectory& directory) {
  return directory.path() + "/region";
}

Region::PtrConst opened(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  auto region = Mote::make<Region>(fd, "R");
  ::close(fd);
  return region;
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A switch with records of each kind, and two FAPs with debug counters.
loamshow::SwitchState busyState() {
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

std::vector<DebugCounters> debugOf(const loamshow::SwitchState& state) {
  std::vector<DebugCounters> debug;
  for (const loamshow::DebugFap& fap : state.debugFaps) debug.push_back({fap.name, fap.manager});
  return debug;
}

CounterRegionWriter writerOf(const std::string& path, const loamshow::SwitchState& state) {
  return {path, description, *state.counters, debugOf(state)};
}

Json json(const CounterQuad& quad) {
  return {quad.enqueuedPackets, quad.enqueuedBytes, quad.droppedPackets, quad.droppedBytes};
}

Json json(Keel::MaybeU63 count) {
  return count.null() ? Json() : Json(count.value());
}

Json json(const IngressTcCounter& record) {
  Json out = {json(record.total)};
  for (const IngressCounter& queue : record.queues()) out.push_back(json(queue));
  return out;
}

template <class Record>
Json egressJson(const Record& record) {
  Json out = {json(record.total), record.counts};
  if constexpr (requires { record.tcLsbOfAmbiguousTcs; }) out.push_back(record.tcLsbOfAmbiguousTcs);
  return out;
}

/// All records of tables, and reads of missing ones.
Json everythingOf(const RecordTables& tables) {
  Json all;
  const auto key = [](Nexo::IntfId intf) { return EgressCounterKey{intf, 56}; };
  const auto ingress = [&](FapId fap, LocalCoreId core, Nexo::IntfId intf) {
    const auto name = std::to_string(fap.value()) + "." + std::to_string(core.value());
    Json& record = all["ingress"][intf.stringValue().c_str()][name];
    record = json(tables.ingressTcCounter(fap, core, intf));
    for (const U8 t : {U8{0}, U8{7}, U8{8}, U8{79}})
      record.push_back(json(tables.ingressCounter({intf, fap, core, t})));
  };
  for (const auto& [source, intf] : tables.ingressKeys()) {
    all["order"].push_back({source.fapId.value(), source.coreId.value(), intf.stringValue().c_str()});
    ingress(source.fapId, source.coreId, intf);
    ingress(Hardware::Loam::nullFap, Hardware::Loam::aggregateCore, intf);
    ingress(source.fapId, LocalCoreId(5), intf);
    for (const RecordTables::Source& at : tables.ingressSources(intf)) {
      all["sources"][intf.stringValue().c_str()].push_back({at.fapId.value(), at.coreId.value()});
    }
  }
  std::vector<Nexo::IntfId> keys[] = {tables.egressKeys(), tables.egressTmKeys(), tables.egressLagKeys(),
                                      tables.egressAclKeys()};
  for (auto& list : keys) {
    Json names;
    for (const auto intf : list) names.push_back(intf.stringValue().c_str());
    std::sort(names.begin(), names.end());
    all["keys"].push_back(names);
    list.emplace_back("nobody");
    for (const auto intf : list) {
      all["egress"][intf.stringValue().c_str()] = {
          egressJson(tables.egressCounter(key(intf))), egressJson(tables.egressTmCounter(key(intf))),
          egressJson(tables.egressLagCounter(key(intf))), json(tables.egressAclCounter(key(intf)))};
    }
  }
  std::vector<FapId> faps = tables.egressMtuKeys();
  std::sort(faps.begin(), faps.end());
  faps.emplace_back(11);
  for (const FapId fap : faps) {
    const EgressMtuCounter counter = tables.egressMtuEnqDropCounter(fap);
    all["mtu"][std::to_string(fap.value())] = {json(counter.enqueuedPackets()),
                                               json(counter.droppedPackets()), json(counter.totalCounter()),
                                               json(tables.egressMtuTotalCounter(fap))};
  }
  return all;
}

Json everythingOf(const Brim::Counters::ShmemManager& manager) {
  Json all;
  for (const char* snapshot : {"now", "old", "never"}) {
    for (U32 i = 0; i < 3; ++i) {
      const Counter counter = manager.counter(snapshot, i);
      all[snapshot].push_back({counter.value, counter.firstUpdate.value(), counter.lastUpdate.value(),
                               counter.lastDiscontinuity.value(), counter.overflow});
    }
  }
  std::map<std::string, U32> snapshots;
  for (const auto& [name, counters] : manager.snapshots()) snapshots[name.c_str()] = counters;
  all["snapshots"] = snapshots;
  return all;
}

Json everythingOf(const std::string& path) {
  const Region::PtrConst region = opened(path);
  Json all = everythingOf(RegionTables(region));
  for (const Region::Manager& manager : region->managers()) {
    all["debug"][manager.fap.c_str()] = everythingOf(RegionShmemManager(region, manager));
  }
  return all;
}

Json everythingOf(const loamshow::SwitchState& state) {
  Json all = everythingOf(*state.counters);
  for (const loamshow::DebugFap& fap : state.debugFaps) {
    all["debug"][fap.name.c_str()] = everythingOf(*fap.manager);
  }
  return all;
}

TEST(Region, HoldsWhatItsSwitchHeld) {
  const TemporaryDirectory directory;
  const loamshow::SwitchState state = busyState();
  const CounterRegionWriter writer = writerOf(fileOf(directory), state);
  EXPECT_EQ(everythingOf(fileOf(directory)), everythingOf(state));
  EXPECT_EQ(opened(fileOf(directory))->description(), description);
  EXPECT_EQ(directory.names(), std::vector<std::string>{"region"}) << "no file of the making is left";

  const TemporaryDirectory other;
  const CounterRegionWriter empty(fileOf(other), "", *Mote::make<MemoryCounterTables>());
  EXPECT_EQ(everythingOf(fileOf(other)), everythingOf(loamshow::SwitchState()));
}

TEST(Region, ShowsEachUpdate) {
  const TemporaryDirectory directory;
  loamshow::SwitchState state = busyState();
  const CounterRegionWriter writer = writerOf(fileOf(directory), state);
  Json want = everythingOf(fileOf(directory));
  const Nexo::IntfId ethernet1("Ethernet1");
  const Nexo::IntfId ethernet3("Ethernet3");
  const Nexo::IntfId portChannel1("Port-Channel1");
  const FapId fap(3);
  const LocalCoreId core(1);

  IngressTcCounter ingress({CounterQuad{9, 8, 7, 6}}, {});
  ingress.queueIs(IngressCounterIndex(0), {{5, 6, 7, 8}});
  EXPECT_TRUE(writer.ingressIs(fap, core, ethernet1, ingress));
  const RegionTables tables(opened(fileOf(directory)));
  EXPECT_EQ(
      json(tables.ingressTcCounter(fap, core, ethernet1)),
      Json({{9, 8, 7, 6}, {5, 6, 7, 8}, zeros(), zeros(), zeros(), zeros(), zeros(), zeros(), zeros()}));
  EgressTmCounter egressTm;
  egressTm.counts[63] = 1;
  egressTm.tcLsbOfAmbiguousTcs = {true, false, false, true};
  EXPECT_TRUE(writer.egressTmIs(ethernet3, egressTm));
  EXPECT_EQ(egressJson(tables.egressTmCounter({ethernet3, 56})), egressJson(egressTm));
  EgressCounter egress;
  egress.counts[31] = 2;
  EXPECT_TRUE(writer.egressIs(ethernet1, egress));
  EXPECT_EQ(egressJson(tables.egressCounter({ethernet1, 56})), egressJson(egress));
  EgressLagCounter egressLag;
  egressLag.counts[127] = 3;
  egressLag.total = {1, 2, 3, 4};
  EXPECT_TRUE(writer.egressLagIs(portChannel1, egressLag));
  EXPECT_EQ(egressJson(tables.egressLagCounter({portChannel1, 56})), egressJson(egressLag));
  EXPECT_TRUE(writer.egressAclIs(ethernet1, {}));
  EXPECT_TRUE(tables.egressAclCounter({ethernet1, 56}).null());
  EXPECT_TRUE(writer.egressAclIs(Nexo::IntfId("Loopback0"), Keel::MaybeU63(0)));
  EXPECT_EQ(json(tables.egressAclCounter({Nexo::IntfId("Loopback0"), 56})), Json(0));
  EXPECT_TRUE(writer.egressMtuIs(fap, {Keel::MaybeU63(1), {}, Keel::MaybeU63(3)}));
  EXPECT_EQ(json(tables.egressMtuTotalCounter(fap)), Json(3));
  EXPECT_TRUE(writer.debugCounterIs("F1", "now", 1, {.value = 8, .lastDiscontinuity = Vane::Seconds(-1)}));

  const auto before = opened(fileOf(directory))->heartbeat();
  writer.alive();
  EXPECT_GT(opened(fileOf(directory))->heartbeat(), before);

  const std::string settled = contentOf(fileOf(directory));
  ingress.queueIs(IngressCounterIndex(8), {});
  EXPECT_FALSE(writer.ingressIs(fap, core, ethernet1, ingress)) << "more queues than the record has";
  EXPECT_FALSE(writer.ingressIs(fap, LocalCoreId(2), ethernet1, {}));
  EXPECT_FALSE(writer.egressIs(ethernet3, egress));
  EXPECT_FALSE(writer.egressAclIs(ethernet3, {}));
  EXPECT_FALSE(writer.egressMtuIs(FapId(4), {}));
  EXPECT_FALSE(writer.debugCounterIs("F1", "now", 2, {}));
  EXPECT_FALSE(writer.debugCounterIs("F2", "now", 0, {}));
  EXPECT_EQ(contentOf(fileOf(directory)), settled);

  // A reader of the old region continues with it.
  state = busyState();
  const CounterRegionWriter next = writerOf(fileOf(directory), state);
  EXPECT_EQ(egressJson(tables.egressCounter({ethernet1, 56})), egressJson(egress));
  EXPECT_EQ(everythingOf(fileOf(directory)), want);
  writer.remove();
  EXPECT_EQ(directory.names(), std::vector<std::string>{"region"}) << "that is another writer's file";
  next.remove();
  EXPECT_EQ(directory.names(), std::vector<std::string>());
}

/// The bytes of a region, with access to its parts.
struct Bytes {
  std::string bytes;

  template <class T>
  T& at(U64 offset) {
    return *static_cast<T*>(static_cast<void*>(&bytes[offset]));
  }
  RegionHeader& header() { return at<RegionHeader>(0); }
  RegionInterface& intf(U64 i) { return (&at<RegionInterface>(header().interfaces.offset))[i]; }
  RegionSource& source(U64 i, U64 j) { return (&at<RegionSource>(intf(i).sources.offset))[j]; }
  RegionFap& fap(U64 i) { return (&at<RegionFap>(header().faps.offset))[i]; }
  RegionManager& manager(U64 i) { return (&at<RegionManager>(header().managers.offset))[i]; }
  RegionSnapshot& snapshot(U64 i) { return (&at<RegionSnapshot>(manager(0).snapshots.offset))[i]; }
};

TEST(Region, IsRefusedWhenDamaged) {
  const TemporaryDirectory directory;
  const CounterRegionWriter writer = writerOf(fileOf(directory), busyState());
  const std::string whole = contentOf(fileOf(directory));
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
  const std::pair<void (*)(Bytes&), const char*> cases[] = {
      {[](Bytes& in) { in.header().magic[7] = 's'; }, "not a counter region"},
      {[](Bytes& in) { in.header().byteOrder = 0x04030201; }, "a counter region with another byte order"},
      {[](Bytes& in) { in.header().byteOrder = 0; }, "unknown byte order"},
      {[](Bytes& in) { in.header().version = 2; }, "a counter region of version 2, expected version 1"},
      {[](Bytes& in) { ++in.header().size; }, "truncated counter region"},
      {[](Bytes& in) { --in.header().size; }, "the size in its header is too small"},
      {[](Bytes& in) { in.header().description.count = far; }, "invalid offset or size of a text"},
      {[](Bytes& in) { in.header().interfaces.offset += 1; }, "invalid offset or size of the interfaces"},
      {[](Bytes& in) { in.header().interfaces.count = far / 64 + 2; },
       "invalid offset or size of the interfaces"},
      {[](Bytes& in) { in.intf(1).name = in.intf(0).name; }, "a repeated interface"},
      {[](Bytes& in) { in.intf(1).name.offset = far; }, "invalid offset or size of a text"},
      {[](Bytes& in) { in.bytes[in.intf(1).name.offset] = '\0'; }, "a name with U+0000"},
      {[](Bytes& in) { in.bytes[in.intf(1).name.offset] = '\xff'; }, "a name that is not UTF-8"},
      {[](Bytes& in) { in.intf(1).sources.count = far / 16 + 2; },
       "invalid offset or size of an interface's sources"},
      {[](Bytes& in) {
         in.intf(1).sources = in.intf(0).sources = {192, in.bytes.size() / 17};
       },
       "damaged"},
      {[](Bytes& in) { std::swap(in.source(0, 0), in.source(0, 1)); },
       "sources of an interface out of order"},
      {[](Bytes& in) { in.source(0, 1) = in.source(0, 0); }, "sources of an interface out of order"},
      {[](Bytes& in) { in.source(0, 0).fap = 2047; }, "an unknown FAP or core"},
      {[](Bytes& in) { in.source(0, 0).core = 7; }, "an unknown FAP or core"},
      {[](Bytes& in) { in.source(0, 0).queues = 81; }, "a record with too many queues"},
      {[](Bytes& in) { in.source(0, 0).record = 0; }, "a missing record"},
      {[](Bytes& in) { in.source(0, 0).record += 4; }, "invalid offset or size of a record"},
      {[](Bytes& in) { in.source(0, 0).record = in.bytes.size() - 8; }, "invalid offset or size of a record"},
      {[](Bytes& in) { in.intf(0).egress = aligned; }, "invalid offset or size of a record"},
      {[](Bytes& in) { in.intf(0).egressTm = aligned; }, "invalid offset or size of a record"},
      {[](Bytes& in) { in.intf(0).egressLag = aligned; }, "invalid offset or size of a record"},
      {[](Bytes& in) { in.intf(0).egressAcl = aligned; }, "invalid offset or size of a record"},
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
      {[](Bytes& in) {
         in.manager(1).fap = in.manager(0).fap = {0, in.bytes.size() * 2 / 3};
       },
       "damaged"}};
  for (const auto& [damage, problem] : cases) {
    Bytes region{whole};
    damage(region);
    EXPECT_THAT(refused(region.bytes), testing::AllOf(StartsWith("R: "), HasSubstr(problem)));
  }
}

/// A mapped region whose file a test changes.
struct Beneath {
  explicit Beneath(const std::string& path) : fd(::open(path.c_str(), O_RDWR | O_CLOEXEC)) {}
  ~Beneath() { ::close(fd); }
  void put(U64 offset, U64 word) const {
    ASSERT_EQ(::pwrite(fd, &word, sizeof word, static_cast<off_t>(offset)), ssize_t{sizeof word});
  }
  int fd;
};

TEST(Region, NamesARecordThatStaysHalfWritten) {
  const TemporaryDirectory directory;
  const CounterRegionWriter writer = writerOf(fileOf(directory), busyState());
  Bytes bytes{contentOf(fileOf(directory))};
  const Beneath beneath(fileOf(directory));
  const Region::PtrConst region = opened(fileOf(directory));
  const RegionTables tables(region);
  const RegionShmemManager manager(region, region->managers().at(0));
  const Nexo::IntfId intf("Ethernet1");
  for (U64 i = 0; i < bytes.header().interfaces.count; ++i) {
    for (const U64 record :
         {bytes.intf(i).egress, bytes.intf(i).egressTm, bytes.intf(i).egressLag, bytes.intf(i).egressAcl}) {
      if (record != 0) beneath.put(record, 1);
    }
  }
  beneath.put(bytes.source(0, 1).record, 3);
  beneath.put(bytes.fap(0).record, 5);
  for (U64 i = 0; i < bytes.manager(0).snapshots.count; ++i) {
    if (bytes.snapshot(i).records.count > 1)
      beneath.put(bytes.snapshot(i).records.offset + region::recordSize(region::debugWords), 7);
  }
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { tables.ingressTcCounter(FapId(3), LocalCoreId(1), intf); },
       "ingress counters of Ethernet1 on FAP 3, core 1"},
      {[&] { tables.ingressTcCounter(Hardware::Loam::nullFap, Hardware::Loam::aggregateCore, intf); },
       "ingress counters of Ethernet1 on FAP 3, core 1"},
      {[&] {
         tables.ingressCounter({intf, FapId(3), LocalCoreId(1), 2});
       },
       "ingress counters of Ethernet1 on FAP 3, core 1"},
      {[&] {
         tables.egressCounter({intf, 56});
       },
       "egress counters of Ethernet1"},
      {[&] {
         tables.egressTmCounter({Nexo::IntfId("Ethernet3"), 56});
       },
       "egress TM counters of Ethernet3"},
      {[&] {
         tables.egressLagCounter({Nexo::IntfId("Port-Channel1"), 56});
       },
       "egress LAG counters of Port-Channel1"},
      {[&] {
         tables.egressAclCounter({intf, 56});
       },
       "egress ACL counter of Ethernet1"},
      {[&] { tables.egressMtuTotalCounter(FapId(3)); }, "egress MTU counters of FAP 3"},
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
  EXPECT_NO_THROW(tables.ingressTcCounter(FapId(3), LocalCoreId(0), intf));
  // If the header is overwritten too, the error is about the region, not the writer.
  beneath.put(0, 0);
  EXPECT_THAT(cases[3].first,
              ThrowsMessage<RegionException>("R: damaged counter region: overwritten while it was read"));
}

TEST(Region, SurvivesBeingTruncatedWhileRead) {
  struct sigaction action {};
  action.sa_sigaction = [](int, siginfo_t* info, void*) {
    if (!coverRegionHole(info->si_addr)) ::signal(SIGBUS, SIG_DFL);
  };
  action.sa_flags = SA_SIGINFO;
  ASSERT_EQ(::sigaction(SIGBUS, &action, nullptr), 0);
  const TemporaryDirectory directory;
  const CounterRegionWriter writer = writerOf(fileOf(directory), busyState());
  const RegionTables tables(opened(fileOf(directory)));
  const auto read = [&] { tables.egressCounter({Nexo::IntfId("Ethernet1"), 56}); };
  EXPECT_NO_THROW(read());
  ASSERT_EQ(::truncate(fileOf(directory).c_str(), 0), 0);
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
  const auto tables = Mote::make<MemoryCounterTables>();
  const auto manager = Mote::make<MemoryShmemManager>();
  manager->values.set("now", std::vector<Counter>(1));
  const Nexo::IntfId intf("Ethernet1");
  for (const U64 core : {0, 1}) tables->ingressIs(FapId(0), LocalCoreId(core), intf, telling(0));
  const CounterRegionWriter writer(fileOf(directory), "", *tables, {{"F", manager}});
  std::vector<std::jthread> writing;
  for (const U64 core : {0, 1}) {
    writing.emplace_back([&, core](const std::stop_token& stop) {
      for (U64 i = 1; !stop.stop_requested(); ++i) {
        const Vane::Seconds time(static_cast<double>(i));
        writer.ingressIs(FapId(0), LocalCoreId(core), intf, telling(i));
        if (core == 0) writer.debugCounterIs("F", "now", 0, {i, time, time, time, i % 2 != 0});
        writer.alive();
      }
    });
  }
  const Region::PtrConst region = opened(fileOf(directory));
  const RegionTables reader(region);
  const RegionShmemManager debug(region, region->managers().at(0));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
  U64 changes = 0;
  for (U64 last = 0; std::chrono::steady_clock::now() < end;) {
    const IngressTcCounter read = reader.ingressTcCounter(FapId(0), LocalCoreId(1), intf);
    const U64 value = read.total.enqueuedPackets;
    ASSERT_GE(value, last) << "never back to an older one";
    ASSERT_EQ(json(read), json(telling(value)));
    changes += value != last ? 1 : 0;
    last = value;
    const IngressCounter one = reader.ingressCounter({intf, FapId(0), LocalCoreId(0), 3});
    ASSERT_EQ(one.enqueuedPackets * 64, one.enqueuedBytes);
    const IngressTcCounter sum =
        reader.ingressTcCounter(Hardware::Loam::nullFap, Hardware::Loam::aggregateCore, intf);
    ASSERT_EQ(json(sum), json(IngressTcCounter(telling(0)) += telling(sum.total.enqueuedPackets)));
    const Counter counter = debug.counter("now", 0);
    ASSERT_EQ(static_cast<double>(counter.value), counter.lastDiscontinuity.value());
    ASSERT_EQ(counter.value % 2 != 0, counter.overflow);
  }
  EXPECT_GT(changes, 10U);  // a low limit, for busy machines
}

}  // namespace

}  // namespace loamtest
