#pragma once

// The rows of `top` and their order.

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

/// The kinds of rows, in the order in which rows with equal losses are shown.
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

/// Whether a kind also counts octets.
constexpr bool countsOctets(LossKind kind) {
  return kind != LossKind::acl && kind != LossKind::mtu;
}

/// A name in the rows: its number in Losses.
enum class LossName : U32 { none };

/// The drops of one queue or counter.
struct Loss {
  U64 packets = 0;
  U64 octets = 0;                       // 0 if the kind does not count them
  LossName interface = LossName::none;  // its long name; of a CPU queue or policer, the CoPP class
  LossName queue = LossName::none;
  LossName source = LossName::none;  // FAP or FAP core
  LossKind kind = LossKind::voq;

  bool operator==(const Loss&) const = default;
  std::size_t hash() const noexcept;
};

/// The rows of a switch with losses, and the names in them.
class Losses {
 public:
  /// Rows are ranked by dropped packets or by dropped octets; rows without any are omitted.
  explicit Losses(bool byOctets);

  /// The number of a name, from 1: the same number for equal names.
  LossName name(std::string_view text);
  /// The text of a name; empty for none.
  const std::string& text(LossName name) const { return texts_[static_cast<std::size_t>(name)]; }
  /// Adds a row, unless it is omitted or there is an equal one. Rows of one kind, interface and source must
  /// be added consecutively, unless expectScattered() has been called.
  void add(const Loss& loss);
  /// From now on, equal rows may come in any order.
  void expectScattered();

  bool byOctets() const { return byOctets_; }
  std::size_t size() const { return rows_.size(); }
  /// The rows with the largest losses, worst first: `most` rows, or all for 0. Rows with equal losses are in
  /// the order of their kinds (unicast and multicast have the same rank), then in the order in which they
  /// were added.
  std::vector<const Loss*> worst(std::size_t most) const;
  /// The sums over all rows, modulo 2^64.
  U64 packets() const { return packets_; }
  U64 octets() const { return octets_; }
  /// A row's share of all losses, in percent.
  double share(const Loss& loss) const;

 private:
  bool hasNearby(const Loss& loss) const;
  U64 amount(const Loss& loss) const { return byOctets_ ? loss.octets : loss.packets; }

  bool byOctets_;
  std::deque<std::string> texts_ = {""};  // indexed by number
  std::unordered_map<std::string_view, LossName> names_;
  std::array<LossName, 64> recent_{};  // names that are often repeated, such as those of queues
  std::vector<Loss> rows_;
  std::optional<std::unordered_set<Loss, Vane::Hash>>
      scattered_;  // the same, for rows that may come in any order
  U64 packets_ = 0;
  U64 octets_ = 0;
  double total_ = 0;  // sum of the ranking value: unlike the sums, it does not wrap
};

}  // namespace loamshow
