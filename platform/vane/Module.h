#pragma once

// The registry of modules: descriptors of types and attributes, and the generic attribute interface.

#include <array>
#include <memory>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include "platform/Mote.h"
#include "platform/vane/Value.h"

namespace Vane {

// The op codes of the generic attribute interface.
enum class OpCode : U8 {
  read = 0,      // an attribute, or the item of a key
  write = 1,     // an attribute, a collection's item (key, value), or an instantiation from arguments
  del = 2,       // the item of a key, or an instantiated object; the removed one is the result
  count = 3,     // U32
  version = 4,   // U32
  contains = 5,  // bool
  front = 6,
  back = 7,
  enqueue = 8,
  dequeue = 9,  // takes no arguments
  call = 10,
};

enum class OpStatus : U8 { done = 0, opNotValid = 1, unknownAttribute = 2 };

/// Properties of an attribute, one bit each.
enum Flag : U16 {
  flagValue = 1,
  flagPointer = 2,
  flagReadOnly = 4,
  flagWritable = 8,
  flagCollection = 16,
  flagQueue = 32,
  flagInstantiating = 64,
  flagOperation = 128,
  flagConst = 256,
};

struct Parameter {
  std::string_view name;
  std::string_view type;
};

/// An operation's or constructor's parameters, in order.
struct Parameters {
  static constexpr std::size_t most = 10;

  std::array<Parameter, most> list{};
  std::size_t count = 0;

  constexpr std::span<const Parameter> all() const { return {list.data(), count}; }
};

/// The arguments of `owner`, an operation or a constructor, read as the types that it declares. A wrong
/// number or type throws InternalException, which names the owner and the argument.
class Arguments {
 public:
  Arguments(std::string_view owner, std::span<const Value> given) : owner_(owner), given_(given) {}

  bool empty() const noexcept { return given_.empty(); }

  template <class... T>
  std::tuple<T...> as() const {
    if (given_.size() != sizeof...(T)) throwCount(sizeof...(T));
    return read<T...>(std::index_sequence_for<T...>());
  }
  /// The only argument.
  template <class T>
  T one() const {
    return std::get<0>(as<T>());
  }

 private:
  template <class... T, std::size_t... index>
  std::tuple<T...> read(std::index_sequence<index...>) const {
    return std::tuple<T...>{readOne<T>(index)...};
  }
  template <class T>
  T readOne(std::size_t index) const {
    try {
      return given_[index].as<T>();
    } catch (const InternalException& mismatch) {
      throwMismatch(index, mismatch);
    }
  }
  [[noreturn]] void throwCount(std::size_t expected) const;
  [[noreturn]] void throwMismatch(std::size_t index, const InternalException& mismatch) const;

  std::string_view owner_;
  std::span<const Value> given_;
};

/// One request of the generic attribute interface: the key or the arguments, and the item for a collection's
/// write. The operation stores its result in `result`.
struct Request {
  OpCode op;
  Arguments arguments;
  const Value& value;
  Value& result;
};

/// A walk over one collection or queue, which may change during the walk.
class Cursor {
 public:
  Cursor() = default;
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;
  virtual ~Cursor() = default;

  /// Whether the walk is at an entry. It holds a copy, so key() and item() stay the same if the entry is
  /// changed or removed. Call the other functions for a valid cursor only.
  virtual bool valid() const = 0;
  /// The entry's key; an empty value in a queue.
  virtual Value key() const = 0;
  virtual Value item() const = 0;
  virtual void advance() = 0;
  /// Removes the entry from its collection; advance() continues the walk. Throws InternalException for a
  /// queue, of which only the front can be removed.
  virtual void del() = 0;
};

struct AttributeDescriptor {
  std::string_view name;
  U16 flags = 0;
  std::string_view type;  // of the value, the item, or an operation's result
  Parameters parameters;
  OpStatus (*op)(Mote::Node& object, const Request& request) = nullptr;
  std::unique_ptr<Cursor> (*cursor)(Mote::Node& object) = nullptr;  // collections and queues only
};

struct TypeDescriptor {
  std::string_view name;
  std::span<const std::string_view> values;  // an enumeration's names in numeric order, empty for an entity
  U32 firstNumber = 0;                       // of the first attribute; the others follow in order
  std::span<const AttributeDescriptor> attributes;
  Parameters constructor;
  Mote::Ptr<Mote::Node> (*construct)(const Arguments& arguments) = nullptr;

  bool isEnumeration() const { return construct == nullptr; }
  /// Creates an object. Throws InternalException for wrong arguments, and for an enumeration.
  Mote::Ptr<Mote::Node> instance(std::span<const Value> arguments) const;
  /// Null if the type has no attribute of that number or name.
  const AttributeDescriptor* attribute(U32 number) const;
  Optional<U32> numberOf(std::string_view attributeName) const;
};

struct ModuleDescriptor {
  std::string_view unit;
  std::string_view symbol;                 // name under which a library exports this descriptor
  std::span<const std::string_view> uses;  // modules whose types this one uses
  std::span<const TypeDescriptor> types;   // in index order
};

/// The registration of an entity's type.
struct TypeData {
  const ModuleDescriptor& module;
  U32 index;

  const TypeDescriptor& type() const { return module.types[index]; }
};

/// Adds a module to the registry, and removes it. The loader serializes loading and unloading of libraries.
void vaneModuleIs(const ModuleDescriptor& descriptor);
void vaneModuleDel(const ModuleDescriptor& descriptor);
/// The registered modules, in order of registration.
std::span<const ModuleDescriptor* const> modules();
/// A registered type by its full name, null if there is none.
const TypeDescriptor* findType(std::string_view name);

/// The only entry point to the attributes of a registered entity. Returns a status for an op code that is not
/// valid for the attribute, and for an unknown attribute number. Missing arguments or wrong types throw
/// InternalException. Exceptions of the operation reach the caller.
OpStatus genericIfAttributeOp(Mote::Node& object, Value& result, U32 attribute, U8 op,
                              std::span<const Value> arguments, const Value& value = {});
/// A walk over a collection or queue attribute of a registered entity; null if the number is not that of one.
std::unique_ptr<Cursor> genericIfCursor(Mote::Node& object, U32 attribute);

}  // namespace Vane
