#pragma once

// A streaming JSON reader.

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "loamshow/json/JsonText.h"
#include "loamshow/text/InputError.h"
#include "platform/Mote.h"

namespace loamshow {

class JsonValue;

/// Reads a JSON document forwards, in one pass and without a tree. Values are read in the order of the text,
/// each at most once; a value that is not read is skipped. All functions throw InputError, with the
/// document's name and the line and column of a syntax error, or the path of an invalid value as a JSON
/// pointer. The first error in the order of reading is reported.
class JsonReader {
 public:
  /// `name` is the document's name in messages.
  JsonReader(std::string name, JsonText text);
  JsonReader(const JsonReader&) = delete;
  JsonReader& operator=(const JsonReader&) = delete;
  ~JsonReader();

  /// The root value, which must be an object. Values are valid as long as the reader exists.
  JsonValue root();
  /// Throws if anything but white space follows the root value. Call it after the last value is read.
  void finish();

 private:
  friend class JsonValue;
  friend class JsonMembers;
  friend class JsonElements;
  struct Parser;

  [[noreturn]] void failSyntax() const;
  [[noreturn]] void fail(std::string_view token, std::string_view problem) const;

  std::string name_;
  JsonText text_;
  std::unique_ptr<Parser> parser_;
};

/// Storage of a parser's value or iterator, which only the reader uses.
struct alignas(8) JsonPlace {
  std::array<std::byte, 24> bytes;
};

/// One value. Reading it as a wrong type throws.
class JsonValue {
 public:
  /// Reads a null, if it is one.
  bool isNull() const;
  bool boolean() const;
  /// An integer from `lowest` to `highest`.
  U64 integer(U64 lowest, U64 highest) const;
  double real() const;
  /// Valid as long as the reader exists.
  std::string_view text() const;
  /// Reads an array of exactly that many 64-bit integers; throws `otherwise` for an array of another size.
  void integers(std::span<U64> numbers, std::string_view otherwise) const;
  /// Reads the named members of an object, 64-bit integers, into the numbers with the same index. The names
  /// are in the order of the text; a number without a member keeps its value.
  void members(std::span<const std::string_view> names, std::span<U64> numbers) const;

  /// Throws InputError with the document's name, this value's path, and `problem`. Also for a value already
  /// read.
  [[noreturn]] void fail(std::string_view problem) const;

 private:
  friend class JsonReader;
  friend class JsonMembers;
  friend class JsonElements;
  JsonValue(JsonReader& reader, JsonPlace place) : reader_(&reader), place_(place) {}

  JsonReader* reader_;
  JsonPlace place_;
};

/// Walks the members of an object:
///
///   for (JsonMembers in(object); in.next();) {
///     if (in.is("port")) {
///       port = in.value().integer(0, 7);
///     } else {
///       in.unknown();
///     }
///   }
///
/// If the members are known (up to 32), each iteration calls is() for the same names in the same order, up to
/// the member's own; a repeated member throws. If names are data, key() is the name.
class JsonMembers {
 public:
  explicit JsonMembers(JsonValue object);

  /// Goes to the next member; false after the last.
  bool next();
  /// The member's name. Valid as long as the reader exists.
  std::string_view key() const { return key_; }
  /// The name as an integer from `lowest` to `highest`, in decimal digits without leading zeros.
  U64 keyInteger(U64 lowest, U64 highest) const;
  JsonValue value() const { return {*reader_, value_}; }

  /// Whether the member has that name. Throws if an earlier member had it.
  bool is(std::string_view name) {
    const std::size_t index = asked_++;
    names_[index] = name;
    if (key_ != name) return false;
    const U32 bit = U32{1} << index;
    if ((seen_ & bit) != 0) value().fail("repeated member");
    seen_ |= bit;
    return true;
  }
  /// Throws, with the nearest of the names that this iteration has tried.
  [[noreturn]] void unknown() const;

 private:
  static constexpr std::size_t mostNames = 32;

  JsonReader* reader_;
  JsonPlace iterator_;
  JsonPlace value_;
  std::string_view key_;
  bool started_ = false;
  std::size_t asked_ = 0;  // names tried in this iteration
  U32 seen_ = 0;           // one bit per name found
  std::array<std::string_view, mostNames> names_;
};

/// Walks the elements of an array: `for (JsonElements in(array); in.next();) use(in.value());`.
class JsonElements {
 public:
  explicit JsonElements(JsonValue array);

  /// Goes to the next element; false after the last.
  bool next();
  JsonValue value() const { return {*reader_, value_}; }

 private:
  JsonReader* reader_;
  JsonPlace iterator_;
  JsonPlace value_;
  bool started_ = false;
};

}  // namespace loamshow
