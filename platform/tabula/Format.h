#pragma once

// The printf engine. A format is parsed at compile time into pieces; one function writes a piece. Where it is
// inlined, everything but the arguments is constant, which leaves a few stores per column.

#include <algorithm>
#include <array>
#include <concepts>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/Mote.h"
#include "platform/tabula/Digits.h"
#include "platform/vane/Failure.h"

namespace tabula {

class AttrInfo;

/// One argument of addFrills or addArgs, with its descriptor, if any. Does not copy texts.
class Arg {
 public:
  enum class Kind : U8 { text, unsignedNumber, signedNumber };

  constexpr Arg(std::string_view text, const AttrInfo* attr = nullptr)
      : text_(text.data()), number_(text.size()), attr_(attr), kind_(Kind::text) {}
  constexpr Arg(const char* text) : Arg(std::string_view(text)) {}
  constexpr Arg(const Mote::String& text) : Arg(text.view()) {}
  constexpr Arg(const std::string& text) : Arg(std::string_view(text)) {}
  template <std::unsigned_integral T>
  constexpr Arg(T number, const AttrInfo* attr = nullptr)
      : number_(number), attr_(attr), kind_(Kind::unsignedNumber) {}
  template <std::signed_integral T>
  constexpr Arg(T number)
      : number_(static_cast<U64>(static_cast<std::int64_t>(number))), kind_(Kind::signedNumber) {}

  Arg(bool) = delete;
  Arg(char) = delete;

  constexpr Kind kind() const { return kind_; }
  constexpr std::string_view text() const { return {text_, number_}; }
  constexpr U64 number() const { return number_; }
  constexpr bool negative() const {
    return kind_ == Kind::signedNumber && static_cast<std::int64_t>(number_) < 0;
  }
  /// Null for a plain value.
  constexpr const AttrInfo* attr() const { return attr_; }

 private:
  const char* text_ = nullptr;
  U64 number_;  // the value, or the size of the text
  const AttrInfo* attr_ = nullptr;
  Kind kind_;
};

/// A type whose values all become arguments of one kind. The kind of an Arg is known at run time only.
template <class T>
concept Argument = std::constructible_from<Arg, const T&> &&
    (std::integral<T> || std::convertible_to<const T&, std::string_view> || requires { T::onlyKind; });

template <Argument T>
consteval Arg::Kind kindOf() {
  if constexpr (std::integral<T>) {
    return std::unsigned_integral<T> ? Arg::Kind::unsignedNumber : Arg::Kind::signedNumber;
  } else if constexpr (requires { T::onlyKind; }) {
    return T::onlyKind;
  } else {
    return Arg::Kind::text;
  }
}

/// Literal text of a format, and the conversion that follows it, if any.
struct Piece {
  U32 begin = 0;  // of the literal, in the format
  U32 size = 0;
  char conversion = 0;        // 's', 'u', 'd', or 0 for none
  bool left = false;          // flag "-"
  bool widthIsArg = false;    // "*": the width comes from an unsigned argument before the value
  bool hasPrecision = false;  // texts only: limits the number of bytes
  U32 width = 0;
  U32 precision = 0;

  constexpr std::size_t args() const { return (conversion == 0 ? 0U : 1U) + (widthIsArg ? 1U : 0U); }
};

namespace detail {

// Parses the piece of the format at `at`. Formats are literals in the code: anything but
// %[-][width|*][.precision]{s|u|d|hu|lu|llu} and %% is an error, and does not compile.
constexpr Piece takePiece(std::string_view format, std::size_t& at) {
  Piece piece;
  const auto number = [&] {
    U32 value = 0;
    while (at < format.size() && format[at] >= '0' && format[at] <= '9') {
      value = value * 10 + static_cast<U32>(format[at++] - '0');
    }
    return value;
  };
  const auto skip = [&](char c) {
    const bool there = at < format.size() && format[at] == c;
    at += there ? 1 : 0;
    return there;
  };

  piece.begin = static_cast<U32>(at);
  while (at < format.size() && format[at] != '%') ++at;
  piece.size = static_cast<U32>(at) - piece.begin;
  if (at == format.size()) return piece;
  ++at;
  if (at < format.size() && format[at] == '%') {
    // "%%": the literal ends with the first of the two characters, so that it is a contiguous part of the
    // format.
    ++piece.size;
    ++at;
    return piece;
  }
  piece.left = skip('-');
  piece.widthIsArg = skip('*');
  if (!piece.widthIsArg) piece.width = number();
  if (skip('.')) {
    piece.hasPrecision = true;
    piece.precision = number();
  }
  bool sized = skip('h');
  while (skip('l')) sized = true;
  if (skip('s') && !sized) {
    piece.conversion = 's';
  } else if (skip('u')) {
    piece.conversion = 'u';
  } else if (skip('d') && !sized) {
    piece.conversion = 'd';
  }
  VANE_ASSERT(piece.conversion == 's' || (piece.conversion != 0 && !piece.hasPrecision));
  return piece;
}

constexpr std::size_t pieceCount(std::string_view format) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < format.size(); ++count) takePiece(format, at);
  return count;
}

