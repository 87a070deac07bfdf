#pragma once

// The arguments of the debug counter report: for each FAP name the descriptors of its counters, and the
// reader of their values. The two mappings of a report must have the same names. No value is null: setting
// null removes the entry.

#include <string_view>

#include "platform/CounterAgent.h"
#include "platform/Vane.h"

namespace LoamCounters {

class FapDescriptorMapping : public Vane::Entity<FapDescriptorMapping> {
 public:
  using Ptr = Mote::Ptr<FapDescriptorMapping>;
  using PtrConst = Mote::Ptr<const FapDescriptorMapping>;
  using Map = Vane::HashMap<Mote::String, FapDescriptor::PtrConst>;
  static constexpr std::string_view vaneName = "LoamCounters::FapDescriptorMapping";

  static Ptr FapDescriptorMappingIs() { return Mote::make<FapDescriptorMapping>(); }
  static const Vane::TypeData& fwkType();

  const Map& fapDescriptors() const { return descriptors_; }
  void fapDescriptorIs(const Mote::String& fapName, const FapDescriptor::PtrConst& descriptor) {
    descriptors_.setUnlessNull(fapName, descriptor);
  }
  /// Removes and returns the descriptor; null if there is none.
  FapDescriptor::PtrConst fapDescriptorDel(const Mote::String& fapName) {
    return descriptors_.remove(fapName);
  }
  void fapDescriptorDelAll() { descriptors_.clear(); }

 private:
  Map descriptors_;
};

inline FapDescriptorMapping::Ptr fapDescriptorMappingFactory() {
  return FapDescriptorMapping::FapDescriptorMappingIs();
}

class ShmemMgrMapping : public Vane::Entity<ShmemMgrMapping> {
 public:
  using Ptr = Mote::Ptr<ShmemMgrMapping>;
  using PtrConst = Mote::Ptr<const ShmemMgrMapping>;
  using Manager = Brim::Counters::ShmemManager::PtrConst;
  using Map = Vane::HashMap<Mote::String, Manager>;
  static constexpr std::string_view vaneName = "LoamCounters::ShmemMgrMapping";

  static Ptr ShmemMgrMappingIs() { return Mote::make<ShmemMgrMapping>(); }
  static const Vane::TypeData& fwkType();

  const Map& shmemMgrs() const { return managers_; }
  void shmemMgrIs(const Mote::String& fapName, const Manager& manager) {
    managers_.setUnlessNull(fapName, manager);
  }
  /// Removes and returns the manager; null if there is none.
  Manager shmemMgrDel(const Mote::String& fapName) { return managers_.remove(fapName); }
  void shmemMgrDelAll() { managers_.clear(); }

 private:
  Map managers_;
};

inline ShmemMgrMapping::Ptr shmemMgrMappingFactory() {
  return ShmemMgrMapping::ShmemMgrMappingIs();
}

}  // namespace LoamCounters
