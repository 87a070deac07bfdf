#pragma once

// Declares the members of every object of a state file once, in the order of the file. `members(visit,
// object)` calls visit(name, part) for each member until a call returns true, and returns whether one did: a
// reader reads the part with the name that it has found, a writer writes all of them. A part is a field of
// the object, or a type of Parts.h.

#include <concepts>
#include <string_view>
#include <type_traits>

#include "loamshow/state/Parts.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

template <class T, class Object>
concept Of = std::same_as<std::remove_const_t<T>, Object>;

template <class Visit, Of<Hardware::Loam::PortMap> T>
bool members(Visit& visit, T& port) {
  return visit("fapPortId", port.fapPortId) || visit("fapId", port.fapId) || visit("coreId", port.coreId);
}

template <class Visit, Of<PlacedIntf> T>
bool members(Visit& visit, T& entry) {
  return members(visit, entry.key) || visit("intfId", entry.item);
}

template <class Visit, Of<PlacedRecircPort> T>
bool members(Visit& visit, T& entry) {
  return visit("recircType", entry.key.recircType) || visit("id", entry.key.id) ||
         visit("systemPhyPortId", entry.item);
}

template <class Visit, Of<Hardware::Loam::FapRevision> T>
bool members(Visit& visit, T& revision) {
  return visit("major", revision.major);
}

template <class Visit, Of<Hardware::Loam::Status> T>
bool members(Visit& visit, T& status) {
  return visit("fapIdToName", status.fapIdToName) || visit("fapNumCores", status.fapNumCores) ||
         visit("fapRevision", status.fapRevision) || visit("sppidToIntfId", status.sppidToIntfId) ||
         visit("intfIdToSppid", status.intfIdToSppid) || visit("portMap", status.portMaps) ||
         visit("portMapToIntfId", entryList<PlacedIntf>(status.portMapToIntfId, "FAP, core and port")) ||
         visit("olpPort", status.olpPort) || visit("erpPort", status.erpPort) ||
         visit("recircPort", entryList<PlacedRecircPort>(status.recircPort, "recircType and id")) ||
         visit("fabricMeshDropPort", status.fabricMeshDropPort) ||
         visit("fapToSflowAccelSppid", status.fapToSflowAccelSppid) || visit("ipsecPort", status.ipsecPort) ||
         visit("eventorPort", status.eventorPort) || visit("cpuRecircEnabled", status.cpuRecircEnabled) ||
         // A sub-interface has at most one VOQ per traffic class.
         visit("subIntfNumVoqs", upTo<8>(status.subIntfNumVoqs)) ||
         visit("coppClassNumVoqs", status.coppClassNumVoqs);
}

template <class Visit, Of<LoamTm::TmMapping> T>
bool members(Visit& visit, T& mapping) {
  return visit("portTmMap", Set{mapping.portTmMap});
}

template <class Visit, Of<Hardware::Loam::InternalLagClientStatus> T>
bool members(Visit& visit, T& status) {
  return visit("lagIngressVoqCounterTable", Set{status.lagIngressVoqCounterTable, true});
}

template <class Visit, Of<FabricMcastVoqs> T>
bool members(Visit& visit, T& range) {
  return visit("min", range.min) || visit("max", range.max);
}

template <class Visit, Of<IngressEntry> T>
bool members(Visit& visit, T& entry) {
  return visit("fapId", upTo<Hardware::Loam::FapId::highest - 1>(entry.fapId)) ||
         visit("coreId", entry.coreId) || visit("intfId", entry.intfId) ||
         visit("queues", Quads{entry.record}) || visit("total", entry.total);
}

template <class Visit, Of<Counted<LoamCounters::EgressCounter>> T>
bool members(Visit& visit, T& counted) {
  return visit("queues", Quads{counted.record}) || visit("total", counted.total);
}

template <class Visit, Of<Counted<LoamCounters::EgressTmCounter>> T>
bool members(Visit& visit, T& counted) {
  return visit("queues", QuadPairs{counted.record}) ||
         visit("ambiguousTcs", counted.record.tcLsbOfAmbiguousTcs) || visit("total", counted.total);
}

template <class Visit, Of<Counted<LoamCounters::EgressLagCounter>> T>
bool members(Visit& visit, T& counted) {
  return visit("queues", QuadPairs{counted.record}) || visit("total", counted.total);
}

