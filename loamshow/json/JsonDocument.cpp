#include "loamshow/json/JsonDocument.h"

#include <charconv>
#include <limits>
#include <nlohmann/json.hpp>

namespace loamshow {

/// Takes the parser's events and lays the document out.
class JsonBuilder {
 public:
  using Json = nlohmann::json;
  using Kind = JsonDocument::Kind;

  explicit JsonBuilder(JsonDocument& document) : document_(document) {}

  const std::string& error() const { return error_; }

  bool null() {
    add(Kind::null);
    return true;
  }
  bool boolean(bool value) {
    add(Kind::boolean).count = value ? 1 : 0;
    return true;
  }
  bool number_unsigned(Json::number_unsigned_t value) {
    add(Kind::count).count = value;
    return true;
  }
  bool number_integer(Json::number_integer_t value) {
    // The parser hands on as signed what has a minus sign, -0 included.
    JsonDocument::Node& node = add(value == 0 ? Kind::count : Kind::negative);
    if (value != 0) node.real = static_cast<double>(value);
    return true;
  }
  bool number_float(Json::number_float_t value, const Json::string_t& /*text*/) {
    add(Kind::real).real = value;
    return true;
  }
  bool string(const Json::string_t& text) {
    JsonDocument::Node& node = add(Kind::text);
    node.textBegin = document_.texts_.size();
    node.count = text.size();
    document_.texts_ += text;
    return true;
  }
  static bool binary(const Json::binary_t& /*bytes*/) { return false; }
  bool start_object(std::size_t /*size*/) { return open(Kind::object); }
  bool end_object() { return close(); }
  bool start_array(std::size_t /*size*/) { return open(Kind::array); }
  bool end_array() { return close(); }
  bool key(const Json::string_t& text) {
    if (text.size() > std::numeric_limits<U32>::max()) {
      error_ = "a member's name of more than 4 GiB";
      return false;
    }
    keyBegin_ = document_.texts_.size();
    keySize_ = static_cast<U32>(text.size());
    document_.texts_ += text;
    return true;
  }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const Json::exception& error) {
    // "[json.exception...] parse error at line 1, column 2: ...": the part in brackets is the parser's own.
    const std::string_view text = error.what();
    error_ = text.substr(std::min(text.find("] "), text.size() - 2) + 2);
    // What is not JSON has a place in the text. A number beyond all numbers has a place in the document only.
    const bool isSyntax = dynamic_cast<const Json::parse_error*>(&error) != nullptr;
    if (!isSyntax) error_ = pathOfNext() + ": " + error_;
    return false;
  }

 private:
  JsonDocument::Node& add(Kind kind) {
    JsonDocument::Node& node = document_.nodes_.emplace_back();
    node.kind = kind;
    node.keyBegin = keyBegin_;
    node.keySize = keySize_;
    node.end = document_.nodes_.size();
    keySize_ = 0;
    return node;
  }
  /// The path that the next value would have.
  std::string pathOfNext() {
    add(Kind::null);
    for (const std::size_t index : open_) document_.nodes_[index].end = document_.nodes_.size();
    return document_.path(document_.nodes_.size() - 1);
  }
  bool open(Kind kind) {
    open_.push_back(document_.nodes_.size());
    add(kind);
    return true;
  }
  bool close() {
    document_.nodes_[open_.back()].end = document_.nodes_.size();
    open_.pop_back();
    return true;
  }

  JsonDocument& document_;
  std::vector<std::size_t> open_;
  std::size_t keyBegin_ = 0;
  U32 keySize_ = 0;
  std::string error_;
};

JsonDocument::JsonDocument(std::string name, std::string_view text) : name_(std::move(name)) {
  // The parser takes a NUL for the end of the text.
  if (text.empty() || text.find('\0') != std::string_view::npos) {
    throw InputError(name_ + ": " +
                     (text.empty() ? "the file is empty" : "a NUL byte where JSON was expected"));
  }
  JsonBuilder builder(*this);
  if (!nlohmann::json::sax_parse(text, &builder)) throw InputError(name_ + ": " + printable(builder.error()));
}

