#include "platform/tabula/Attributes.h"

#include <array>

#include "platform/tabula/Renderer.h"
#include "platform/tabula/Utf8.h"

namespace tabula {

namespace {

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
}

}  // namespace tabula
