#include "platform/Nexo.h"

#include <array>
#include <atomic>
#include <memory>

namespace Nexo {

namespace {

constexpr std::string_view ethernet = "Ethernet";
constexpr std::string_view portChannel = "Port-Channel";

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool startsNumbered(std::string_view name, std::string_view prefix) {
  return name.starts_with(prefix) && name.size() > prefix.size() && isDigit(name[prefix.size()]);
}

bool isSubInterface(std::string_view name) {
  const std::size_t dot = name.find_last_not_of("0123456789");
  return dot != std::string_view::npos && name[dot] == '.' && dot + 1 < name.size();
}

IntfId::Kind kindOf(std::string_view name) {
  if (isSubInterface(name)) return IntfId::Kind::subInterface;
  if (startsNumbered(name, ethernet)) return IntfId::Kind::ethernet;
  if (startsNumbered(name, portChannel)) return IntfId::Kind::portChannel;
  return IntfId::Kind::other;
}

Mote::String shortNameOf(std::string_view name) {
  if (name.starts_with(ethernet)) return Mote::String("Et") + name.substr(ethernet.size());
  if (name.starts_with(portChannel)) return Mote::String("Po") + name.substr(portChannel.size());
  return name;
}

}  // namespace

const IntfId::Record IntfId::empty_;

/// The records of all names, in buckets of lists that only grow at their head, so that neither finding nor
/// adding takes a lock.
class IntfRecords {
 public:
  using Record = IntfId::Record;

  const Record* record(std::string_view name) {
    const std::size_t hash = hashOf(name);
    std::atomic<const Record*>& bucket = buckets_[hash % buckets_.size()];
    const Record* head = bucket.load(std::memory_order_acquire);
    if (const Record* found = find(head, nullptr, name, hash)) return found;

    auto made = std::make_unique<Record>(Record{name, shortNameOf(name), kindOf(name), hash, head});
    while (!bucket.compare_exchange_weak(made->next, made.get(), std::memory_order_acq_rel)) {
      if (const Record* found = find(made->next, head, name, hash)) return found;
      head = made->next;
    }
    return made.release();
  }

 private:
  /// Names that differ in the last digit only have adjacent buckets: interfaces usually come in that order,
  /// and memory access dominates the cost of a look-up.
  static std::size_t hashOf(std::string_view name) {
    return std::hash<std::string_view>()(name.substr(0, name.size() - 1)) +
           static_cast<unsigned char>(name.back());
  }

  static const Record* find(const Record* from, const Record* to, std::string_view name, std::size_t hash) {
    while (from != to && !(from->hash == hash && from->longName.view() == name)) from = from->next;
    return from == to ? nullptr : from;
  }

  std::array<std::atomic<const Record*>, std::size_t{1} << 15> buckets_{};
};

IntfId::IntfId(std::string_view longName) : record_(&empty_) {
  static constinit IntfRecords records;
  if (!longName.empty()) record_ = records.record(longName);
}

}  // namespace Nexo
