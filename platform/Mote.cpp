#include "platform/Mote.h"

namespace Mote {

namespace {

template <class Convert>
String converted(std::string_view text, Convert convert) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), convert);
  return out;
}

}  // namespace

String String::lowerCase() const {
  return converted(text_, [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
}

String String::upperCase() const {
  return converted(text_, [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
}

Node::~Node() = default;

void Node::lastUserGone() const {
  delete this;
}

const Node* Node::publisher() const {
  return this;
}

const Vane::TypeData* Node::typeData() const {
  return nullptr;
}

}  // namespace Mote
