#pragma once

// Attribute descriptors: the values of a row, with their JSON keys.

#include <array>
#include <string>
#include <string_view>

#include "platform/Mote.h"
#include "platform/tabula/Format.h"
#include "platform/vane/Failure.h"

namespace tabula {

class Renderer;

/// Output formats: the `format` argument of a show operation.
inline constexpr U32 formatText = 1;
inline constexpr U32 formatJson = 2;

/// Appends a text as the content of a JSON string: escapes quotes, backslashes and control bytes, and
/// replaces bytes that are not UTF-8 by U+FFFD.
void appendEscaped(std::string& out, std::string_view text);

/// Base of the attribute descriptors: a value that appears in JSON under a key. A descriptor may be used for
/// many rows, with a new value for each.
class AttrInfo {
 public:
  AttrInfo(const AttrInfo&) = delete;
  AttrInfo& operator=(const AttrInfo&) = delete;

  /// The key as written in JSON after another member, with comma, quotes and colon.
  std::string_view jsonKey() const noexcept { return jsonKey_; }

 protected:
  AttrInfo(std::string_view key, const Renderer& renderer);
  ~AttrInfo() = default;

  void valueSet() noexcept { hasValue_ = true; }
  /// Aborts if there is no value, or the format is unknown.
  void checkValue() const {
    const bool hasValue = hasValue_ && knownFormat_;
    VANE_ASSERT(hasValue);
  }

 private:
  std::string jsonKey_;
  bool knownFormat_;
  bool hasValue_ = false;
};

/// The result of getArg(): the value in text, the value under its key in JSON.
struct NumberArg : Arg {
  static constexpr Kind onlyKind = Kind::unsignedNumber;
  NumberArg(U64 number, const AttrInfo* attr) : Arg(number, attr) {}
};
struct TextArg : Arg {
  static constexpr Kind onlyKind = Kind::text;
  TextArg(std::string_view text, const AttrInfo* attr) : Arg(text, attr) {}
};

/// A descriptor of an unsigned 64-bit value.
class Attr64Info : public AttrInfo {
 public:
  Attr64Info(std::string_view key, const Renderer& renderer) : AttrInfo(key, renderer) {}

  void setValue(U64 value) noexcept {
    value_ = value;
    valueSet();
  }
  NumberArg getArg() const {
    checkValue();
    return {value_, this};
  }

 private:
  U64 value_ = 0;
};

/// A descriptor of one machine word: a number, or a text in a StringAttrInfo. Keys of dictionary entries have
/// this type.
class Attr32Info : public AttrInfo {
 public:
  Attr32Info(std::string_view key, const Renderer& renderer) : AttrInfo(key, renderer) {}

  void setValue(U32 value) noexcept {
    word_ = Arg(value, this);
    valueSet();
  }
  /// Aborts if the value is a text: read that from the StringAttrInfo in which it was set.
  NumberArg getArg() const { return {word(Arg::Kind::unsignedNumber).number(), this}; }
  /// The value, a number or a text.
  const Arg& word() const {
    checkValue();
    return word_;
  }

 protected:
  const Arg& word(Arg::Kind expected) const {
    const bool isOfItsKind = word().kind() == expected;
    VANE_ASSERT(isOfItsKind);
    return word_;
  }
  void setText(std::string_view text) noexcept {
    word_ = Arg(text, this);
    valueSet();
  }

 private:
  Arg word_{U32{0}, this};
};

/// A descriptor that holds its own copy of a text.
class StringAttrInfo : public Attr32Info {
 public:
  StringAttrInfo(std::string_view key, const Renderer& renderer) : Attr32Info(key, renderer) {}

  void setValue(std::string_view text) {
    if (text.size() <= short_.size()) {
      copyShort(short_.data(), text.data(), text.size());
      setText({short_.data(), text.size()});
    } else {
      long_.assign(text);
      setText(long_);
    }
  }
  void setValue(const char* text, unsigned long length) { setValue(std::string_view(text, length)); }
  TextArg getArg() const { return {word(Arg::Kind::text).text(), this}; }

 private:
  std::array<char, 32> short_{};
  std::string long_;
};

}  // namespace tabula
