#pragma once

// Cortex, the central state database.

#include "platform/Mote.h"
#include "platform/Vane.h"

namespace Cortex {

/// Nodes, mounted under paths by which their readers find them.
class EntityManager : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<EntityManager>;
  static constexpr std::string_view vaneName = "Cortex::EntityManager";

  /// Mounts a node, or replaces the one mounted there.
  void mountIs(const Mote::String& path, Mote::Ptr<const Mote::Node> node) {
    mounts_.set(path, std::move(node));
  }
  /// The node at a path as a T; null if nothing, or another type, is mounted there.
  template <class T>
  Mote::Ptr<const T> mount(const Mote::String& path) const {
    return Mote::Ptr<const T>(dynamic_cast<const T*>(mounts_.get(path).get()));
  }

 private:
  Vane::HashMap<Mote::String, Mote::Ptr<const Mote::Node>> mounts_;
};

}  // namespace Cortex
