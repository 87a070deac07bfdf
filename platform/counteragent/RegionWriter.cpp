#include "platform/counteragent/RegionWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <chrono>
#include <system_error>

#include "platform/counteragent/RegionImage.h"
#include "platform/counteragent/RegionSequence.h"

namespace LoamCounters {

namespace {

using Brim::Counters::Counter;

/// A temporary file next to the one to create, which replaces it when complete, and is removed otherwise.
class NewFile {
 public:
  explicit NewFile(const std::string& path)
      : path_(path), name_(path + ".XXXXXX"), fd_(::mkostemp(name_.data(), O_CLOEXEC)) {
    constexpr mode_t readableByAll = 0644;
    if (fd_ < 0 || ::fchmod(fd_, readableByAll) != 0) fail();
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() {
    if (fd_ >= 0) ::close(fd_);
    if (!name_.empty()) ::unlink(name_.c_str());
  }

  int fd() const noexcept { return fd_; }
  void write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t written = ::write(fd_, bytes.data(), bytes.size());
      if (written < 0 && errno != EINTR) fail();
      if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }
  void publish() {
    if (::rename(name_.c_str(), path_.c_str()) != 0) fail();
    name_.clear();
  }
  [[noreturn]] void fail() const { throw std::system_error(errno, std::generic_category(), path_); }

 private:
  const std::string& path_;
  std::string name_;
  int fd_;
};

U64 bits(Vane::Seconds time) {
  return std::bit_cast<U64>(time.value());
}

U64 bits(Keel::MaybeU63 count) {
  return count.null() ? ~U64{0} : count.value();
}

template <class Record>
void storeEgress(U64* words, const Record& counter) {
  region::storeQuad(words, counter.total);
  words += region::quadWords;
  for (const U64 count : counter.counts) region::storeWord(*words++, count);
  if constexpr (requires { counter.tcLsbOfAmbiguousTcs; }) {
    U64 ambiguous = 0;
    for (unsigned bit = 0; const bool set : counter.tcLsbOfAmbiguousTcs) ambiguous |= U64{set} << bit++;
    region::storeWord(*words, ambiguous);
  }
}

/// False if there is no record.
template <class Fill>
bool write(U64* record, Fill fill) {
  if (record == nullptr) return false;
  region::writeRecord(record, fill);
  return true;
}

}  // namespace

CounterRegionWriter::CounterRegionWriter(const std::string& path, std::string_view description,
                                         const RecordTables& counters,
                                         const std::vector<DebugCounters>& debug)
    : path_(path) {
  NewFile file(path_);
  // Writing the file, unlike ftruncate, fails if the file system is full.
  file.write(regionImage(description, counters, debug));
  region_ = Mote::make<Region>(file.fd(), path_, RegionAccess::write);
  for (const Region::Manager& manager : region_->managers()) {
    Vane::HashMap<Mote::String, RegionPart> snapshots;
    for (const Region::Snapshot& snapshot : manager.snapshots) snapshots.set(snapshot.name, snapshot.records);
    snapshots_.set(manager.fap, snapshots);
  }
  fill(counters, debug);
  alive();
  struct stat status {};
  if (::fstat(file.fd(), &status) != 0) file.fail();
  device_ = status.st_dev;
  inode_ = status.st_ino;
  file.publish();
}

void CounterRegionWriter::fill(const RecordTables& counters, const std::vector<DebugCounters>& debug) const {
  for (const auto& [source, intf] : counters.ingressKeys()) {
    ingressIs(source.fapId, source.coreId, intf,
              counters.ingressTcCounter(source.fapId, source.coreId, intf));
  }
  const auto key = [](Nexo::IntfId intf) {
    constexpr U8 everyEntry = 56;
    return EgressCounterKey{intf, everyEntry};
  };
  for (const auto intf : counters.egressKeys()) egressIs(intf, counters.egressCounter(key(intf)));
  for (const auto intf : counters.egressTmKeys()) egressTmIs(intf, counters.egressTmCounter(key(intf)));
  for (const auto intf : counters.egressLagKeys()) egressLagIs(intf, counters.egressLagCounter(key(intf)));
  for (const auto intf : counters.egressAclKeys()) egressAclIs(intf, counters.egressAclCounter(key(intf)));
  for (const FapId fap : counters.egressMtuKeys()) {
    const EgressMtuCounter counter = counters.egressMtuEnqDropCounter(fap);
    egressMtuIs(fap,
                {counter.enqueuedPackets(), counter.droppedPackets(), counters.egressMtuTotalCounter(fap)});
  }
  for (const auto& [fap, manager] : debug) {
    for (const auto& [snapshot, count] : manager->snapshots()) {
      for (U32 i = 0; i < count; ++i) debugCounterIs(fap, snapshot, i, manager->counter(snapshot, i));
    }
  }
}

void CounterRegionWriter::alive() const noexcept {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  region_->heartbeatIs(static_cast<U64>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()));
}

