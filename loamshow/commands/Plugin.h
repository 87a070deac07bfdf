#pragma once

// Loads the plug-in and accesses it through the registry.

#include <span>
#include <string>
#include <string_view>

#include "platform/Mote.h"
#include "platform/Vane.h"

namespace loamshow {

/// Loads a plug-in library, which registers its types. Throws InputError if it cannot be loaded or registers
/// nothing. It stays loaded, because an exception of an operation may have a type that only the plug-in
/// defines.
void loadPlugin(const std::string& path);

/// An object of a registered type. Its type, attributes and operations are found in the registry, by name; an
/// unknown name throws InputError.
class Object {
 public:
  Object(std::string_view type, std::span<const Vane::Value> arguments);

  /// The object as an argument.
  Vane::Value handle() const { return node_; }
  /// Calls an operation and returns its result; exceptions of the operation reach the caller.
  Vane::Value call(std::string_view operation, std::span<const Vane::Value> arguments) const;
  /// Adds an item to a queue, or to a collection by key.
  void enqueue(std::string_view queue, const Vane::Value& item) const;
  void insert(std::string_view collection, const Vane::Value& key, const Vane::Value& item) const;

 private:
  Vane::Value request(std::string_view attribute, Vane::OpCode op, std::span<const Vane::Value> arguments,
                      const Vane::Value& value) const;

  const Vane::TypeDescriptor* type_;
  Mote::Ptr<Mote::Node> node_;
};

}  // namespace loamshow