template <class Visit, Of<QuadPair> T>
bool members(Visit& visit, T& pair) {
  return visit("ucast", pair.ucast) || visit("mcast", pair.mcast);
}

template <class Visit, Of<MtuEntry> T>
bool members(Visit& visit, T& entry) {
  return visit("enqueuedPackets", entry.enqueued) || visit("droppedPackets", entry.dropped) ||
         visit("totalPackets", entry.total);
}

template <class Visit, std::derived_from<LoamCounters::RecordTables> T>
bool members(Visit& visit, T& tables) {
  using namespace LoamCounters;
  using Memory = MemoryCounterTables;
  return visit("ingress", IngressTable<T>{tables}) ||
         visit("egress", EgressTable<T, EgressCounter>{tables, &Memory::egress, &RecordTables::egressKeys,
                                                       &CounterTables::egressCounter}) ||
         visit("egressTm",
               EgressTable<T, EgressTmCounter>{tables, &Memory::egressTm, &RecordTables::egressTmKeys,
                                               &CounterTables::egressTmCounter}) ||
         visit("egressLag",
               EgressTable<T, EgressLagCounter>{tables, &Memory::egressLag, &RecordTables::egressLagKeys,
                                                &CounterTables::egressLagCounter}) ||
         visit("egressAcl",
               EgressTable<T, Keel::MaybeU63>{tables, &Memory::egressAcl, &RecordTables::egressAclKeys,
                                              &CounterTables::egressAclCounter}) ||
         visit("egressMtu", MtuTable<T>{tables});
}

template <class Visit, Of<Brim::Counters::CounterFieldDescriptor> T>
bool members(Visit& visit, const Keyed<T>& keyed) {
  T& field = keyed.object;
  return visit("displayName", NameOrKey{field.displayName, keyed.key}) || visit("offset", field.offset) ||
         visit("order", field.order) || visit("fetchType", field.fetchType) ||
         visit("isDropCounter", field.isDropCounter);
}

template <class Visit, Of<Brim::Counters::CounterDescriptor> T>
bool members(Visit& visit, const Keyed<T>& keyed) {
  T& counter = keyed.object;
  return visit("displayName", NameOrKey{counter.displayName, keyed.key}) || visit("offset", counter.offset) ||
         visit("firstInstance", FirstInstance{counter.firstInstance}) ||
         visit("numInstances", counter.numInstances) || visit("fetchType", counter.fetchType) ||
         visit("displayType", counter.displayType) || visit("isDropCounter", counter.isDropCounter) ||
         visit("fields", counter.fieldDescriptors);
}

template <class Visit, Of<Directory> T>
bool members(Visit& visit, T& directory) {
  return visit("valid", directory.valid) || visit("readiness", directory.readiness) ||
         visit("blocks", directory.blocks);
}

template <class Visit, Of<Brim::Counters::Counter> T>
bool members(Visit& visit, T& counter) {
  return visit("value", counter.value) || visit("firstUpdate", counter.firstUpdate) ||
         visit("lastUpdate", counter.lastUpdate) || visit("lastDiscontinuity", counter.lastDiscontinuity) ||
         visit("overflow", counter.overflow);
}

template <class Visit, Of<DebugFapParts> T>
bool members(Visit& visit, T& fap) {
  return visit("directory", fap.directory) || visit("snapshots", fap.snapshots);
}

template <class Visit, class State>
bool members(Visit& visit, const Debug<State>& debug) {
  return visit("switchTimeOffset", debug.state.switchTimeOffset) ||
         visit("faps", DebugFaps{debug.state.debugFaps});
}

template <class Visit, class State>
bool members(Visit& visit, const Identity<State>& identity) {
  return visit("name", SwitchName{identity.state.name}) || visit("takenAt", Time{identity.state.takenAt});
}

template <class Visit, Of<SwitchState> T>
bool members(Visit& visit, T& state) {
  return visit("switch", Identity<T>{state}) || visit("interfaces", Interfaces{state.interfaces}) ||
         visit("status", *state.status) || visit("tmMapping", *state.tmMapping) ||
         visit("internalLagStatus", *state.internalLagStatus) ||
         visit("fabricMcastVoq", FabricMcastRange<T>{state}) ||
         visit("skeinMountMode", state.skeinMountMode) ||
         visit("perInputPortCoppVoqs", state.perInputPortCoppVoqs) || visit("counters", *state.counters) ||
         visit("debug", Debug<T>{state});
}

}  // namespace loamshow
