#pragma once

// The layout of a counter region: a file, usually in memory (/dev/shm), that contains a switch. One process
// writes its records; any number of processes map it read-only.
//
// A region has these parts, in the machine's byte order. Offsets are in bytes from the start of the file.
//
//   RegionHeader            at offset 0
//   RegionInterface []      every interface that has a record, in any order
//   RegionSource []         per interface: its ingress records, by ascending FAP, then core
//   RegionFap []            the MTU records, by ascending FAP
//   RegionManager []        the FAPs with debug counters, in any order
//   RegionSnapshot []       per FAP: its snapshots of debug counters, in any order
//   texts                   names and the description: UTF-8, names without U+0000, no terminating zero
//   records
//
// Only the header is at a fixed offset. Structures and records are aligned to 8 bytes, texts to 1. (Measured
// with 8 to 128 bytes: a larger alignment of records makes neither readers nor writers faster.) Everything
// but the records and the heartbeat is complete before the file gets its name, and never changes. A switch
// that changes gets a new region, which replaces the old one by rename(2).
//
// The description is the JSON text of a state file without counts: without `counters`, and without the
// snapshots of `debug`.
//
// A record is an array of 64-bit words. The first word is its sequence number, the others are its content:
//
//   ingress          a total, then the number of queues in RegionSource: four words each
//   egress           a total, then 8 quads: four words each
//   egressTm         a total, then 16 quads, then a word with bit n set where tcLsbOfAmbiguousTcs[n] is
//   egressLag        a total, then 32 quads
//   egressAcl        a count
//   egressMtu        the counts of enqueued, dropped and all packets
//   debug counter    value; first update, last update, last discontinuity (bits of doubles); overflow, 0 or 1
//
// A quad is enqueued packets, enqueued bytes, dropped packets, dropped bytes. An egressAcl or egressMtu count
// above 2^63 - 1 means no value.
//
// To write a record: store the sequence number with its lowest bit set; store the content; store the sequence
// number plus 1. To read it: load the sequence number, which must be even; load the content; load the
// sequence number again, and start over unless it is the same. Every load but the last acquires, every store
// but the first releases. A record has one writer at a time. A sequence number that stays odd means that the
// writer died while it wrote the record.

#include <cstddef>
#include <string_view>

#include "platform/Mote.h"
#include "platform/counteragent/Records.h"

namespace LoamCounters {

/// A part of the region: an array of structures, or a text.
struct RegionPart {
  U64 offset;
  U64 count;
};

struct RegionHeader {
  static constexpr std::string_view expectedMagic = "LOAMCTRS";
  static constexpr U32 expectedByteOrder = 0x01020304;
  static constexpr U32 expectedVersion = 1;

  char magic[8];
  U32 byteOrder;
  U32 version;
  U64 size;  // of the file
  RegionPart description;
  RegionPart interfaces;
  RegionPart faps;
  RegionPart managers;
  U64 unused[5];  // puts the heartbeat on its own cache line
  /// The last sign of life of the writer, at least one per second: nanoseconds since 1970 UTC.
  U64 heartbeat;
  U64 unusedToo[7];
};

/// An interface and its records; offset 0 means that it has no such record.
struct RegionInterface {
  RegionPart name;
  RegionPart sources;
  U64 egress;
  U64 egressTm;
  U64 egressLag;
  U64 egressAcl;
};

/// The ingress record of an interface on one FAP core.
struct RegionSource {
  U64 record;
  U32 place;  // index in the state file's list of ingress records
  U16 fap;    // 0 to 2046
  U8 core;    // 0 to 6
  U8 queues;  // up to 80
};

struct RegionFap {
  U64 record;
  U64 fap;  // 0 to 2046
};

struct RegionManager {
  RegionPart fap;  // its name
  RegionPart snapshots;
};

struct RegionSnapshot {
  RegionPart name;
  RegionPart records;  // consecutive
};

static_assert(sizeof(RegionHeader) == 192 && offsetof(RegionHeader, heartbeat) == 128);
static_assert(sizeof(RegionInterface) == 64 && sizeof(RegionSource) == 16 && sizeof(RegionFap) == 16);
static_assert(sizeof(RegionManager) == 32 && sizeof(RegionSnapshot) == 32);

namespace region {

// Number of words of a record's content, without the sequence number.
constexpr U64 quadWords = 4;
constexpr U64 ingressWords(U64 queues) {
  return quadWords * (1 + queues);
}
constexpr U64 egressWords = quadWords * (1 + EgressCounter::quads);
constexpr U64 egressTmWords = quadWords * (1 + EgressTmCounter::quads) + 1;
constexpr U64 egressLagWords = quadWords * (1 + EgressLagCounter::quads);
constexpr U64 egressAclWords = 1;
constexpr U64 egressMtuWords = 3;
constexpr U64 debugWords = 5;

/// The size of a record with that content, in bytes.
constexpr U64 recordSize(U64 words) {
  return sizeof(U64) * (1 + words);
}

}  // namespace region

}  // namespace LoamCounters
