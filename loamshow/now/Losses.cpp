#include "loamshow/now/Losses.h"

#include <algorithm>

namespace loamshow {

namespace {

/// Kinds whose rows come from the same part of the output have the same rank, and keep the order of the
/// output.
int rankOf(LossKind kind) {
  switch (kind) {
    case LossKind::egressMulticast:
      return static_cast<int>(LossKind::egressUnicast);
    case LossKind::cpuEgressMulticast:
      return static_cast<int>(LossKind::cpuEgressUnicast);
    default:
      return static_cast<int>(kind);
  }
}

}  // namespace

std::size_t Loss::hash() const noexcept {
  constexpr U64 factor = 0x9e3779b97f4a7c15;
  U64 hash = static_cast<U64>(kind);
  for (const LossName name : {interface, queue, source}) {
    hash = (hash ^ static_cast<U64>(name)) * factor;
  }
  return (((hash ^ packets) * factor) ^ octets) * factor >> 32U;
}

Losses::Losses(bool byOctets) : byOctets_(byOctets) {
  constexpr std::size_t rowsOfALargeSwitch = std::size_t{1} << 19U;
  rows_.reserve(rowsOfALargeSwitch);  // avoids reallocation; unused room takes no memory
}

LossName Losses::name(std::string_view text) {
  const std::size_t slot =
      (text.size() + (text.empty() ? 0U : static_cast<U8>(text.back()))) % recent_.size();
  LossName& recent = recent_[slot];
  if (recent != LossName::none && this->text(recent) == text) return recent;
  const auto found = names_.find(text);
  if (found != names_.end()) return recent = found->second;
  recent = static_cast<LossName>(texts_.size());
  return names_[texts_.emplace_back(text)] = recent;
}

bool Losses::hasNearby(const Loss& loss) const {
  for (std::size_t i = rows_.size(); i > 0; --i) {
    const Loss& row = rows_[i - 1];
    if (row == loss) return true;
    if (row.interface != loss.interface || row.kind != loss.kind || row.source != loss.source) break;
  }
  return false;
}

void Losses::add(const Loss& loss) {
  if (amount(loss) == 0) return;
  if (scattered_ ? !scattered_->insert(loss).second : hasNearby(loss)) return;
  rows_.push_back(loss);
  packets_ += loss.packets;
  octets_ += loss.octets;
  total_ += static_cast<double>(amount(loss));
}

void Losses::expectScattered() {
  if (!scattered_) scattered_.emplace(rows_.begin(), rows_.end());
}

std::vector<const Loss*> Losses::worst(std::size_t most) const {
  std::vector<const Loss*> rows;
  rows.reserve(rows_.size());
  for (const Loss& loss : rows_) rows.push_back(&loss);
  const auto isWorse = [this](const Loss* left, const Loss* right) {
    if (amount(*left) != amount(*right)) return amount(*left) > amount(*right);
    if (rankOf(left->kind) != rankOf(right->kind)) return rankOf(left->kind) < rankOf(right->kind);
    return left < right;  // contiguous, in the order in which they were added
  };
  const std::size_t count = most == 0 ? rows.size() : std::min(most, rows.size());
  const auto end = rows.begin() + static_cast<std::ptrdiff_t>(count);
  std::partial_sort(rows.begin(), end, rows.end(), isWorse);
  rows.resize(count);
  return rows;
}

double Losses::share(const Loss& loss) const {
  return 100 * static_cast<double>(amount(loss)) / total_;
}

}  // namespace loamshow
