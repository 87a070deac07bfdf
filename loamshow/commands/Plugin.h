#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/Mote.h"
#include "platform/Vane.h"

namespace loamshow {

/// Loads a plug-in library, which registers its types. Raises InputError when it cannot be loaded, or
/// registers nothing. It stays loaded: an exception that an operation raised may be of a type that only the
/// plug-in has.
void loadPlugin(const std::string& path);

/// An object of a registered type. Its type, attributes and operations are found in the registry, by name;
/// one that is not there raises InputError.
class Object {
 public:
  Object(std::string_view type, std::span<const Vane::Value> arguments);

  /// The object as an argument.
  Vane::Value handle() const { return node_; }
  /// Calls an operation and answers its result; whatever the operation raises passes through.
  Vane::Value call(std::string_view operation, std::span<const Vane::Value> arguments) const;
  /// Puts an item into a queue, or under a key into a collection.
  void enqueue(std::string_view queue, const Vane::Value& item) const;
  void insert(std::string_view collection, const Vane::Value& key, const Vane::Value& item) const;

 private:
  Vane::Value request(std::string_view attribute, Vane::OpCode op, std::span<const Vane::Value> arguments,
                      const Vane::Value& value) const;

  const Vane::TypeDescriptor* type_;
  Mote::Ptr<Mote::Node> node_;
};

}  // namespace loamshow
