// Rows of 2,000 interfaces with 8 traffic classes, rendered in memory by the row functions and by other
// libraries.

#include <fmt/compile.h>
#include <fmt/format.h>
#include <malloc.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <iomanip>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <streambuf>

#include "LoamCounters/QueueCountersPrinter/EgressRows.h"
#include "LoamCounters/QueueCountersPrinter/IngressRows.h"
#include "LoamCounters/QueueCountersPrinter/Labels.h"
#include "bench/Benches.h"
#include "bench/Rounds.h"
#include "bench/Values.h"

namespace loambench {

namespace {

using namespace LoamCounters;

constexpr std::size_t blockSize = std::size_t{64} * 1024;
constexpr std::size_t interfaceCount = 2000;

/// A printer that discards or keeps its output.
class MemoryPrinter : public tabula::Printer {
 public:
  MemoryPrinter(U32 format, std::string* kept) : Printer(-1, format, true, false, true, 0), kept_(kept) {}

 protected:
  void take(std::string_view bytes) override {
    if (kept_ != nullptr) *kept_ += bytes;
  }

 private:
  std::string* kept_;
};

/// The output of another library: a block that is discarded or kept when it is full.
class Block {
 public:
  explicit Block(std::string* kept) : kept_(kept) {}
  char* room(std::size_t size) {
    if (size_ + size > blockSize) discard();
    return block_.data() + size_;
  }
  std::size_t left() const { return blockSize - size_; }
  void wrote(std::size_t size) { size_ += size; }
  void discard() {
    if (kept_ != nullptr) kept_->append(block_.data(), size_);
    size_ = 0;
  }

 private:
  std::array<char, blockSize> block_;
  std::size_t size_ = 0;
  std::string* kept_;
};

/// A stream buffer of the same size, which is also discarded.
class BlockBuffer : public std::streambuf {
 public:
  explicit BlockBuffer(std::string* kept) : kept_(kept) {
    setp(block_.data(), block_.data() + block_.size());
  }
  int overflow(int c) override {
    discard();
    if (c != traits_type::eof()) {
      *pptr() = static_cast<char>(c);
      pbump(1);
    }
    return 0;
  }
  void discard() {
    if (kept_ != nullptr) kept_->append(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    setp(block_.data(), block_.data() + block_.size());
  }

 private:
  std::array<char, blockSize> block_;
  std::string* kept_;
};

struct Row {
  const char* name;
  const char* label;
  CounterQuad quad;
};

class Rows {
 public:
  Rows() : labels_(queueNamesByQueuesPerPort(8, 8)) {
    for (std::size_t i = 0; i < interfaceCount; ++i) {
      intfs_.emplace_back("Ethernet" + std::to_string(1 + i / 48) + "/" + std::to_string(1 + i % 48));
      IngressTcCounter record;
      for (U64 t = 0; t < 8; ++t) record.queueIs(IngressCounterIndex(t), {busyQuad(i * 8 + t)});
      records_.push_back(record);
    }
  }

  void ours(U32 format, std::string* kept, bool egress) const {
    MemoryPrinter printer(format, kept);
    QueueCountersAttrs attrs(printer);
    printer.start();
    printer.startDict("interfaces");
    for (std::size_t i = 0; i < interfaceCount; ++i) {
      if (egress) {
        for (U32 t = 0; t < 8; ++t) {
          printEgressCounters(printer, format, intfs_[i], t, 7, labels_[t], t + 1, allDpLabel, 0, false,
                              records_[i][IngressCounterIndex(t)], attrs);
        }
      } else {
        printIngressCounters(printer, intfs_[i], intfs_[i].stringValue(), 8, labels_, 7, false, false,
                             records_[i], attrs);
      }
    }
    printer.endDict();
    printer.end();
    printer.close();
  }

  /// Calls row(name, label, quad) for each row.
  template <class Print>
  void each(Print print) const {
    for (std::size_t i = 0; i < interfaceCount; ++i) {
      const char* name = intfs_[i].shortName().c_str();
      for (U32 t = 0; t < 8; ++t) print(name, labels_[t].c_str(), records_[i][IngressCounterIndex(t)]);
    }
  }
  template <class Print>
  void eachInterface(Print print) const {
    for (std::size_t i = 0; i < interfaceCount; ++i) print(intfs_[i].stringValue().c_str(), records_[i]);
  }
  const std::vector<Mote::String>& labels() const { return labels_; }

