#pragma once

// A streaming JSON writer.

#include <concepts>
#include <functional>
#include <string>
#include <string_view>

#include "platform/Mote.h"

namespace loamshow {

/// Writes JSON documents as a stream, without a tree:
///
///   JsonWriter out(text, JsonWriter::Layout::indented);
///   out.beginObject();
///   out.member("name", "leaf7");
///   out.key("ports");
///   out.beginArray();
///   ...
///
/// A document ends with a newline when its last scope ends; another may follow. Strings are UTF-8, with the
/// escapes that JSON requires. The grammar is not checked.
class JsonWriter {
 public:
  /// Indented by two blanks per level with one member or element per line, or all on one line without blanks.
  enum class Layout { indented, oneLine };
  using Sink = std::function<void(std::string_view)>;

  /// Appends to `text`.
  JsonWriter(std::string& text, Layout layout);
  /// Passes the text on in pieces of about 64 kB, the last one at the end of a document.
  JsonWriter(Sink sink, Layout layout);
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;

  void beginObject() { begin('{'); }
  void endObject() { end('}'); }
  void beginArray() { begin('['); }
  void endArray() { end(']'); }
  /// The name of the next member; its value follows.
  void key(std::string_view name);

  void null() { scalar("null"); }
  void value(bool truth) { scalar(truth ? "true" : "false"); }
  template <std::unsigned_integral Number>
  requires(!std::same_as<Number, bool>) void value(Number number) { integer(number); }
  /// Writes the shortest text that reads back as the same number, which must be finite.
  void value(double number);
  void value(std::string_view text);
  void value(const char* text) { value(std::string_view(text)); }

  /// Writes a member with a scalar value.
  void member(std::string_view name, const auto& scalar) {
    key(name);
    value(scalar);
  }

 private:
  void begin(char bracket);
  void end(char bracket);
  void beginValue();
  void endValue();
  void newLine();
  void integer(U64 number);
  void scalar(std::string_view text);
  void string(std::string_view text);

  std::string pending_;  // not yet passed to the sink
  std::string& text_;
  Sink sink_;
  Layout layout_;
  std::size_t depth_ = 0;
  bool isFirst_ = true;      // no member or element in this scope yet
  bool followsKey_ = false;  // the member's name is written
};

}  // namespace loamshow
