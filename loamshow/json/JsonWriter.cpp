#include "loamshow/json/JsonWriter.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace loamshow {

namespace {

/// The character after the backslash of an escape; 0 for a character that needs none, 'u' for a numeric
/// escape.
constexpr auto escapes = [] {
  std::array<char, 256> letters{};
  for (std::size_t c = 0; c < 0x20; ++c) letters[c] = 'u';
  letters['\b'] = 'b';
  letters['\f'] = 'f';
  letters['\n'] = 'n';
  letters['\r'] = 'r';
  letters['\t'] = 't';
  letters['"'] = '"';
  letters['\\'] = '\\';
  return letters;
}();

}  // namespace

JsonWriter::JsonWriter(std::string& text, Layout layout) : text_(text), layout_(layout) {
}

JsonWriter::JsonWriter(Sink sink, Layout layout) : text_(pending_), sink_(std::move(sink)), layout_(layout) {
}

void JsonWriter::key(std::string_view name) {
  beginValue();
  string(name);
  text_ += ':';
  if (layout_ == Layout::indented) text_ += ' ';
  followsKey_ = true;
}

void JsonWriter::value(double number) {
  // Without an exponent if that needs at most 17 digits.
  const double size = std::abs(number);
  const bool isPlain = size == 0 || (size >= 1e-5 && size < 1e17);
  std::array<char, 64> digits;
  const auto format = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number, format);
  scalar({digits.data(), end});
}

void JsonWriter::value(std::string_view text) {
  beginValue();
  string(text);
  endValue();
}

void JsonWriter::begin(char bracket) {
  beginValue();
  text_ += bracket;
  ++depth_;
  isFirst_ = true;
}

void JsonWriter::end(char bracket) {
  --depth_;
  if (!isFirst_) newLine();
  text_ += bracket;
  isFirst_ = false;
  endValue();
}

void JsonWriter::beginValue() {
  if (std::exchange(followsKey_, false) || depth_ == 0) return;
  if (!std::exchange(isFirst_, false)) text_ += ',';
  newLine();
}

void JsonWriter::endValue() {
  constexpr std::size_t piece = std::size_t{64} * 1024;
  if (depth_ == 0) text_ += '\n';
  if (!sink_ || (depth_ > 0 && pending_.size() < piece)) return;
  sink_(pending_);
  pending_.clear();
}

void JsonWriter::newLine() {
  if (layout_ == Layout::oneLine) return;
  text_ += '\n';
  text_.append(2 * depth_, ' ');
}

void JsonWriter::integer(U64 number) {
  std::array<char, 20> digits;
  scalar({digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr});
}

void JsonWriter::scalar(std::string_view text) {
  beginValue();
  text_ += text;
  endValue();
}

void JsonWriter::string(std::string_view text) {
  text_ += '"';
  for (const char c : text) {
    const char escape = escapes[static_cast<unsigned char>(c)];
    if (escape == 0) {
      text_ += c;
      continue;
    }
    text_ += '\\';
    text_ += escape;
    if (escape == 'u') {
      constexpr std::string_view digits = "0123456789abcdef";
      const auto code = static_cast<unsigned char>(c);
      text_ += "00";
      text_ += digits[code / 16];
      text_ += digits[code % 16];
    }
  }
  text_ += '"';
}

}  // namespace loamshow
