#pragma once

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/Mote.h"
#include "platform/Vane.h"

namespace loamshow {

/// What dropped packets, in the order in which rows that lost the same are shown.
enum class LossKind : U8 {
  voq,
  egressUnicast,
  egressMulticast,
  cpuVoq,
  cpuPolicer,
  cpuEgressUnicast,
  cpuEgressMulticast,
  acl,
  mtu
};

/// Whether a kind counts octets, too.
constexpr bool countsOctets(LossKind kind) {
  return kind != LossKind::acl && kind != LossKind::mtu;
}

/// A name in the rows, by its number in their store.
enum class LossName : U32 { none };

/// What one queue or counter dropped.
struct Loss {
  U64 packets = 0;
  U64 octets = 0;                       // 0 where the kind does not count them
  LossName interface = LossName::none;  // its long name; of a CPU queue or policer, the CoPP class
  LossName queue = LossName::none;
  LossName source = LossName::none;  // FAP or FAP core
  LossKind kind = LossKind::voq;

  bool operator==(const Loss&) const = default;
  std::size_t hash() const noexcept;
};

/// The rows of a switch that lost something, and the names in them.
class Losses {
 public:
  /// Rows are ranked by dropped packets or by dropped octets; rows without any are left out.
  explicit Losses(bool byOctets);

  /// The number of a name: the same one for equal names, counted from 1.
  LossName name(std::string_view text);
  /// The name of a number; empty for none.
  const std::string& text(LossName name) const { return texts_[static_cast<std::size_t>(name)]; }
  /// Adds a row, unless it is left out or an equal one is there. The rows of one kind, interface and source
  /// follow each other, unless expectScattered() has been called.
  void add(const Loss& loss);
  /// From now on, equal rows may come anywhere.
  void expectScattered();

  bool byOctets() const { return byOctets_; }
  std::size_t size() const { return rows_.size(); }
  /// The rows that lost most, worst first; `most` of them, or all for 0. Rows that lost the same come in the
  /// order of their kinds (unicast and multicast being one), then as they were added.
  std::vector<const Loss*> worst(std::size_t most) const;
  /// The sums over all rows, modulo 2^64.
  U64 packets() const { return packets_; }
  U64 octets() const { return octets_; }
  /// A row's part of what all rows lost, in percent.
  double share(const Loss& loss) const;

 private:
  bool hasNearby(const Loss& loss) const;
  U64 amount(const Loss& loss) const { return byOctets_ ? loss.octets : loss.packets; }

  bool byOctets_;
  std::deque<std::string> texts_ = {""};  // by number
  std::unordered_map<std::string_view, LossName> names_;
  std::array<LossName, 64> recent_{};  // names that come again and again, such as those of queues
  std::vector<Loss> rows_;
  std::optional<std::unordered_set<Loss, Vane::Hash>>
      scattered_;  // the same, where equal ones may come anywhere
  U64 packets_ = 0;
  U64 octets_ = 0;
  double total_ = 0;  // of what rows are ranked by: unlike the sums, it does not wrap
};

}  // namespace loamshow
