#pragma once

// The layout of a counter region: a file, mostly in memory (/dev/shm), that holds a switch. One process
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
// The header is the only part with a fixed place. Structures are aligned to 8 bytes, records to 64, texts
// to 1. Everything but the records and the heartbeat is complete before the file gets its name, and never
// changes. A switch that changes gets a new region, which replaces the old one by rename(2).
//
// The description is the JSON text of a state file without counts: without `counters`, and without the
// snapshots of `debug`.
//
// A record is an array of 64-bit words. The first is its sequence number, the others are its content:
//
//   ingress          a total, then as many queues as RegionSource says: four words each
//   egress           a total, then 8 quads: four words each
//   egressTm         a total, then 16 quads, then a word with bit n set where tcLsbOfAmbiguousTcs[n] is
//   egressLag        a total, then 32 quads
//   egressAcl        a count
//   egressMtu        the counts of enqueued, dropped and all packets
//   debug counter    value, first update, last update, last discontinuity (each the bits of a double),
//   overflow
//                    (0 or 1)
//
// A quad is enqueued packets, enqueued bytes, dropped packets, dropped bytes. An egressAcl or egressMtu count
// above 2^63 - 1 stands for no value.
//
// To write a record: store the sequence number, made odd; store the content; store the sequence number
// plus 1. To read it: load the sequence number, which must be even; load the content; load the sequence
// number again, and start over unless it is the same. Each load but the last acquires, each store but the
// first releases. A record has one writer at a time. One that stays odd was being written when its writer
// died.

#include <cstddef>
#include <string_view>

#include "platform/Mote.h"
#include "platform/counteragent/Records.h"

namespace LoamCounters {

/// A part of the region: an array of structures, or bytes of text.
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
  U64 unused[5];  // the heartbeat, which changes, is on a cache line of its own
  U64 heartbeat;  // when the writer last gave a sign of life: nanoseconds since 1970 UTC, at least every
                  // second
  U64 unusedToo[7];
};

/// An interface and its records; offset 0 where it has none of a kind.
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
  U32 place;  // in the state file's list of ingress records, from 0
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
  RegionPart records;  // one behind the other, each at a multiple of `recordAlignment`
};

static_assert(sizeof(RegionHeader) == 192 && offsetof(RegionHeader, heartbeat) == 128);
static_assert(sizeof(RegionInterface) == 64 && sizeof(RegionSource) == 16 && sizeof(RegionFap) == 16);
static_assert(sizeof(RegionManager) == 32 && sizeof(RegionSnapshot) == 32);

namespace region {

constexpr U64 recordAlignment = 64;

// The words of a record's content, without the sequence number.
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

/// The bytes from one record with that content to the next.
constexpr U64 recordSize(U64 words) {
  return (sizeof(U64) * (1 + words) + recordAlignment - 1) / recordAlignment * recordAlignment;
}

}  // namespace region

}  // namespace LoamCounters
