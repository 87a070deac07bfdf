#include "loamshow/json/JsonReader.h"

#include <simdjson.h>

#include <bit>
#include <charconv>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "loamshow/json/JsonFailure.h"
#include "loamshow/text/NearMiss.h"

namespace loamshow {

namespace {

namespace ondemand = simdjson::ondemand;

template <class Parsed>
JsonPlace placeOf(const Parsed& parsed) {
  return std::bit_cast<JsonPlace>(parsed);
}

template <class Parsed>
Parsed at(const JsonPlace& place) {
  return std::bit_cast<Parsed>(place);
}

/// The first token of a value, without the white space after it.
std::string_view tokenOf(const JsonPlace& place) {
  const std::string_view token = at<ondemand::value>(place).raw_json_token();
  return token.substr(0, token.find_last_not_of(" \t\r\n") + 1);
}

bool isNumber(std::string_view token) {
  return !token.empty() && (token.front() == '-' || (token.front() >= '0' && token.front() <= '9'));
}

std::string integerRange(U64 lowest, U64 highest) {
  return "expected an integer from " + std::to_string(lowest) + " to " + std::to_string(highest);
}

}  // namespace

struct JsonReader::Parser {
  ondemand::parser parser;
  ondemand::document document;
};

JsonReader::JsonReader(std::string name, JsonText text)
    : name_(std::move(name)), text_(std::move(text)), parser_(std::make_unique<Parser>()) {
  const std::string_view view = text_.view();
  const auto failed = parser_->parser.iterate(view.data(), view.size(), view.size() + JsonText::padding)
                          .get(parser_->document);
  if (failed != simdjson::SUCCESS) failSyntax();
}

JsonReader::~JsonReader() = default;

JsonValue JsonReader::root() {
  ondemand::value root;
  const simdjson::error_code failed = parser_->document.get_value().get(root);
  if (failed == simdjson::SCALAR_DOCUMENT_AS_VALUE) fail(text_.view(), "expected an object");
  if (failed != simdjson::SUCCESS) failSyntax();
  return {*this, placeOf(root)};
}

void JsonReader::finish() {
  if (parser_->document.current_location().error() != simdjson::OUT_OF_BOUNDS) failSyntax();
}

void JsonReader::failSyntax() const {
  const std::string problem = syntaxProblem(text_.view(), text_.view().size());
  throw InputError(name_ + ": " + (problem.empty() ? "malformed JSON" : problem));
}

void JsonReader::fail(std::string_view token, std::string_view problem) const {
  // A value of a wrong type may also be invalid JSON.
  const std::string_view text = text_.view();
  const std::size_t end = static_cast<std::size_t>(token.data() - text.data()) + token.size();
  const std::string syntax = syntaxProblem(text, end);
  if (!syntax.empty()) throw InputError(name_ + ": " + syntax);
  const std::string path = pathOfLast(text.substr(0, end));
  throw InputError(name_ + ": " + path + (path.empty() ? "" : ": ") + std::string(problem));
}

bool JsonValue::isNull() const {
  bool isNull = false;
  return at<ondemand::value>(place_).is_null().get(isNull) == simdjson::SUCCESS && isNull;
}

bool JsonValue::boolean() const {
  bool truth = false;
  if (at<ondemand::value>(place_).get_bool().get(truth) != simdjson::SUCCESS) fail("expected true or false");
  return truth;
}

U64 JsonValue::integer(U64 lowest, U64 highest) const {
  auto value = at<ondemand::value>(place_);
  U64 number = 0;
  if (value.get_uint64().get(number) != simdjson::SUCCESS) {
    const std::string_view token = tokenOf(place_);
    if (!isNumber(token)) fail("expected a number");
    std::int64_t zero = 0;
    const bool isMinusZero = value.get_int64().get(zero) == simdjson::SUCCESS && zero == 0;
    if (!isMinusZero) fail(integerRange(lowest, highest));
  }
  if (number < lowest || number > highest) fail(integerRange(lowest, highest));
  return number;
}

double JsonValue::real() const {
  double number = 0;
  if (at<ondemand::value>(place_).get_double().get(number) != simdjson::SUCCESS) {
    const std::string_view token = tokenOf(place_);
    if (!isNumber(token)) fail("expected a number");
    fail("number overflow parsing '" + printable(token) + "'");
  }
  return number;
}

std::string_view JsonValue::text() const {
  auto value = at<ondemand::value>(place_);
  const std::string_view token = tokenOf(place_);
  std::string_view text;
  if (token.find('\\') != std::string_view::npos) {
    if (value.get_string().get(text) != simdjson::SUCCESS) fail("expected a string");
    return text;
  }
  ondemand::raw_json_string raw;
  if (value.get_raw_json_string().get(raw) != simdjson::SUCCESS) fail("expected a string");
  return token.substr(1, token.size() - 2);
}

void JsonValue::integers(std::span<U64> numbers, std::string_view otherwise) const {
  ondemand::array array;
  if (at<ondemand::value>(place_).get_array().get(array) != simdjson::SUCCESS) fail("expected an array");
  std::size_t size = 0;
  for (auto element : array) {
    ondemand::value value;
    if (element.get(value) != simdjson::SUCCESS) reader_->failSyntax();
    if (size == numbers.size()) fail(otherwise);
    U64& number = numbers[size++];
    if (value.get_uint64().get(number) != simdjson::SUCCESS) {
      number = JsonValue(*reader_, placeOf(value)).integer(0, std::numeric_limits<U64>::max());
    }
  }
  if (size != numbers.size()) fail(otherwise);
}

void JsonValue::members(std::span<const std::string_view> names, std::span<U64> numbers) const {
  ondemand::object object;
  if (at<ondemand::value>(place_).get_object().get(object) != simdjson::SUCCESS) fail("expected an object");
  for (std::size_t i = 0; i < names.size(); ++i) {
    ondemand::value value;
    const simdjson::error_code failed = object.find_field(names[i]).get(value);
    if (failed == simdjson::NO_SUCH_FIELD) return;
    if (failed != simdjson::SUCCESS) reader_->failSyntax();
    if (value.get_uint64().get(numbers[i]) != simdjson::SUCCESS) {
      numbers[i] = JsonValue(*reader_, placeOf(value)).integer(0, std::numeric_limits<U64>::max());
    }
  }
}

void JsonValue::fail(std::string_view problem) const {
  reader_->fail(tokenOf(place_), problem);
}

JsonMembers::JsonMembers(JsonValue object) : reader_(object.reader_), iterator_(), value_() {
  ondemand::object members;
  if (at<ondemand::value>(object.place_).get_object().get(members) != simdjson::SUCCESS) {
    object.fail("expected an object");
  }
  iterator_ = placeOf(members.begin().value_unsafe());
}

bool JsonMembers::next() {
  auto iterator = at<ondemand::object_iterator>(iterator_);
  if (std::exchange(started_, true)) ++iterator;
  iterator_ = placeOf(iterator);
  asked_ = 0;
  if (iterator == ondemand::object_iterator()) return false;
  ondemand::field field;
  if ((*iterator).get(field) != simdjson::SUCCESS) reader_->failSyntax();
  value_ = placeOf(field.value());
  // The key ends at its closing quote, which the first pass over the text has found, unless an escape comes
  // first.
  const char* const key = field.key().raw();
  const char* end = key;
  while (*end != '"' && *end != '\\') ++end;
  if (*end == '"') {
    key_ = {key, end};
  } else if (field.unescaped_key().get(key_) != simdjson::SUCCESS) {
    reader_->failSyntax();
  }
  return true;
}

U64 JsonMembers::keyInteger(U64 lowest, U64 highest) const {
  U64 number = 0;
  const auto [end, failed] = std::from_chars(key_.data(), key_.data() + key_.size(), number);
  const bool isRead = failed == std::errc() && end == key_.data() + key_.size();
  const bool hasLeadingZero = key_.size() > 1 && key_.front() == '0';
  if (!isRead || hasLeadingZero || number < lowest || number > highest) {
    value().fail("expected a key from " + std::to_string(lowest) + " to " + std::to_string(highest));
  }
  return number;
}

void JsonMembers::unknown() const {
  const std::vector<std::string_view> known(names_.begin(), names_.begin() + asked_);
  value().fail("unknown member" + nearMiss(key_, known));
}

JsonElements::JsonElements(JsonValue array) : reader_(array.reader_), iterator_(), value_() {
  ondemand::array elements;
  if (at<ondemand::value>(array.place_).get_array().get(elements) != simdjson::SUCCESS) {
    array.fail("expected an array");
  }
  iterator_ = placeOf(elements.begin().value_unsafe());
}

bool JsonElements::next() {
  auto iterator = at<ondemand::array_iterator>(iterator_);
  if (std::exchange(started_, true)) ++iterator;
  iterator_ = placeOf(iterator);
  if (iterator == ondemand::array_iterator()) return false;
  ondemand::value value;
  if ((*iterator).get(value) != simdjson::SUCCESS) reader_->failSyntax();
  value_ = placeOf(value);
  return true;
}

}  // namespace loamshow
