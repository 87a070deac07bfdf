// The host's JSON reader and writer.

#include <gmock/gmock.h>

#include <cmath>
#include <regex>

#include "loamshow/json/JsonReader.h"
#include "loamshow/json/JsonWriter.h"

namespace loamtest {

namespace {

using namespace loamshow;

using Layout = JsonWriter::Layout;

/// Reads an object with the members "port", "ports", "real" and "nested", which is such an object itself.
std::string readMember(JsonValue object) {
  std::string read;
  for (JsonMembers in(object); in.next();) {
    if (in.is("port")) {
      read += " " + std::to_string(in.value().integer(0, 7));
    } else if (in.is("ports")) {
      U64 ports[2] = {};
      in.value().integers(ports, "expected two ports");
      read += " " + std::to_string(ports[0]) + "," + std::to_string(ports[1]);
    } else if (in.is("real")) {
      read += " " + std::string(std::signbit(in.value().real()) ? "negative" : "positive");
    } else if (in.is("text")) {
      read += " " + (in.value().isNull() ? "null" : std::string(in.value().text()));
    } else if (in.is("nested")) {
      for (JsonElements elements(in.value()); elements.next();) read += readMember(elements.value());
    } else {
      in.unknown();
    }
  }
  return read;
}

std::string readDocument(const std::string& text) {
  try {
    JsonReader reader("x", JsonText(text));
    std::string read = readMember(reader.root());
    reader.finish();
    return read;
  } catch (const InputError& error) {
    return error.what();
  }
}

TEST(JsonReader, ReadsForwardsAndExplainsItsErrors) {
  const std::pair<std::string, const char*> cases[] = {
      {R"({"port": 7, "nested": [{}, {"ports": [0, 18446744073709551615], "real": 1}], "text": "\u00e9\n"})",
       " 7 0,18446744073709551615 positive \u00e9\n"},
      {R"({"port": -0, "ports": [-0, 1], "real": -0.0, "text": null})", " 0 0,1 negative null"},
      {R"({"real": -0})", " positive"},
      {R"({"po\u0072t": 1})", " 1"},
      // Values of a wrong type or range.
      {R"({"port": 8})", "x: /port: expected an integer from 0 to 7"},
      {R"({"port": 1.0})", "x: /port: expected an integer from 0 to 7"},
      {R"({"port": -1})", "x: /port: expected an integer from 0 to 7"},
      {R"({"port": 18446744073709551616})", "x: /port: expected an integer from 0 to 7"},
      {R"({"port": true})", "x: /port: expected a number"},
      {R"({"nested": [{}, {"ports": [1, "2"]}]})", "x: /nested/1/ports/1: expected a number"},
      {R"({"nested": [{}, {"ports": [1]}]})", "x: /nested/1/ports: expected two ports"},
      {R"({"nested": [{"ports": [1, 2, [3]]}]})", "x: /nested/0/ports: expected two ports"},
      {R"({"ports": {}})", "x: /ports: expected an array"},
      {R"({"nested": [{"port": 1}, []]})", "x: /nested/1: expected an object"},
      {R"({"real": "1"})", "x: /real: expected a number"},
      {R"({"real": 1e400})", "x: /real: number overflow parsing '1e400'"},
      {R"({"text": 1})", "x: /text: expected a string"},
      {R"({"port": 1, "nested": [{"port": 2, "port": 3}]})", "x: /nested/0/port: repeated member"},
      {R"({"nested": [{"Prot": [{}]}]})", "x: /nested/0/Prot: unknown member; did you mean port?"},
      {R"({"a~/b": 1})", "x: /a~0~1b: unknown member"},
      // Documents that are not an object, or not JSON.
      {"", "x: the file is empty"},
      {" 17 ", "x: expected an object"},
      {"[1]", "x: expected an object"},
      {"\xef\xbb\xbf{}", "x: a byte-order mark where JSON was expected"},
      {std::string("{}\0", 3), "x: a NUL byte where JSON was expected"},
      {std::string("{\"text\": \"\0\"}", 13), "x: a NUL byte where JSON was expected"},
      {"{\n \"port\": 1x}",
       "x: parse error at line 2, column 11: syntax error while parsing object - invalid "
       "literal; last read: '1x'; expected '}'"},
      {"{\"port\": 1} {}",
       "x: parse error at line 1, column 13: syntax error while parsing value - unexpected "
       "'{'; expected end of input"},
      {"{\"port\": 1",
       "x: parse error at line 1, column 11: syntax error while parsing object - unexpected end of "
       "input; expected '}'"},
      {"{\"port\" 1}",
       "x: parse error at line 1, column 9: syntax error while parsing object separator - "
       "unexpected number literal; expected ':'"},
  };
  for (const auto& [text, read] : cases) EXPECT_EQ(readDocument(text), read) << text;
}

// The fuzz target compares names, texts and objects with another library.
TEST(JsonWriter, WritesArraysAndEveryScalar) {
  const auto writtenTo = [](JsonWriter& out) {
    out.beginArray();
    for (const double number : {0.0, 1.5, 1700000000.0, -0.1, 1e16, 1e17, 1e-5, 1.25e-6, 5e-324}) {
      out.value(number);
    }
    out.value(U8{7});
    out.value(true);
    out.null();
    out.beginArray();
    out.endArray();
    out.beginObject();
    out.member("no", false);
    out.endObject();
    out.endArray();
  };
  std::string pieces;
  const auto take = [&](std::string_view piece) { pieces += piece; };
  const std::string numbers = "0,1.5,1700000000,-0.1,10000000000000000,1e+17,0.00001,1.25e-06,5e-324,7";
  JsonWriter oneLine(take, Layout::oneLine);
  for (int i = 0; i < 2; ++i) writtenTo(oneLine);
  const std::string line = "[" + numbers + ",true,null,[],{\"no\":false}]\n";
  EXPECT_EQ(pieces, line + line);
  std::string lines;
  JsonWriter indented(lines, Layout::indented);
  writtenTo(indented);
  EXPECT_EQ(lines, "[\n  " + std::regex_replace(numbers, std::regex(","), ",\n  ") +
                       ",\n  true,\n  null,\n  [],\n  {\n    \"no\": false\n  }\n]\n");
}

}  // namespace

}  // namespace loamtest
