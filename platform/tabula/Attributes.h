#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/Mote.h"
#include "platform/tabula/Format.h"
#include "platform/vane/Failure.h"

namespace tabula {

class Renderer;

/// What a value becomes: the `format` of an answer.
inline constexpr U32 formatText = 1;
inline constexpr U32 formatJson = 2;

/// A text appended as the inside of a JSON string: quotes, backslashes and control bytes escaped, bytes that
/// are not UTF-8 replaced by U+FFFD.
void appendEscaped(std::string& out, std::string_view text);

/// Base of the attribute descriptors: a value that appears in JSON under a key. A descriptor may serve many
/// rows, its value set anew for each.
class AttrInfo {
 public:
  AttrInfo(const AttrInfo&) = delete;
  AttrInfo& operator=(const AttrInfo&) = delete;

  /// The key as it stands in a JSON answer after another member, with comma, quotes and colon. As many bytes
  /// as writeSlack may be read past its end.
  std::string_view jsonKey() const noexcept { return {jsonKey_.data(), jsonKey_.size() - writeSlack}; }

 protected:
  AttrInfo(std::string_view key, const Renderer& renderer);
  ~AttrInfo() = default;

  void valueSet() noexcept { hasValue_ = true; }
  /// Fatal without a value, or in an unknown format.
  void checkValue() const {
    const bool hasValue = hasValue_ && knownFormat_;
    VANE_ASSERT(hasValue);
  }

 private:
  std::string jsonKey_;
  bool knownFormat_;
  bool hasValue_ = false;
};

/// What getArg() gives: the value in text, the value under its key in JSON.
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

/// A descriptor of one machine word: a number, or in a StringAttrInfo a text. A dictionary entry's key is
/// one.
class Attr32Info : public AttrInfo {
 public:
  Attr32Info(std::string_view key, const Renderer& renderer) : AttrInfo(key, renderer) {}

  void setValue(U32 value) noexcept {
    word_ = Arg(value, this);
    valueSet();
  }
  /// Fatal when the value is a text, which is to be read from the StringAttrInfo that it was set in.
  NumberArg getArg() const { return {word(Arg::Kind::unsignedNumber).number(), this}; }
  /// The value, whichever it is.
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
