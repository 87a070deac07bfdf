#pragma once

// Descriptors of debug counters: what a FAP can count, in blocks.

#include <string_view>

#include "platform/Mote.h"
#include "platform/Vane.h"

namespace Brim::Counters {

/// Which times a counter has: 0 first update, last update and discontinuity; 1 to 3 the last update only.
using CounterFetchType = U8;
/// How a count is shown: 0 is decimal.
using CounterDisplayType = U8;

/// One field of a counter.
class CounterFieldDescriptor : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const CounterFieldDescriptor>;

  Mote::String displayName;
  U32 offset = 0;  // the record of instance i is number i + offset
  U32 order = 0;   // position among the fields
  CounterFetchType fetchType = 0;
  bool isDropCounter = false;
};

/// One counter of a block. A counter with fields is shown field by field; its own name, offset, fetch type
/// and drop flag are then not used.
class CounterDescriptor : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const CounterDescriptor>;
  static constexpr std::string_view vaneName = "Brim::Counters::CounterDescriptor";
  static constexpr U32 noFirstInstance = 0xffffffff;

  Mote::String displayName;
  Vane::OrderedMap<Mote::String, CounterFieldDescriptor::PtrConst> fieldDescriptors;
  U32 offset = 0;
  U32 firstInstance = noFirstInstance;
  U32 numInstances = 0;
  CounterFetchType fetchType = 0;
  CounterDisplayType displayType = 0;  // also that of the fields
  bool isDropCounter = false;
};

/// The counters of one block, by their key names.
class CounterBlockDescriptorPtrDir : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const CounterBlockDescriptorPtrDir>;

  Vane::OrderedMap<Mote::String, CounterDescriptor::PtrConst> counterDescriptors;
};

/// The counter blocks of one FAP, by their lower-case names. The owner may rebuild it at any time: use it
/// only while it is valid and its readiness is not 0, and check both repeatedly.
class CounterDescriptorDir : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const CounterDescriptorDir>;

  virtual bool valid() const { return valid_; }
  virtual U32 readiness() const { return readiness_; }
  void validIs(bool valid) { valid_ = valid; }
  void readinessIs(U32 readiness) { readiness_ = readiness; }

  Vane::HashMap<Mote::String, CounterBlockDescriptorPtrDir::PtrConst> blockToDescriptor;

 private:
  bool valid_ = false;
  U32 readiness_ = 0;
};

}  // namespace Brim::Counters