 private:
  std::vector<Mote::String> labels_;
  std::vector<Nexo::IntfId> intfs_;
  std::vector<IngressTcCounter> records_;
};

unsigned long long ull(U64 value) {
  return value;
}

template <class... Args>
void print(Block& block, const char* format, Args... args) {
  block.wrote(static_cast<std::size_t>(std::snprintf(block.room(256), 256, format, args...)));
}

void snprintfIngress(const Rows& rows, std::string* kept) {
  Block block(kept);
  rows.each([&](const char* name, const char* label, const CounterQuad& q) {
    print(block, "%-26s ", name);
    print(block, "%-7s ", label);
    print(block, "%18llu %18llu %18llu %18llu\n", ull(q.enqueuedPackets), ull(q.enqueuedBytes),
          ull(q.droppedPackets), ull(q.droppedBytes));
  });
  block.discard();
}

void snprintfEgress(const Rows& rows, std::string* kept) {
  Block block(kept);
  rows.each([&](const char* name, const char* label, const CounterQuad& q) {
    print(block, "%-20s ", name);
    print(block, "%-7s ", label);
    print(block, "%-10s ", "DP0-3");
    print(block, "%-10s ", "UC");
    print(block, "%17llu %17llu %17llu %17llu\n", ull(q.enqueuedPackets), ull(q.enqueuedBytes),
          ull(q.droppedPackets), ull(q.droppedBytes));
  });
  block.discard();
}

template <class Format, class... Args>
void printFmt(Block& block, const Format& format, const Args&... args) {
  char* at = block.room(256);
  block.wrote(static_cast<std::size_t>(fmt::format_to(at, format, args...) - at));
}

void fmtIngress(const Rows& rows, std::string* kept) {
  Block block(kept);
  rows.each([&](const char* name, const char* label, const CounterQuad& q) {
    printFmt(block, FMT_COMPILE("{:<26} "), name);
    printFmt(block, FMT_COMPILE("{:<7} "), label);
    printFmt(block, FMT_COMPILE("{:>18} {:>18} {:>18} {:>18}\n"), q.enqueuedPackets, q.enqueuedBytes,
             q.droppedPackets, q.droppedBytes);
  });
  block.discard();
}

void fmtEgress(const Rows& rows, std::string* kept) {
  Block block(kept);
  rows.each([&](const char* name, const char* label, const CounterQuad& q) {
    printFmt(block, FMT_COMPILE("{:<20} "), name);
    printFmt(block, FMT_COMPILE("{:<7} "), label);
    printFmt(block, FMT_COMPILE("{:<10} "), "DP0-3");
    printFmt(block, FMT_COMPILE("{:<10} "), "UC");
    printFmt(block, FMT_COMPILE("{:>17} {:>17} {:>17} {:>17}\n"), q.enqueuedPackets, q.enqueuedBytes,
             q.droppedPackets, q.droppedBytes);
  });
  block.discard();
}

void streamIngress(const Rows& rows, std::string* kept) {
  BlockBuffer buffer(kept);
  std::ostream out(&buffer);
  rows.each([&](const char* name, const char* label, const CounterQuad& q) {
    out << std::left << std::setw(26) << name << ' ' << std::setw(7) << label << ' ' << std::right
        << std::setw(18) << q.enqueuedPackets << ' ' << std::setw(18) << q.enqueuedBytes << ' '
        << std::setw(18) << q.droppedPackets << ' ' << std::setw(18) << q.droppedBytes << '\n';
  });
  buffer.discard();
}

void streamEgress(const Rows& rows, std::string* kept) {
  BlockBuffer buffer(kept);
  std::ostream out(&buffer);
  rows.each([&](const char* name, const char* label, const CounterQuad& q) {
    out << std::left << std::setw(20) << name << ' ' << std::setw(7) << label << ' ' << std::setw(10)
        << "DP0-3" << ' ' << std::setw(10) << "UC" << ' ' << std::right << std::setw(17) << q.enqueuedPackets
        << ' ' << std::setw(17) << q.enqueuedBytes << ' ' << std::setw(17) << q.droppedPackets << ' '
        << std::setw(17) << q.droppedBytes << '\n';
  });
  buffer.discard();
}

/// A RapidJSON output stream over a block.
class BlockStream {
 public:
  using Ch = char;
  explicit BlockStream(std::string* kept) : block_(kept) {}
  void Put(char c) {
    *block_.room(1) = c;
    block_.wrote(1);
  }
  void Flush() {}
  void discard() { block_.discard(); }

