// The rows by other libraries, in as many calls as the plug-in makes.

#include <fmt/compile.h>
#include <fmt/format.h>
#include <rapidjson/writer.h>

#include <cstdio>

#include "bench/Memory.h"
#include "bench/Rows.h"

namespace loambench {

namespace {

using LoamCounters::CounterQuad;

unsigned long long ull(U64 value) {
  return value;
}

template <class... Args>
void print(Block& block, const char* format, Args... args) {
  block.wrote(static_cast<std::size_t>(std::snprintf(block.room(256), 256, format, args...)));
}

template <class Format, class... Args>
void printFmt(Block& block, const Format& format, const Args&... args) {
  char* at = block.room(256);
  block.wrote(static_cast<std::size_t>(fmt::format_to(at, format, args...) - at));
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

}  // namespace

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

void rapidJsonIngress(const Rows& rows, std::string* kept) {
  BlockStream stream(kept);
  rapidjson::Writer<BlockStream> writer(stream);
  writer.StartObject();
  writer.Key("interfaces");
  writer.StartObject();
  for (std::size_t i = 0; i < rows.intfs.size(); ++i) {
    writer.Key(rows.intfs[i].stringValue().c_str());
    writer.StartObject();
    writer.Key("trafficClasses");
    writer.StartObject();
    for (U32 t = 0; t < rows.labels.size(); ++t) {
      const CounterQuad& q = rows.quad(i, t);
      writer.Key(rows.labels[t].c_str());
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
  }
  writer.EndObject();
  writer.EndObject();
  stream.Put('\n');
  stream.discard();
}

}  // namespace loambench
