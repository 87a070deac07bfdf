#include "platform/tabula/Renderer.h"

namespace tabula {

namespace {

/// Not 0 if one of eight bytes needs escaping or checking in a JSON string: anything but printable ASCII
/// without quotes and backslashes.
U64 specialBytes(U64 word) {
  constexpr U64 ones = 0x0101010101010101;
  const auto zeroByte = [](U64 bytes) { return (bytes - ones) & ~bytes; };
  const U64 found =
      word | zeroByte(word ^ ('"' * ones)) | zeroByte(word ^ ('\\' * ones)) | ((word - ' ' * ones) & ~word);
  return found & (0x80 * ones);
}

template <class Word>
U64 loadWord(const char* at) {
  Word word = 0;
  std::memcpy(&word, at, sizeof word);
  return word;
}

/// Whether a text needs no escaping in a JSON string. Reads some bytes twice, but none outside the text.
bool isPlain(const char* text, std::size_t size) {
  const auto byte = [&](std::size_t i) { return U64{static_cast<unsigned char>(text[i])}; };
  if (size >= 8) {
    U64 special = specialBytes(loadWord<U64>(text + size - 8));
    for (std::size_t done = 0; done + 8 < size; done += 8) {
      special |= specialBytes(loadWord<U64>(text + done));
    }
    return special == 0;
  }
  if (size >= 4) return specialBytes(loadWord<U32>(text) | (loadWord<U32>(text + size - 4) << 32U)) == 0;
  if (size == 0) return true;
  constexpr U64 blanksAbove = 0x2020202020'000000;
  return specialBytes(byte(0) | (byte(size / 2) << 8U) | (byte(size - 1) << 16U) | blanksAbove) == 0;
}

/// A member's key. It begins with a comma, which is left out for the first member.
std::string_view keyOf(const AttrInfo& attr, bool separate) {
  return attr.jsonKey().substr(separate ? 0 : 1);
}

/// Writes a member, its number first: writeNumber overwrites bytes before it, where the key goes.
char* writeMember(char* at, std::string_view key, U64 number) {
  if (key.size() >= writeSlack) [[likely]] {
    char* const end = writeNumber(at + key.size(), number);
    copyShort(at, key.data(), key.size());
    return end;
  }
  const NumberText text{Arg(number)};
  copyShort(at, key.data(), key.size());
  copyShort(at + key.size(), text.view().data(), text.view().size());
  return at + key.size() + text.view().size();
}

}  // namespace

Renderer::Renderer(U32 format)
    : json_(format == formatJson),
      knownFormat_(format == formatText || format == formatJson),
      buffer_(std::make_unique_for_overwrite<char[]>(capacity + writeSlack)),
      at_(buffer_.get()),
      end_(buffer_.get() + capacity) {
}

Renderer::~Renderer() = default;

void Renderer::start() {
  checkInterrupt();
  if (!json_) return;
  const bool startedOnce = depth_ == 0 && !complete_;
  VANE_ASSERT(startedOnce);
  put('{');
  scopes_[depth_++] = Scope::model;
}

void Renderer::end() {
  if (!json_) return;
  close(Scope::model);
  put('\n');
  complete_ = true;
}

void Renderer::ioflush() {
  checkInterrupt();
  flushBuffer();
}

void Renderer::checkClosed() const {
  const bool everyScopeClosed = depth_ == 0;
  VANE_ASSERT(everyScopeClosed);
}

void Renderer::flushBuffer() {
  const std::string_view bytes(buffer_.get(), static_cast<std::size_t>(at_ - buffer_.get()));
  at_ = buffer_.get();
  if (!bytes.empty()) take(bytes);
}

void Renderer::throwInterrupt() {
  at_ = buffer_.get();
  detail::raiseInterrupt();
}

int Renderer::writeAcross(std::string_view format, std::span<const Piece> pieces, const Arg* args) {
  std::size_t size = 0;
  for (const Piece& piece : pieces) {
    const std::size_t bound = pieceBound(piece, args);
    if (bound > room()) flushBuffer();
    if (bound <= room()) {
      char* const end = writePiece(at_, format, piece, args);
      size += static_cast<std::size_t>(end - at_);
      at_ = end;
    } else {
      size += putWide(format, piece, args);
    }
    args += piece.args();
  }
  return static_cast<int>(size);
}

std::size_t Renderer::putWide(std::string_view format, const Piece& piece, const Arg* args) {
  put(format.substr(piece.begin, piece.size));
  if (piece.conversion == 0) return piece.size;
  const Arg& value = args[piece.args() - 1];
  const NumberText number(value);
  const std::string_view text = piece.conversion == 's' ? columnText(piece, value) : number.view();
  const std::size_t width = columnWidth(piece, args);
  const std::size_t blanks = width - std::min(width, text.size());
  if (!piece.left) putBlanks(blanks);
  put(text);
  if (piece.left) putBlanks(blanks);
  return piece.size + blanks + text.size();
}

void Renderer::checkInsideObject() const {
  const bool insideObject = depth_ > 0 && scopes_[depth_ - 1] != Scope::dict;
  VANE_ASSERT(insideObject);
}

void Renderer::addNumbers(std::span<const NumberMember> members) {
  checkInsideObject();
  // Local copies of cursor and flag: the compiler must assume that a store of a character changes the
  // members.
  char* at = at_;
  bool separate = separate_;
  for (const NumberMember& member : members) {
    const std::size_t bound = member.attr->jsonKey().size() + mostDigits;
    if (bound > static_cast<std::size_t>(end_ - at)) [[unlikely]] {
      at_ = at;
      flushBuffer();
      at = at_;
      const bool fits = bound <= room();  // no key is longer than the buffer
      VANE_ASSERT(fits);
    }
    at = writeMember(at, keyOf(*member.attr, separate), member.number);
    separate = true;
  }
  at_ = at;
  separate_ = true;
}

void Renderer::addMember(const Arg& arg) {
  const bool isDescriptor = arg.attr() != nullptr;
  VANE_ASSERT(isDescriptor);
  if (arg.kind() == Arg::Kind::text) {
    checkInsideObject();
    put(keyOf(*arg.attr(), separate_));
    separate_ = true;
    putString(arg.text());
  } else {
    const NumberMember member{arg.attr(), arg.number()};
    addNumbers({&member, 1});
  }
}

void Renderer::openUnder(std::string_view name, Scope scope) {
  checkInterrupt();
  checkInsideObject();
  openNamed(name, scope);
}

void Renderer::openEntry(const Attr32Info& key) {
  checkInterrupt();
  const bool insideDict = depth_ > 0 && scopes_[depth_ - 1] == Scope::dict;
  VANE_ASSERT(insideDict);
  const Arg& value = key.word();
  if (value.kind() == Arg::Kind::text) {
    openNamed(value.text(), Scope::entry);
  } else {
    openNamed(NumberText(value).view(), Scope::entry);
  }
}

void Renderer::openNamed(std::string_view name, Scope scope) {
  constexpr std::size_t around = 5;  // ,"":{
  const bool notTooDeep = depth_ < deepest;
  VANE_ASSERT(notTooDeep);
  ensureRoom(name.size() + around);
  if (name.size() + around <= room() && isPlain(name.data(), name.size())) {
    char* at = at_;
    *at = ',';
    at += separate_ ? 1 : 0;
    *at++ = '"';
    copyShort(at, name.data(), name.size());
    at += name.size();
    *at++ = '"';
    *at++ = ':';
    *at++ = '{';
    at_ = at;
  } else {
    if (separate_) put(',');
    putString(name);
    put(':');
    put('{');
  }
  scopes_[depth_++] = scope;
  separate_ = false;
}

void Renderer::close(Scope scope) {
  checkInterrupt();
  const bool closesInnermost = depth_ > 0 && scopes_[depth_ - 1] == scope;
  VANE_ASSERT(closesInnermost);
  --depth_;
  put('}');
  separate_ = true;
}

void Renderer::put(std::string_view text) {
  while (text.size() > room()) {
    const std::string_view part = text.substr(0, room());
    std::memcpy(at_, part.data(), part.size());
    at_ += part.size();
    text.remove_prefix(part.size());
    flushBuffer();
  }
  std::memcpy(at_, text.data(), text.size());
  at_ += text.size();
}

void Renderer::putBlanks(std::size_t count) {
  while (count > 0) {
    if (room() == 0) flushBuffer();
    const std::size_t part = std::min(count, room());
    std::memset(at_, ' ', part);
    at_ += part;
    count -= part;
  }
}

void Renderer::putString(std::string_view text) {
  put('"');
  ensureRoom(text.size());
  if (text.size() <= room() && isPlain(text.data(), text.size())) {
    copyShort(at_, text.data(), text.size());
    at_ += text.size();
    put('"');
    return;
  }
  escaped_.clear();
  appendEscaped(escaped_, text);
  put(escaped_);
  put('"');
}

}  // namespace tabula
