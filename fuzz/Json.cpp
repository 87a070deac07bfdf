// JSON of any structure and any names: the host's reader and another library must read the output of a
// printer, and the host's writer must format it like that library.

#include <nlohmann/json.hpp>

#include "fuzz/Fuzz.h"
#include "loamshow/json/JsonReader.h"
#include "loamshow/json/JsonWriter.h"

namespace {

using Json = nlohmann::ordered_json;

/// The text after writing and reading it with the other library.
std::string received(const std::string& text) {
  return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace)).get<std::string>();
}

/// Fills the open object, a dictionary or another one, until the input ends it. Returns the expected object.
Json filled(loamfuzz::Input& input, tabula::Renderer& printer, bool isDict, int depth) {
  Json object = Json::object();
  for (bool goesOn = true; goesOn && !input.atEnd(); goesOn = !input.flag()) {
    // The number makes the key unique.
    const std::string key = std::to_string(object.size()) + ":" + input.text(40);
    Json& member = object[received(key)];
    const U64 kind = isDict ? 4 : input.number(depth < 20 ? 4 : 2);
    if (kind == 0) {
      const std::string text = input.text(100);
      tabula::StringAttrInfo info(key, printer);
      info.setValue(text);
      printer.addArgs<"%s">(info.getArg());
      member = received(text);
    } else if (kind == 1) {
      const U64 number = ~input.number(~U64{0});
      tabula::Attr64Info info(key, printer);
      info.setValue(number);
      printer.addArgs<"%llu">(info.getArg());
      member = number;
    } else if (kind == 2) {
      printer.startSubmodel(key);
      member = filled(input, printer, false, depth + 1);
      printer.endSubmodel();
    } else if (kind == 3) {
      printer.startDict(key);
      member = filled(input, printer, true, depth + 1);
      printer.endDict();
    } else {
      tabula::StringAttrInfo name("", printer);
      name.setValue(key);
      printer.startDictEntry(name);
      member = filled(input, printer, false, depth + 1);
      printer.endDictEntry();
    }
  }
  return object;
}

void requireEqual(loamshow::JsonValue value, const Json& expected) {
  if (expected.is_string()) {
    loamfuzz::require(value.text() == expected.get<std::string_view>());
  } else if (expected.is_number()) {
    loamfuzz::require(value.integer(0, ~U64{0}) == expected.get<U64>());
  } else {
    loamshow::JsonMembers in(value);
    for (const auto& [key, member] : expected.items()) {
      loamfuzz::require(in.next() && in.key() == key);
      requireEqual(in.value(), member);
    }
    loamfuzz::require(!in.next());
  }
}

void write(loamshow::JsonWriter& out, const Json& json) {
  if (json.is_string()) {
    out.value(json.get<std::string_view>());
  } else if (json.is_number()) {
    out.value(json.get<U64>());
  } else {
    out.beginObject();
    for (const auto& [key, member] : json.items()) {
      out.key(key);
      write(out, member);
    }
    out.endObject();
  }
}

void requireWritten(const Json& json, loamshow::JsonWriter::Layout layout, int indent) {
  std::string text;
  loamshow::JsonWriter out(text, layout);
  write(out, json);
  loamfuzz::require(text == json.dump(indent) + "\n");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  loamfuzz::Input input(data, size);
  loamfuzz::Collector printer(tabula::formatJson);
  printer.start();
  const Json expected = filled(input, printer, false, 1);
  printer.end();
  printer.ioflush();
  loamfuzz::require(Json::parse(printer.text) == expected);

  loamshow::JsonReader reader("answer", loamshow::JsonText(printer.text));
  requireEqual(reader.root(), expected);
  reader.finish();
  requireWritten(expected, loamshow::JsonWriter::Layout::oneLine, -1);
  requireWritten(expected, loamshow::JsonWriter::Layout::indented, 2);
  return 0;
}
