#include "platform/tabula/Utf8.h"

namespace tabula {

// The first byte of a sequence determines its length and limits the range of the second (no overlong forms,
// no surrogates, nothing above U+10FFFF). Of an invalid sequence, the longest prefix of a valid one is
// returned as one unit.
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

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const bool ascii = static_cast<unsigned char>(text.front()) < 0x80;
    const Sequence sequence = ascii ? Sequence{1, true} : takeSequence(text);
    if (!sequence.valid) return false;
    text.remove_prefix(sequence.size);
  }
  return true;
}

std::string masked(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const auto lead = static_cast<unsigned char>(text.front());
    const Sequence sequence = lead < 0x80 ? Sequence{1, lead >= 0x20 && lead != 0x7f} : takeSequence(text);
    const bool isControl =
        text.starts_with('\xc2') && static_cast<unsigned char>(text[sequence.size - 1]) < 0xa0;
    out += sequence.valid && !isControl ? text.substr(0, sequence.size) : std::string_view("?");
    text.remove_prefix(sequence.size);
  }
  return out;
}

}  // namespace tabula
