#include "platform/tabula/Attributes.h"

#include <array>

#include "platform/tabula/Renderer.h"

namespace tabula {

namespace {

/// A stretch at the front of a text that is not plain: one UTF-8 sequence, or bytes that are none.
struct Sequence {
  std::size_t size;
  bool valid;
};

// The first byte of a sequence gives its length and narrows the range of the second (no overlong forms, no
// surrogates, nothing above U+10FFFF). Of a broken one, the longest part that could have begun a sequence
// counts as one stretch.
Sequence takeSequence(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  std::size_t size = 0;
  unsigned low = 0x80;
  unsigned high = 0xbf;
  if (lead >= 0xc2 && lead <= 0xdf) {
    size = 2;
  } else if (lead >= 0xe0 && lead <= 0xef) {
    size = 3;
    if (lead == 0xe0) low = 0xa0;
    if (lead == 0xed) high = 0x9f;
  } else if (lead >= 0xf0 && lead <= 0xf4) {
    size = 4;
    if (lead == 0xf0) low = 0x90;
    if (lead == 0xf4) high = 0x8f;
  } else {
    return {1, false};
  }
  for (std::size_t i = 1; i < size; ++i) {
    if (i == text.size() || byte(i) < low || byte(i) > high) return {i, false};
    low = 0x80;
    high = 0xbf;
  }
  return {size, true};
}

bool isPlain(char c) {
  return static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x80 && c != '"' &&
         c != '\\';
}

void appendControl(std::string& out, char c) {
  constexpr std::string_view hex = "0123456789abcdef";
  out += '\\';
  switch (c) {
    case '"':
    case '\\':
      out += c;
      break;
    case '\b':
      out += 'b';
      break;
    case '\f':
      out += 'f';
      break;
    case '\n':
      out += 'n';
      break;
    case '\r':
      out += 'r';
      break;
    case '\t':
      out += 't';
      break;
    default:
      out += "u00";
      out += hex[static_cast<unsigned char>(c) / 16];
      out += hex[static_cast<unsigned char>(c) % 16];
  }
}

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
  while (!text.empty()) {
    const auto plain =
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isPlain) - text.begin());
    out += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return;
    std::size_t taken = 1;
    if (static_cast<unsigned char>(text.front()) < 0x80) {
      appendControl(out, text.front());
    } else {
      const Sequence sequence = takeSequence(text);
      taken = sequence.size;
      out += sequence.valid ? text.substr(0, taken) : std::string_view("\xef\xbf\xbd");
    }
    text.remove_prefix(taken);
  }
}

AttrInfo::AttrInfo(std::string_view key, const Renderer& renderer) : knownFormat_(renderer.knownFormat()) {
  jsonKey_ += ",\"";
  appendEscaped(jsonKey_, key);
  jsonKey_ += "\":";
  jsonKey_.append(writeSlack, '\0');
}

}  // namespace tabula
