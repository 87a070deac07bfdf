#pragma once

// How the counters of a simulated switch move.

#include <random>
#include <vector>

#include "loamshow/state/Switch.h"
#include "platform/counteragent/RegionWriter.h"

namespace loamsim {

/// Moves the counters of a switch: each queue at `speed` times the rate that doubles its counts in an hour,
/// unevenly; octets in proportion to packets, drops in bursts. A record's total moves with its queues.
class Motion {
 public:
  /// Starts from the counts of `state`. `speed` is 0 or more.
  Motion(const loamshow::SwitchState& state, double speed, U64 seed);

  /// Advances the time, and writes every record.
  void advance(double seconds, const LoamCounters::CounterRegionWriter& writer);

 private:
  using CounterQuad = LoamCounters::CounterQuad;

  /// A count that grows by whole steps at a mean rate.
  struct Growth {
    double perSecond = 0;
    double due = 0;

    U64 take();
  };
  /// Packets and their octets.
  struct Flow {
    Growth packets;
    U64 wholeOctets = 0;  // per packet
    double restOctets = 0;
  };
  struct Queue {
    CounterQuad counts;
    Flow enqueued;
    Flow dropped;
  };
  struct Queues {
    CounterQuad total;
    std::vector<Queue> queues;
  };
  struct Ingress : Queues {
    LoamCounters::RecordTables::IngressKey key;
  };
  template <class Record>
  struct Egress : Queues {
    Nexo::IntfId intf;
    Record record;  // the parts that do not move
  };
  struct Count {
    Keel::MaybeU63 value;
    Growth growth;
  };
  struct Acl {
    Nexo::IntfId intf;
    Count count;
  };
  struct Mtu {
    LoamCounters::FapId fap;
    Count enqueued;
    Count dropped;
    Keel::MaybeU63 total;
  };
  struct Debug {
    Mote::String fap;
    Mote::String snapshot;
    std::vector<Brim::Counters::Counter> counters;
    std::vector<Growth> growths;
  };

  Growth growthOf(U64 count) const;
  Flow flowOf(U64 packets, U64 octets) const;
  void addQueue(Queues& to, const CounterQuad& counts) const;
  template <class Record>
  void addEgress(std::vector<Egress<Record>>& to, Nexo::IntfId intf, const Record& record) const;
  void addDebug(const loamshow::DebugFap& fap);

  double uneven();
  bool burst(double seconds);
  void move(Queues& queues, double seconds);
  static U64 move(Count& count, U64 by);
  template <class Record>
  const Record& moved(Egress<Record>& egress, double seconds);
  void moveDebug(Debug& debug, double seconds, const LoamCounters::CounterRegionWriter& writer);

  double speed_;
  Vane::Seconds offset_;  // of the switch's clock
  std::mt19937_64 random_;
  std::vector<Ingress> ingress_;
  std::vector<Egress<LoamCounters::EgressCounter>> egress_;
  std::vector<Egress<LoamCounters::EgressTmCounter>> egressTm_;
  std::vector<Egress<LoamCounters::EgressLagCounter>> egressLag_;
  std::vector<Acl> acl_;
  std::vector<Mtu> mtu_;
  std::vector<Debug> debug_;
};

}  // namespace loamsim
