#include "loamshow/json/JsonFailure.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "loamshow/text/InputError.h"

namespace loamshow {

namespace {

using Json = nlohmann::json;

/// Receives the events of a parser. Keeps the path of the last value, and the first error.
class Follower {
 public:
  const std::string& problem() const { return problem_; }
  std::size_t problemPosition() const { return position_; }

  std::string path() const {
    std::string path;
    const std::size_t open = scopes_.size() - (justOpened_ ? 1 : 0);
    for (std::size_t i = 0; i < open; ++i) {
      path += '/';
      if (scopes_[i].isArray) path += std::to_string(scopes_[i].count - 1);
      for (const char c : scopes_[i].key) {
        if (c == '~') path += "~0";
        if (c == '/') path += "~1";
        if (c != '~' && c != '/') path += c;
      }
    }
    return path;
  }

  bool null() { return scalar(); }
  bool boolean(bool /*value*/) { return scalar(); }
  bool number_unsigned(Json::number_unsigned_t /*value*/) { return scalar(); }
  bool number_integer(Json::number_integer_t /*value*/) { return scalar(); }
  bool number_float(Json::number_float_t /*value*/, const Json::string_t& /*text*/) { return scalar(); }
  bool string(const Json::string_t& /*text*/) { return scalar(); }
  bool binary(const Json::binary_t& /*bytes*/) { return scalar(); }
  bool start_object(std::size_t /*size*/) { return open(false); }
  bool start_array(std::size_t /*size*/) { return open(true); }
  bool end_object() { return close(); }
  bool end_array() { return close(); }
  bool key(const Json::string_t& text) {
    scopes_.back().key = text;
    justOpened_ = false;
    return true;
  }
  bool parse_error(std::size_t position, const std::string& /*token*/, const Json::exception& error) {
    // A number that is too large is an error of its value, but still a value in the path.
    if (dynamic_cast<const Json::parse_error*>(&error) == nullptr) {
      scalar();
      return false;
    }
    // "[json.exception...] parse error at line 1, column 2: ...": the part in brackets is omitted.
    const std::string_view text = error.what();
    problem_ = printable(text.substr(std::min(text.find("] "), text.size() - 2) + 2));
    position_ = position;
    return false;
  }

 private:
  struct Scope {
    bool isArray;
    std::size_t count = 0;  // elements so far
    std::string key = {};
  };

  bool scalar() {
    if (!scopes_.empty()) ++scopes_.back().count;
    justOpened_ = false;
    return true;
  }
  bool open(bool isArray) {
    scalar();
    scopes_.push_back({isArray});
    return justOpened_ = true;
  }
  bool close() {
    scopes_.pop_back();
    justOpened_ = false;
    return true;
  }

  std::vector<Scope> scopes_;
  bool justOpened_ = false;
  std::string problem_;
  std::size_t position_ = 0;
};

Follower follow(std::string_view text) {
  Follower follower;
  static_cast<void>(Json::sax_parse(text, &follower));
  return follower;
}

}  // namespace

std::string syntaxProblem(std::string_view text, std::size_t size) {
  if (text.empty()) return "the file is empty";
  if (text.starts_with("\xef\xbb\xbf")) return "a byte-order mark where JSON was expected";
  const Follower follower = follow(text);
  const bool isWrong = !follower.problem().empty();
  // The parser treats a NUL as the end of the text.
  const std::size_t nul = text.find('\0');
  const bool isNulFirst = nul <= size && (!isWrong || follower.problemPosition() > nul);
  if (isNulFirst) return "a NUL byte where JSON was expected";
  // The position is that of the last character read, which may be the one after the wrong token.
  return isWrong && follower.problemPosition() <= size + 1 ? follower.problem() : "";
}

std::string pathOfLast(std::string_view beginning) {
  return printable(follow(beginning).path());
}

}  // namespace loamshow
