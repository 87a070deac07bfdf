#include "platform/tabula/Renderer.h"

namespace tabula {

Renderer::Renderer(U32 format)
    : json_(format == formatJson),
      knownFormat_(format == formatText || format == formatJson),
      buffer_(std::make_unique_for_overwrite<char[]>(capacity)),
      at_(buffer_.get()),
      end_(buffer_.get() + capacity) {
}

Renderer::~Renderer() = default;

void Renderer::start() {
  checkInterrupt();
  if (!json_) return;
  const bool startedOnce = depth_ == 0 && !complete_;
  VANE_ASSERT(startedOnce);
  open(Scope::model);
}

void Renderer::end() {
  checkInterrupt();
  if (!json_) return;
  close(Scope::model);
  put("\n");
  complete_ = true;
}

void Renderer::startSubmodel(std::string_view name) {
  checkInterrupt();
  if (!json_) return;
  putKey(name);
  open(Scope::submodel);
}

void Renderer::endSubmodel() {
  checkInterrupt();
  if (json_) close(Scope::submodel);
}

void Renderer::startDict(std::string_view name) {
  checkInterrupt();
  if (!json_) return;
  putKey(name);
  open(Scope::dict);
}

void Renderer::endDict() {
  checkInterrupt();
  if (json_) close(Scope::dict);
}

void Renderer::startDictEntry(const Attr32Info& key) {
  checkInterrupt();
  if (!json_) return;
  const bool insideDict = depth_ > 0 && scopes_[depth_ - 1] == Scope::dict;
  VANE_ASSERT(insideDict);
  putSeparator();
  put("\"");
  const Arg value = key.getArg();
  if (value.kind() == Arg::Kind::text) {
    putEscaped(value.text());
  } else {
    write<"%u">(value.number());
  }
  put("\":");
  open(Scope::entry);
}

void Renderer::endDictEntry() {
  checkInterrupt();
  if (json_) close(Scope::entry);
}

int Renderer::addFrills(const Format& format, std::span<const Arg> args) {
  checkInterrupt();
  if (json_) return 0;
  std::size_t next = 0;
  for (const Piece& piece : format.pieces()) {
    const bool argsFit =
        next + piece.args() <= args.size() &&
        (!piece.widthIsArg || args[next].kind() == Arg::Kind::unsignedNumber) &&
        (piece.conversion == 0 || detail::takes(piece.conversion, args[next + piece.args() - 1].kind()));
    VANE_ASSERT(argsFit);
    next += piece.args();
  }
  return writeAcross(format.text(), format.pieces(), args.data());
}

void Renderer::ioflush() {
  checkInterrupt();
  flushBuffer();
}

void Renderer::flushBuffer() {
  const std::string_view bytes(buffer_.get(), static_cast<std::size_t>(at_ - buffer_.get()));
  at_ = buffer_.get();
  if (!bytes.empty()) take(bytes);
}

void Renderer::throwInterrupt() {
  at_ = buffer_.get();
  interruptState.store(InterruptState::taken);
  throw SigIntException();
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
  std::array<char, mostDigits + 1> digits{};
  std::string_view text;
  if (piece.conversion == 's') {
    text = columnText(piece, value);
  } else {
    const Piece bare{.conversion = piece.conversion};
    text = {digits.data(),
            static_cast<std::size_t>(writePiece(digits.data(), {}, bare, &value) - digits.data())};
  }
  const std::size_t width = columnWidth(piece, args);
  const std::size_t blanks = width - std::min(width, text.size());
  if (!piece.left) putBlanks(blanks);
  put(text);
  if (piece.left) putBlanks(blanks);
  return piece.size + blanks + text.size();
}

void Renderer::addMember(const Arg& arg) {
  const bool isDescriptor = arg.attr() != nullptr;
  VANE_ASSERT(isDescriptor);
  const bool insideObject = depth_ > 0 && scopes_[depth_ - 1] != Scope::dict;
  VANE_ASSERT(insideObject);
  putSeparator();
  put(arg.attr()->jsonKey());
  if (arg.kind() == Arg::Kind::text) {
    put("\"");
    putEscaped(arg.text());
    put("\"");
  } else {
    write<"%u">(arg.number());
  }
  separate_ = true;
}

void Renderer::open(Scope scope) {
  const bool notTooDeep = depth_ < deepest;
  VANE_ASSERT(notTooDeep);
  scopes_[depth_++] = scope;
  put("{");
  separate_ = false;
}

void Renderer::close(Scope scope) {
  const bool closesInnermost = depth_ > 0 && scopes_[depth_ - 1] == scope;
  VANE_ASSERT(closesInnermost);
  --depth_;
  put("}");
  separate_ = true;
}

void Renderer::putKey(std::string_view key) {
  const bool insideObject = depth_ > 0 && scopes_[depth_ - 1] != Scope::dict;
  VANE_ASSERT(insideObject);
  putSeparator();
  put("\"");
  putEscaped(key);
  put("\":");
}

void Renderer::putSeparator() {
  if (separate_) put(",");
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

void Renderer::putEscaped(std::string_view text) {
  escaped_.clear();
  appendEscaped(escaped_, text);
  put(escaped_);
}

}  // namespace tabula
