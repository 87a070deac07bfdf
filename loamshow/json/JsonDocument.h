#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "loamshow/text/InputError.h"
#include "platform/Mote.h"

namespace loamshow {

class JsonValue;

/// A JSON document as parsed, in the order of its text: repeated members are all there, for its reader to
/// refuse. Nesting may be of any depth.
class JsonDocument {
 public:
  /// `name` stands for the document in messages. Raises InputError for a text that is no JSON.
  JsonDocument(std::string name, std::string_view text);

  /// The document's value. Values are valid as long as the document is.
  JsonValue root() const;

 private:
  friend class JsonValue;
  friend class JsonBuilder;

  enum class Kind : U8 { null, boolean, count, negative, real, text, array, object };

  /// A value, and the key under which its object holds it. The values within it follow it, up to `end`.
  struct Node {
    std::size_t keyBegin = 0;   // in texts_
    std::size_t textBegin = 0;  // of a text, in texts_
    std::size_t end = 0;        // the index after the last node within this one
    union {
      U64 count = 0;  // the value; of a text, its size
      double real;
    };
    U32 keySize = 0;
    Kind kind = Kind::null;
  };

  std::string_view key(const Node& node) const {
    return std::string_view(texts_).substr(node.keyBegin, node.keySize);
  }
  std::string path(std::size_t index) const;

  std::string name_;
  std::string texts_;
  std::vector<Node> nodes_;
};

/// One value of a document. A value of another type than the one asked for raises InputError.
class JsonValue {
 public:
  JsonValue(const JsonDocument& document, std::size_t index) : document_(&document), index_(index) {}

  /// The key of a member; empty for an element and for the root.
  std::string_view key() const;

  bool isNull() const;
  bool boolean() const;
  /// An integer from `lowest` to `highest`.
  U64 integer(U64 lowest, U64 highest) const;
  double real() const;
  std::string_view text() const;
  /// The key as an integer from `lowest` to `highest`, in decimal digits without leading zeros.
  U64 keyInteger(U64 lowest, U64 highest) const;

  /// The members of an object, the elements of an array, in order: `for (JsonValue v : value.members())`.
  class Range;
  Range members() const;
  Range elements() const;

  /// Raises InputError: the document's name, this value's path, and `problem`.
  [[noreturn]] void fail(std::string_view problem) const;

 private:
  const JsonDocument::Node& node() const { return document_->nodes_[index_]; }
  void expect(JsonDocument::Kind kind, std::string_view what) const;

  const JsonDocument* document_;
  std::size_t index_;
};

class JsonValue::Range {
 public:
  class Iterator {
   public:
    Iterator(const JsonDocument& document, std::size_t index) : document_(&document), index_(index) {}
    JsonValue operator*() const { return {*document_, index_}; }
    Iterator& operator++();
    bool operator==(const Iterator& other) const { return index_ == other.index_; }

   private:
    const JsonDocument* document_;
    std::size_t index_;
  };

  Range(Iterator begin, Iterator end) : begin_(begin), end_(end) {}
  Iterator begin() const { return begin_; }
  Iterator end() const { return end_; }

 private:
  Iterator begin_;
  Iterator end_;
};

/// Walks an object whose members are known, each of them optional and there at most once:
///
///   for (JsonMembers in(object); in.next();) {
///     if (in.is("port")) {
///       port = in.value().integer(0, 7);
///     } else {
///       in.unknown();
///     }
///   }
///
/// Each turn asks for the same names in the same order, up to the member's own.
class JsonMembers {
 public:
  explicit JsonMembers(JsonValue object);

  /// Goes to the next member; false after the last.
  bool next();
  /// Whether the member has that name. Raises InputError for one that an earlier turn has had.
  bool is(std::string_view name);
  JsonValue value() const { return *at_; }
  [[noreturn]] void unknown() const;

 private:
  JsonValue::Range::Iterator at_;
  JsonValue::Range::Iterator end_;
  bool started_ = false;
  U64 asked_ = 1;  // the bit of the name asked for next
  U64 seen_ = 0;   // the bits of the names met
};

}  // namespace loamshow