 private:
  Block block_;
};

void rapidJsonIngress(const Rows& rows, std::string* kept) {
  BlockStream stream(kept);
  rapidjson::Writer<BlockStream> writer(stream);
  writer.StartObject();
  writer.Key("interfaces");
  writer.StartObject();
  rows.eachInterface([&](const char* name, const IngressTcCounter& record) {
    writer.Key(name);
    writer.StartObject();
    writer.Key("trafficClasses");
    writer.StartObject();
    for (U32 t = 0; t < 8; ++t) {
      const IngressCounter& q = record[IngressCounterIndex(t)];
      writer.Key(rows.labels()[t].c_str());
      writer.StartObject();
      writer.Key("enqueuedPackets");
      writer.Uint64(q.enqueuedPackets);
      writer.Key("enqueuedBytes");
      writer.Uint64(q.enqueuedBytes);
      writer.Key("droppedPackets");
      writer.Uint64(q.droppedPackets);
      writer.Key("droppedBytes");
      writer.Uint64(q.droppedBytes);
      writer.EndObject();
    }
    writer.EndObject();
    writer.EndObject();
  });
  writer.EndObject();
  writer.EndObject();
  stream.Put('\n');
  stream.discard();
}

void nlohmannIngress(const Rows& rows, std::string* kept) {
  using Json = nlohmann::ordered_json;
  std::string text;
  {
    Json json;
    Json::object_t interfaces;
    interfaces.reserve(interfaceCount);
    rows.eachInterface([&](const char* name, const IngressTcCounter& record) {
      Json::object_t classes;
      for (U32 t = 0; t < 8; ++t) {
        const IngressCounter& q = record[IngressCounterIndex(t)];
        classes.emplace_back(rows.labels()[t].c_str(), Json{{"enqueuedPackets", q.enqueuedPackets},
                                                            {"enqueuedBytes", q.enqueuedBytes},
                                                            {"droppedPackets", q.droppedPackets},
                                                            {"droppedBytes", q.droppedBytes}});
      }
      // Appends without searching the existing members, which would take most of the time.
      interfaces.emplace_back(name, Json{{"trafficClasses", std::move(classes)}});
    });
    json["interfaces"] = std::move(interfaces);
    text = json.dump() + "\n";
  }
  if (kept != nullptr) *kept = text;
  ::malloc_trim(0);
}

using Peer = void (*)(const Rows&, std::string*);
struct NamedPeer {
  const char* name;
  Peer run;
  const char* target;
};

void compete(const char* what, U32 format, bool egress, const std::vector<NamedPeer>& peers) {
  addComparison(what, 301, [=] {
    const auto rows = std::make_shared<Rows>();
    std::string expected;
    rows->ours(format, &expected, egress);
    std::vector<Competitor> competitors = {{"ours", [=] { rows->ours(format, nullptr, egress); }, ""}};
    for (const NamedPeer& peer : peers) {
      std::string bytes;
      peer.run(*rows, &bytes);
      requireSame(std::string(what) + " by " + peer.name, expected, bytes);
      competitors.push_back({peer.name, [=] { peer.run(*rows, nullptr); }, peer.target});
    }
    return competitors;
  });
}

}  // namespace

void addRows() {
  compete("ingress rows, text", tabula::formatText, false,
          {{"snprintf", snprintfIngress, ">= 5.5"},
           {"{fmt} compiled", fmtIngress, ">= 4"},
           {"std::ostream", streamIngress, ">= 3.5"}});
  compete("egress rows, text", tabula::formatText, true,
          {{"snprintf", snprintfEgress, ">= 5.5"},
           {"{fmt} compiled", fmtEgress, ">= 4"},
           {"std::ostream", streamEgress, ">= 3.5"}});
  compete("ingress rows, JSON", tabula::formatJson, false, {{"RapidJSON", rapidJsonIngress, ">= 3.5"}});
  // Returns the tree's memory to the system after each run, so that it does not slow down the next one.
  compete("ingress rows, JSON, against a tree", tabula::formatJson, false,
          {{"nlohmann ordered_json", nlohmannIngress, ">= 20"}});
}

}  // namespace loambench
