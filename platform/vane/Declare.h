#pragma once

// Declares the types of a unit: one constant table per type, derived from its member functions. The generic
// attribute operation, construction from arguments, cursors and the registry's texts are derived from it.

#include <array>
#include <memory>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/vane/Collections.h"
#include "platform/vane/Module.h"

namespace Vane {

/// Base of a registered entity. The static `fwkType()` of `Self` returns its registration.
template <class Self>
class Entity : public Mote::Node {
 public:
  const TypeData* typeData() const override { return &Self::fwkType(); }
};

template <class Function>
struct Signature;

template <class R, class... A>
struct Signature<R (*)(A...)> {
  using Result = R;
  using Tuple = std::tuple<std::remove_cvref_t<A>...>;

  static auto read(const Arguments& arguments) { return arguments.as<std::remove_cvref_t<A>...>(); }
  template <class... Name>
  static constexpr Parameters parameters(Name... names) {
    static_assert(sizeof...(Name) == sizeof...(A), "a name for each parameter");
    static_assert(sizeof...(A) <= Parameters::most);
    return {{Parameter{names, typeName<std::remove_cvref_t<A>>}...}, sizeof...(A)};
  }
};

template <class C, class R, class... A>
struct Signature<R (C::*)(A...)> : Signature<R (*)(A...)> {
  using Owner = C;
  static constexpr bool isConst = false;
};

template <class C, class R, class... A>
struct Signature<R (C::*)(A...) const> : Signature<R (C::*)(A...)> {
  static constexpr bool isConst = true;
};

template <auto member>
using SignatureOf = Signature<decltype(member)>;
template <auto member>
using OwnerOf = typename SignatureOf<member>::Owner;
template <auto member>
using ResultOf = std::remove_cvref_t<typename SignatureOf<member>::Result>;

template <class T>
inline constexpr U16 kindFlag = flagValue;
template <class T>
inline constexpr U16 kindFlag<Mote::Ptr<T>> = flagPointer;

/// Calls a member function with a request's arguments.
template <auto function>
decltype(auto) invoke(OwnerOf<function>& owner, const Arguments& arguments) {
  return std::apply([&](auto&&... argument) -> decltype(auto) { return (owner.*function)(argument...); },
                    SignatureOf<function>::read(arguments));
}

/// A read-only attribute.
template <auto get>
constexpr AttributeDescriptor attribute(std::string_view name) {
  return {name,
          kindFlag<ResultOf<get>> | flagReadOnly,
          typeName<ResultOf<get>>,
          {},
          [](Mote::Node& node, const Request& request) {
            if (request.op != OpCode::read) return OpStatus::opNotValid;
            request.result = (static_cast<OwnerOf<get>&>(node).*get)();
            return OpStatus::done;
          }};
}

/// A writable attribute.
template <auto get, auto set>
constexpr AttributeDescriptor attribute(std::string_view name) {
  return {name,
          kindFlag<ResultOf<get>> | flagWritable,
          typeName<ResultOf<get>>,
          {},
          [](Mote::Node& node, const Request& request) {
            auto& owner = static_cast<OwnerOf<get>&>(node);
            if (request.op == OpCode::read) {
              request.result = (owner.*get)();
            } else if (request.op == OpCode::write) {
              (owner.*set)(request.value.template as<ResultOf<get>>());
            } else {
              return OpStatus::opNotValid;
            }
            return OpStatus::done;
          }};
}

/// An attribute whose object `is` creates from arguments and `del` removes.
template <auto get, auto is, auto del, class... Name>
constexpr AttributeDescriptor instantiating(std::string_view name, Name... parameters) {
  return {name, kindFlag<ResultOf<get>> | flagReadOnly | flagInstantiating, typeName<ResultOf<get>>,
          SignatureOf<is>::parameters(parameters...), [](Mote::Node& node, const Request& request) {
            auto& owner = static_cast<OwnerOf<get>&>(node);
            switch (request.op) {
              case OpCode::read:
                request.result = (owner.*get)();
                break;
              case OpCode::write:
                request.result = invoke<is>(owner, request.arguments);
                break;
              case OpCode::del:
                request.result = (owner.*del)();
                break;
              default:
                return OpStatus::opNotValid;
            }
            return OpStatus::done;
          }};
}

template <auto function, class... Name>
constexpr AttributeDescriptor operation(std::string_view name, Name... parameters) {
  using Result = typename SignatureOf<function>::Result;
  constexpr U16 flags = flagOperation | (SignatureOf<function>::isConst ? flagConst : 0);
  return {name, flags, typeName<Result>, SignatureOf<function>::parameters(parameters...),
          [](Mote::Node& node, const Request& request) {
            if (request.op != OpCode::call) return OpStatus::opNotValid;
            auto& owner = static_cast<OwnerOf<function>&>(node);
            if constexpr (std::is_void_v<Result>) {
              invoke<function>(owner, request.arguments);
            } else {
              request.result = invoke<function>(owner, request.arguments);
            }
            return OpStatus::done;
          }};
}

/// A queue attribute. A walk is over the items that were queued when it began.
template <auto items, auto enq, auto deq>
constexpr AttributeDescriptor queue(std::string_view name) {
  using Owner = OwnerOf<items>;
  using Item = ResultOf<deq>;
  class QueueCursor final : public Cursor {
   public:
    explicit QueueCursor(Owner& owner) {
      for (const Item& item : (owner.*items)()) items_.push_back(item);
    }
    bool valid() const override { return at_ < items_.size(); }
    Value key() const override { return {}; }
    Value item() const override { return items_[at_]; }
    void advance() override { ++at_; }
    void del() override { throw InternalException("only the front of a queue can be removed"); }

   private:
    std::vector<Item> items_;
    std::size_t at_ = 0;
  };
  return {name,
          kindFlag<Item> | flagWritable | flagQueue,
          typeName<Item>,
          {},
          [](Mote::Node& node, const Request& request) {
            auto& owner = static_cast<Owner&>(node);
            const auto& queued = (owner.*items)();
            switch (request.op) {
              case OpCode::count:
                request.result = static_cast<U32>(queued.size());
                break;
              case OpCode::front:
                request.result = queued.front();
                break;
              case OpCode::back:
                request.result = queued.back();
                break;
              case OpCode::enqueue:
                (owner.*enq)(request.value.template as<Item>());
                break;
              case OpCode::dequeue:
                if (!request.arguments.empty()) return OpStatus::opNotValid;
                request.result = (owner.*deq)();
                break;
              default:
                return OpStatus::opNotValid;
            }
            return OpStatus::done;
          },
          [](Mote::Node& node) -> std::unique_ptr<Cursor> {
            return std::make_unique<QueueCursor>(static_cast<Owner&>(node));
          }};
}

/// The walk over a collection; an entry is copied when the walk reaches it.
template <auto items, auto removal>
class CollectionCursor final : public Cursor {
  using Owner = OwnerOf<items>;

