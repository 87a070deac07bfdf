#pragma once

// Nexo, the network identifier library: interface ids.

#include <bit>
#include <cstdint>
#include <string_view>

#include "platform/Mote.h"

namespace Nexo {

/// An interface id: a handle to the unique record of its name, which holds both names and the kind. Creating
/// an id looks up the name; everything else needs no look-up and no allocation. Records are kept until the
/// process ends. The default id has the empty name and means no interface.
class IntfId {
 public:
  static constexpr std::string_view vaneName = "Nexo::IntfId";

  enum class Kind : U8 { other, ethernet, portChannel, subInterface };

  IntfId() noexcept : record_(&empty_) {}
  /// Thread-safe.
  explicit IntfId(std::string_view longName);

  const Mote::String& stringValue() const noexcept { return record_->longName; }
  /// The abbreviated name, for text columns.
  const Mote::String& shortName() const noexcept { return record_->shortName; }
  Kind kind() const noexcept { return record_->kind; }

  bool operator==(const IntfId&) const = default;
  std::size_t hash() const noexcept { return std::bit_cast<std::uintptr_t>(record_); }

 private:
  friend class IntfRecords;

  struct Record {
    Mote::String longName;
    Mote::String shortName;
    Kind kind = Kind::other;
    std::size_t hash = 0;          // of the name
    const Record* next = nullptr;  // in its bucket
  };

  static const Record empty_;

  const Record* record_;
};

/// Sub-interfaces: the name ends in "." and digits.
struct SubIntfId {
  static bool isSubIntfId(IntfId intf) { return intf.kind() == IntfId::Kind::subInterface; }
};

/// Ethernet interfaces other than sub-interfaces.
struct EthIntfId {
  static bool isEthIntfId(IntfId intf) { return intf.kind() == IntfId::Kind::ethernet; }
};

}  // namespace Nexo