JsonValue JsonDocument::root() const {
  return {*this, 0};
}

// The path from the root, as a JSON pointer: "/" and "~" within a key are "~1" and "~0".
std::string JsonDocument::path(std::size_t index) const {
  std::string path;
  for (std::size_t at = 0; at != index;) {
    std::size_t child = at + 1;
    std::size_t position = 0;
    while (nodes_[child].end <= index) {
      child = nodes_[child].end;
      ++position;
    }
    path += '/';
    if (nodes_[at].kind == Kind::array) {
      path += std::to_string(position);
    } else {
      for (const char c : key(nodes_[child])) {
        if (c == '~') path += "~0";
        if (c == '/') path += "~1";
        if (c != '~' && c != '/') path += c;
      }
    }
    at = child;
  }
  return path;
}

std::string_view JsonValue::key() const {
  return document_->key(node());
}

bool JsonValue::isNull() const {
  return node().kind == JsonDocument::Kind::null;
}

bool JsonValue::boolean() const {
  expect(JsonDocument::Kind::boolean, "true or false");
  return node().count != 0;
}

U64 JsonValue::integer(U64 lowest, U64 highest) const {
  using Kind = JsonDocument::Kind;
  const bool isNumber =
      node().kind == Kind::count || node().kind == Kind::negative || node().kind == Kind::real;
  if (!isNumber) fail("expected a number");
  if (node().kind != Kind::count || node().count < lowest || node().count > highest) {
    fail("expected an integer from " + std::to_string(lowest) + " to " + std::to_string(highest));
  }
  return node().count;
}

double JsonValue::real() const {
  using Kind = JsonDocument::Kind;
  if (node().kind == Kind::count) return static_cast<double>(node().count);
  if (node().kind != Kind::negative) expect(Kind::real, "a number");
  return node().real;
}

std::string_view JsonValue::text() const {
  expect(JsonDocument::Kind::text, "a string");
  return std::string_view(document_->texts_).substr(node().textBegin, node().count);
}

U64 JsonValue::keyInteger(U64 lowest, U64 highest) const {
  const std::string_view digits = key();
  U64 value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
  const bool hasLeadingZero = digits.size() > 1 && digits.front() == '0';
  if (!isNumber || hasLeadingZero || value < lowest || value > highest) {
    fail("expected a key from " + std::to_string(lowest) + " to " + std::to_string(highest));
  }
  return value;
}

JsonValue::Range JsonValue::members() const {
  expect(JsonDocument::Kind::object, "an object");
  return {{*document_, index_ + 1}, {*document_, node().end}};
}

JsonValue::Range JsonValue::elements() const {
  expect(JsonDocument::Kind::array, "an array");
  return {{*document_, index_ + 1}, {*document_, node().end}};
}

void JsonValue::fail(std::string_view problem) const {
  const std::string path = document_->path(index_);
  throw InputError(document_->name_ + ": " + (path.empty() ? "" : printable(path) + ": ") +
                   std::string(problem));
}

void JsonValue::expect(JsonDocument::Kind kind, std::string_view what) const {
  if (node().kind != kind) fail("expected " + std::string(what));
}

JsonValue::Range::Iterator& JsonValue::Range::Iterator::operator++() {
  index_ = document_->nodes_[index_].end;
  return *this;
}

JsonMembers::JsonMembers(JsonValue object) : at_(object.members().begin()), end_(object.members().end()) {
}

bool JsonMembers::next() {
  if (started_) ++at_;
  started_ = true;
  asked_ = 1;
  return !(at_ == end_);
}

bool JsonMembers::is(std::string_view name) {
  const U64 bit = asked_;
  asked_ <<= 1U;
  if ((*at_).key() != name) return false;
  if ((seen_ & bit) != 0) value().fail("repeated member");
  seen_ |= bit;
  return true;
}

void JsonMembers::unknown() const {
  value().fail("unknown member");
}

}  // namespace loamshow
