// JSON of any structure and any names: another library and the host's reader must read the output of a
// printer, and the host's writer must format it like that library.

#include <nlohmann/json.hpp>

#include "fuzz/Fuzz.h"
#include "loamshow/json/JsonReader.h"
#include "loamshow/json/JsonWriter.h"

namespace {

using Json = nlohmann::ordered_json;
using loamshow::JsonWriter;

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

/// Writes what the host reads; `expected` tells the types.
void copy(loamshow::JsonValue value, const Json& expected, JsonWriter& out) {
  if (expected.is_string()) {
    out.value(value.text());
  } else if (expected.is_number()) {
    out.value(value.integer(0, ~U64{0}));
  } else {
    out.beginObject();
    loamshow::JsonMembers in(value);
    for (const Json& member : expected) {
      loamfuzz::require(in.next());
      out.key(in.key());
      copy(in.value(), member, out);
    }
    loamfuzz::require(!in.next());
    out.endObject();
  }
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
  for (const auto& [layout, indent] :
       {std::pair(JsonWriter::Layout::oneLine, -1), {JsonWriter::Layout::indented, 2}}) {
    loamshow::JsonReader reader("answer", loamshow::JsonText(printer.text));
    std::string text;
    JsonWriter out(text, layout);
    copy(reader.root(), expected, out);
    reader.finish();
    loamfuzz::require(text == expected.dump(indent) + "\n");
  }
  return 0;
}
