// JSON of any structure and any names, read back by another library.

#include <nlohmann/json.hpp>
#include <vector>

#include "fuzz/Collector.h"
#include "fuzz/Fuzz.h"

namespace {

using Json = nlohmann::ordered_json;

/// The text as the other library would write and read it.
std::string received(const std::string& text) {
  return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace)).get<std::string>();
}

/// Prints a document while it builds the same one in memory.
class Document {
 public:
  explicit Document(loamfuzz::Input& input) : input_(input) {
    printer_.start();
    fill(expected_, false);
    printer_.end();
    printer_.ioflush();
  }
  bool isAsExpected() const { return Json::parse(printer_.text) == expected_; }

 private:
  /// Fills the object that is open, a dictionary or another one, until the input ends it.
  void fill(Json& object, bool isDict) {
    object = Json::object();
    for (++depth_; !input_.atEnd();) {
      // A key is there once: with its number in front it is.
      const std::string key = std::to_string(keys_++) + input_.text(40);
      Json& member = object[received(key)];
      const U64 kind = isDict ? 4 : input_.number(5);
      if (kind < 2 || depth_ == 20) {
        if (isDict) object.erase(received(key));
        if (!isDict) addValue(key, kind == 0, member);
      } else if (isDict) {
        tabula::StringAttrInfo name("", printer_);
        name.setValue(key);
        printer_.startDictEntry(name);
        fill(member, false);
        printer_.endDictEntry();
      } else if (kind == 2) {
        printer_.startSubmodel(key);
        fill(member, false);
        printer_.endSubmodel();
      } else {
        printer_.startDict(key);
        fill(member, true);
        printer_.endDict();
      }
      if (input_.flag()) break;
    }
    --depth_;
  }
  void addValue(const std::string& key, bool isText, Json& member) {
    if (isText) {
      const std::string text = input_.text(100);
      tabula::StringAttrInfo info(key, printer_);
      info.setValue(text);
      printer_.addArgs<"%s">(info.getArg());
      member = received(text);
    } else {
      const U64 number = ~input_.number(~U64{0});
      tabula::Attr64Info info(key, printer_);
      info.setValue(number);
      printer_.addArgs<"%llu">(info.getArg());
      member = number;
    }
  }

  loamfuzz::Input& input_;
  loamfuzz::Collector printer_{tabula::formatJson};
  Json expected_;
  int depth_ = 0;
  int keys_ = 0;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  loamfuzz::Input input(data, size);
  loamfuzz::require(Document(input).isAsExpected());
  return 0;
}
