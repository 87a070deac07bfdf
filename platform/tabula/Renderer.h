#pragma once

// The renderer: text or JSON from one sequence of calls, in a buffer.

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Mote.h"
#include "platform/tabula/Attributes.h"
#include "platform/tabula/Format.h"
#include "platform/tabula/Interrupt.h"

namespace tabula {

/// Renders the output of one operation into a buffer of fixed size: the table in text, the model in JSON,
/// from the same calls. The JSON calls nest strictly; a violation (an entry outside a dictionary, a scope
/// closed out of order, a value outside an object) is a fatal assertion. In text they write nothing. Every
/// call may throw SigIntException.
class Renderer : public Mote::Node {
 public:
  ~Renderer() override;

  /// Begins and ends the JSON model.
  void start();
  void end();
  /// An object under `name`.
  void startSubmodel(std::string_view name) {
    if (json_) openUnder(name, Scope::submodel);
  }
  void endSubmodel() {
    if (json_) close(Scope::submodel);
  }
  /// An object under `name` whose members are dictionary entries.
  void startDict(std::string_view name) {
    if (json_) openUnder(name, Scope::dict);
  }
  void endDict() {
    if (json_) close(Scope::dict);
  }
  /// A member of the current dictionary, an object under the descriptor's value.
  void startDictEntry(const Attr32Info& key) {
    if (json_) openEntry(key);
  }
  void endDictEntry() {
    if (json_) close(Scope::entry);
  }

  /// Writes text as printf does, in the text format only. Returns the number of characters written.
  template <FixedString format, class... Args>
  requires FormatOf<format, Args...>
  int addFrills(const Args&... args) {
    checkInterrupt();
    return json_ ? 0 : write<format>(args...);
  }

  /// Text: as addFrills. JSON: each descriptor's value becomes a member of the current object, under its key.
  template <FixedString format, class... Args>
  requires FormatOf<format, Args...>
  void addArgs(const Args&... args) {
    checkInterrupt();
    if (json_) {
      addMembers(args...);
    } else {
      write<format>(args...);
    }
  }

  /// Passes the buffered output on.
  void ioflush();

  /// Throws SigIntException if an interrupt is pending, and discards the buffered output, because writing it
  /// could block forever. For the steps of a walk that write nothing; every other call does the same.
  void checkInterrupt() {
    if (interruptPending()) [[unlikely]] {
      throwInterrupt();
    }
  }

  bool knownFormat() const noexcept { return knownFormat_; }

 protected:
  explicit Renderer(U32 format);

  /// Takes the buffered bytes, which are then removed from the buffer even if this throws.
  virtual void take(std::string_view bytes) = 0;
  void flushBuffer();
  /// Aborts if a scope of the model is open.
  void checkClosed() const;

 private:
  enum class Scope : U8 { model, submodel, dict, entry };

  static constexpr std::size_t capacity = std::size_t{64} * 1024;
  static constexpr std::size_t deepest = 32;

  template <FixedString format, class... Args>
  int write(const Args&... values) {
    using L = Layout<format>;
    return writeLayout<L>(std::make_index_sequence<L::pieces.size()>(), values...);
  }

  template <class L, std::size_t... piece, class... Args>
  [[gnu::always_inline]] int writeLayout(std::index_sequence<piece...>, const Args&... values) {
    const std::array<Arg, sizeof...(Args)> args{Arg(values)...};
    const std::size_t bound =
        (std::size_t{0} + ... + pieceBound(L::pieces[piece], args.data() + L::firstArg(piece)));
    if (bound > room()) [[unlikely]] {
      return writeLayoutAcross<L>(values...);
    }
    char* at = at_;
    ((at = writePiece(at, L::text, L::pieces[piece], args.data() + L::firstArg(piece))), ...);
    const auto size = static_cast<int>(at - at_);
    at_ = at;
    return size;
  }

  // Creates its own arguments, so that those of the caller stay in registers.
  template <class L, class... Args>
  [[gnu::noinline, gnu::cold]] int writeLayoutAcross(const Args&... values) {
    const std::array<Arg, sizeof...(Args)> args{Arg(values)...};
    return writeAcross(L::text, L::pieces, args.data());
  }

  /// Writes piece by piece what does not fit into the buffer at once.
  int writeAcross(std::string_view format, std::span<const Piece> pieces, const Arg* args);
  /// A piece wider than the whole buffer: writes its literal, its blanks and its value separately.
  std::size_t putWide(std::string_view format, const Piece& piece, const Arg* args);

  [[noreturn]] void throwInterrupt();
  /// A member of a JSON object that is a number.
  struct NumberMember {
    const AttrInfo* attr;
    U64 number;
  };
  template <class... Args>
  void addMembers(const Args&... args) {
    if constexpr ((std::is_same_v<Args, NumberArg> && ...)) {
      const std::array<NumberMember, sizeof...(Args)> members{NumberMember{args.attr(), args.number()}...};
      addNumbers(members);
    } else {
      (addMember(args), ...);
    }
  }
  void addNumbers(std::span<const NumberMember> members);
  void addMember(const Arg& arg);
  void openUnder(std::string_view name, Scope scope);
  /// Opens an object as a member of the current one.
  void openNamed(std::string_view name, Scope scope);
  void openEntry(const Attr32Info& key);
  void close(Scope scope);
  void checkInsideObject() const;
  void put(std::string_view text);
  void put(char c) {
    ensureRoom(1);
    *at_++ = c;
  }
  void putBlanks(std::size_t count);
  /// A text as a JSON string, with its quotes.
  void putString(std::string_view text);
  void ensureRoom(std::size_t size) {
    if (size > room()) [[unlikely]] {
      flushBuffer();
    }
  }
  std::size_t room() const noexcept { return static_cast<std::size_t>(end_ - at_); }

  const bool json_;
  const bool knownFormat_;
  const std::unique_ptr<char[]> buffer_;
  char* at_;
  char* const end_;

  std::array<Scope, deepest> scopes_{};
  std::size_t depth_ = 0;
  bool separate_ = false;  // the next member needs a comma
  bool complete_ = false;
  std::string escaped_;  // a member to keep its capacity
};

}  // namespace tabula