 public:
  explicit CollectionCursor(Owner& owner) : owner_(&owner), at_((owner.*items)()) {}

  bool valid() const override { return !(at_ == std::default_sentinel); }
  Value key() const override { return at_->key; }
  Value item() const override { return at_->item; }
  void advance() override { ++at_; }
  void del() override { (owner_.get()->*removal)(at_->key); }

 private:
  Mote::Ptr<Owner> owner_;
  typename ResultOf<items>::Walk at_;
};

/// The operations of every collection, except that `write(owner, request)` does the write.
template <auto items, auto del, auto write>
constexpr AttributeDescriptor collectionOf(std::string_view name, U16 flags, Parameters parameters) {
  using Owner = OwnerOf<items>;
  using Key = typename ResultOf<items>::Key;
  using Item = typename ResultOf<items>::Item;
  return {name,
          static_cast<U16>(kindFlag<Item> | flagCollection | flags),
          typeName<Item>,
          parameters,
          [](Mote::Node& node, const Request& request) {
            auto& owner = static_cast<Owner&>(node);
            const auto& map = (owner.*items)();
            const Arguments& arguments = request.arguments;
            switch (request.op) {
              case OpCode::read:
                request.result = map.get(arguments.template one<Key>());
                break;
              case OpCode::write:
                write(owner, request);
                break;
              case OpCode::del:
                request.result = (owner.*del)(arguments.template one<Key>());
                break;
              case OpCode::count:
                request.result = map.size();
                break;
              case OpCode::version:
                request.result = map.version();
                break;
              case OpCode::contains:
                request.result = map.contains(arguments.template one<Key>());
                break;
              default:
                return OpStatus::opNotValid;
            }
            return OpStatus::done;
          },
          [](Mote::Node& node) -> std::unique_ptr<Cursor> {
            return std::make_unique<CollectionCursor<items, del>>(static_cast<Owner&>(node));
          }};
}

/// A collection whose items are set by key.
template <auto items, auto is, auto del>
constexpr AttributeDescriptor collection(std::string_view name) {
  using Map = ResultOf<items>;
  constexpr auto write = [](OwnerOf<items>& owner, const Request& request) {
    (owner.*is)(request.arguments.template one<typename Map::Key>(),
                request.value.template as<typename Map::Item>());
  };
  return collectionOf<items, del, write>(name, flagWritable, {});
}

/// A collection whose items `is` creates from arguments, which include the key.
template <auto items, auto is, auto del, class... Name>
constexpr AttributeDescriptor instantiatingCollection(std::string_view name, Name... parameters) {
  constexpr auto write = [](OwnerOf<items>& owner, const Request& request) {
    request.result = invoke<is>(owner, request.arguments);
  };
  return collectionOf<items, del, write>(name, flagReadOnly | flagInstantiating,
                                         SignatureOf<is>::parameters(parameters...));
}

template <class E>
constexpr TypeDescriptor enumeration() {
  TypeDescriptor type;
  type.name = typeName<E>;
  type.values = Enumeration<E>::values;
  return type;
}

/// An entity that `create` creates; its attributes are numbered from `firstNumber`.
template <auto create, class... Name>
constexpr TypeDescriptor entity(U32 firstNumber, std::span<const AttributeDescriptor> attributes,
                                Name... parameters) {
  using Made = std::remove_pointer_t<decltype(std::declval<ResultOf<create>>().get())>;
  return {typeName<Made>,
          {},
          firstNumber,
          attributes,
          SignatureOf<create>::parameters(parameters...),
          [](const Arguments& arguments) -> Mote::Ptr<Mote::Node> {
            return std::apply(create, SignatureOf<create>::read(arguments));
          }};
}

/// The registration of an entity, which must belong to the module.
template <class T, const ModuleDescriptor& module>
const TypeData& registered() {
  static constexpr TypeData data = [] {
    U32 index = 0;
    while (module.types[index].name != typeName<T>) ++index;
    return TypeData{module, index};
  }();
  return data;
}

/// Registers a module during the lifetime of the object.
class Registration {
 public:
  explicit Registration(const ModuleDescriptor& module) : module_(module) { vaneModuleIs(module_); }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration() { vaneModuleDel(module_); }

 private:
  const ModuleDescriptor& module_;
};

}  // namespace Vane
