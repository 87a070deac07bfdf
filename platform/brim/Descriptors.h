#pragma once

#include <string_view>

#include "platform/Mote.h"
#include "platform/Vane.h"

namespace Brim::Counters {

/// Which times of a counter are kept: 0 first update, last update and discontinuity; 1 to 3 the last update.
using CounterFetchType = U8;
/// How a count is shown: 0 as a decimal number.
using CounterDisplayType = U8;

/// One field of a counter.
class CounterFieldDescriptor : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const CounterFieldDescriptor>;

  Mote::String displayName;
  U32 offset = 0;  // added to an instance's number, the index of its record
  U32 order = 0;   // among the fields
  CounterFetchType fetchType = 0;
  bool isDropCounter = false;
};

/// One counter of a block. One with fields is shown field by field, without its own name, offset, fetch type
/// and drop flag.
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
  CounterDisplayType displayType = 0;  // of the fields, too
  bool isDropCounter = false;
};

/// The counters of one block, by their key names.
class CounterBlockDescriptorPtrDir : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const CounterBlockDescriptorPtrDir>;

  Vane::OrderedMap<Mote::String, CounterDescriptor::PtrConst> counterDescriptors;
};

/// The counter blocks of one FAP, by their lower-case names. Its owner may rebuild it at any time: it may be
/// used only while it is valid and its readiness is not 0, which a reader asks again and again.
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