bool CounterRegionWriter::ingressIs(FapId fap, LocalCoreId core, Nexo::IntfId intf,
                                    const IngressTcCounter& counter) const {
  const RegionSource source = region_->sourceOf(region_->sources(intf), {fap, core});
  const std::span<const IngressCounter> queues = counter.queues();
  if (queues.size() > source.queues) return false;
  return write(region_->recordIfAny(source.record, region::ingressWords(source.queues)), [&](U64* words) {
    region::storeQuad(words, counter.total);
    for (const IngressCounter& queue : queues) region::storeQuad(words += region::quadWords, queue);
    for (std::size_t i = queues.size(); i < source.queues; ++i) {
      region::storeQuad(words += region::quadWords, CounterQuad());
    }
  });
}

bool CounterRegionWriter::egressIs(Nexo::IntfId intf, const EgressCounter& counter) const {
  return write(region_->recordIfAny(region_->interface(intf).egress, region::egressWords),
               [&](U64* words) { storeEgress(words, counter); });
}

bool CounterRegionWriter::egressTmIs(Nexo::IntfId intf, const EgressTmCounter& counter) const {
  return write(region_->recordIfAny(region_->interface(intf).egressTm, region::egressTmWords),
               [&](U64* words) { storeEgress(words, counter); });
}

bool CounterRegionWriter::egressLagIs(Nexo::IntfId intf, const EgressLagCounter& counter) const {
  return write(region_->recordIfAny(region_->interface(intf).egressLag, region::egressLagWords),
               [&](U64* words) { storeEgress(words, counter); });
}

bool CounterRegionWriter::egressAclIs(Nexo::IntfId intf, Keel::MaybeU63 count) const {
  return write(region_->recordIfAny(region_->interface(intf).egressAcl, region::egressAclWords),
               [&](U64* words) { region::storeWord(words[0], bits(count)); });
}

bool CounterRegionWriter::egressMtuIs(FapId fap, const EgressMtuCounter& counter) const {
  return write(region_->recordIfAny(region_->fapOf(fap).record, region::egressMtuWords), [&](U64* words) {
    region::storeWord(words[0], bits(counter.enqueuedPackets()));
    region::storeWord(words[1], bits(counter.droppedPackets()));
    region::storeWord(words[2], bits(counter.totalCounter()));
  });
}

bool CounterRegionWriter::debugCounterIs(const Mote::String& fap, const Mote::String& snapshot, U32 index,
                                         const Counter& counter) const {
  const auto* snapshots = snapshots_.find(fap);
  const RegionPart* records = snapshots == nullptr ? nullptr : snapshots->find(snapshot);
  if (records == nullptr || index >= records->count) return false;
  const U64 offset = records->offset + index * region::recordSize(region::debugWords);
  return write(region_->recordIfAny(offset, region::debugWords), [&](U64* words) {
    region::storeWord(words[0], counter.value);
    region::storeWord(words[1], bits(counter.firstUpdate));
    region::storeWord(words[2], bits(counter.lastUpdate));
    region::storeWord(words[3], bits(counter.lastDiscontinuity));
    region::storeWord(words[4], counter.overflow ? 1 : 0);
  });
}

void CounterRegionWriter::remove() const noexcept {
  struct stat status {};
  if (::stat(path_.c_str(), &status) == 0 && status.st_dev == device_ && status.st_ino == inode_) {
    ::unlink(path_.c_str());
  }
}

}  // namespace LoamCounters