constexpr bool takes(char conversion, Arg::Kind kind) {
  switch (conversion) {
    case 's':
      return kind == Arg::Kind::text;
    case 'u':
      return kind == Arg::Kind::unsignedNumber;
    default:
      return kind == Arg::Kind::signedNumber;
  }
}

}  // namespace detail

/// A string literal as a template argument.
template <std::size_t N>
struct FixedString {
  std::array<char, N> text{};

  consteval FixedString(const char (&literal)[N]) { std::copy_n(literal, N, text.begin()); }
  constexpr std::string_view view() const { return {text.data(), N - 1}; }
};

/// A parsed format.
template <FixedString format>
struct Layout {
  static constexpr std::string_view text = format.view();
  static constexpr auto pieces = [] {
    std::array<Piece, detail::pieceCount(text)> parsed{};
    std::size_t at = 0;
    for (Piece& piece : parsed) piece = detail::takePiece(text, at);
    return parsed;
  }();
  static constexpr std::size_t args = [] {
    std::size_t count = 0;
    for (const Piece& piece : pieces) count += piece.args();
    return count;
  }();
  /// The index of a piece's first argument.
  static constexpr std::size_t firstArg(std::size_t piece) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < piece; ++i) count += pieces[i].args();
    return count;
  }
};

namespace detail {

template <class L, class... T>
consteval bool fits() {
  if (L::args != sizeof...(T)) return false;
  const std::array<Arg::Kind, sizeof...(T)> kinds{kindOf<T>()...};
  std::size_t next = 0;
  for (const Piece& piece : L::pieces) {
    if (piece.widthIsArg && kinds[next++] != Arg::Kind::unsignedNumber) return false;
    if (piece.conversion != 0 && !takes(piece.conversion, kinds[next++])) return false;
  }
  return true;
}

}  // namespace detail

/// A format that takes exactly these arguments, each of the type that its conversion or width requires.
template <FixedString format, class... Args>
concept FormatOf =
    (Argument<std::decay_t<Args>> && ...) && detail::fits<Layout<format>, std::decay_t<Args>...>();

/// The width of a piece's column, and the number of bytes of its value that are written.
constexpr std::size_t columnWidth(const Piece& piece, const Arg* args) {
  return piece.widthIsArg ? args[0].number() : piece.width;
}
constexpr std::string_view columnText(const Piece& piece, const Arg& value) {
  return piece.hasPrecision ? value.text().substr(0, piece.precision) : value.text();
}

/// The maximal number of bytes of a piece.
constexpr std::size_t pieceBound(const Piece& piece, const Arg* args) {
  if (piece.conversion == 0) return piece.size;
  const std::size_t value =
      piece.conversion == 's' ? columnText(piece, args[piece.widthIsArg ? 1 : 0]).size() : mostDigits + 1;
  return piece.size + std::max(columnWidth(piece, args), value);
}

/// A number as text.
class NumberText {
 public:
  explicit NumberText(const Arg& value) noexcept {
    const bool negative = value.negative();
    end_ = writeNumber(begin_, negative ? U64{0} - value.number() : value.number());
    if (negative) *--begin_ = '-';
  }
  NumberText(const NumberText&) = delete;
  NumberText& operator=(const NumberText&) = delete;

  std::string_view view() const noexcept { return {begin_, end_}; }

 private:
  std::array<char, writeSlack + mostDigits> text_;
  char* begin_ = text_.data() + writeSlack;
  char* end_;
};

/// Writes a text into a column of at least that width; returns the end of the column. Fills the column with
/// blanks and writes the text over them: a few wide stores, and no loop over blanks.
[[gnu::always_inline]] inline char* writeTextColumn(char* at, bool left, std::size_t width,
                                                    std::string_view text) {
  const std::size_t column = std::max(width, text.size());
  writeBlanks(at, width);
  copyShort(left ? at : at + column - text.size(), text.data(), text.size());
  return at + column;
}

/// Writes a piece; `at` has room for pieceBound() and writeSlack bytes. Returns the end of the piece.
[[gnu::always_inline]] inline char* writePiece(char* at, std::string_view format, const Piece& piece,
                                               const Arg* args) {
  if (piece.size > 0) std::memcpy(at, format.data() + piece.begin, piece.size);
  at += piece.size;
  if (piece.conversion == 0) return at;

  const std::size_t width = columnWidth(piece, args);
  const Arg& value = args[piece.widthIsArg ? 1 : 0];
  if (piece.conversion == 's') return writeTextColumn(at, piece.left, width, columnText(piece, value));
  if (!piece.left && width >= 16 && !value.negative() && value.number() < detail::tenTo16) [[likely]] {
    writeBlanks(at, width - 16);
    writeSixteenWide(at + width - 16, value.number());
    return at + width;
  }
  return writeTextColumn(at, piece.left, width, NumberText(value).view());
}

}  // namespace tabula
