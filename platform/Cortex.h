#pragma once

// Cortex, the central state database.

#include "platform/Mote.h"
#include "platform/Vane.h"

namespace Cortex {

/// What is mounted where: nodes under the paths that their readers look them up by.
class EntityManager : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<EntityManager>;
  static constexpr std::string_view vaneName = "Cortex::EntityManager";

  /// Mounts a node, or replaces the one mounted there.
  void mountIs(const Mote::String& path, Mote::Ptr<const Mote::Node> node) {
    mounts_.set(path, std::move(node));
  }
  /// The node of a path as a T; null when nothing is mounted there, or something else.
  template <class T>
  Mote::Ptr<const T> mount(const Mote::String& path) const {
    return Mote::Ptr<const T>(dynamic_cast<const T*>(mounts_.get(path).get()));
  }

 private:
  Vane::HashMap<Mote::String, Mote::Ptr<const Mote::Node>> mounts_;
};

}  // namespace Cortex
