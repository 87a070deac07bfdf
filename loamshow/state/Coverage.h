#pragma once

// Which commands can show an interface.

#include <string>
#include <string_view>

#include "loamshow/state/Switch.h"

namespace loamshow {

/// Which of the commands `queues`, `ingress` and `drops` can show an interface, and why the others cannot.
/// `acl` can show every interface.
struct Coverage {
  enum class Kind : U8 {
    all,         // all of them, under the interface's own name
    lagTable,    // `queues` only: its VOQs are counted in the LAG table
    noPort,      // none: it has no system port
    noQueues,    // none: its port has no traffic-manager queues
    portOfOther  // none: the switch gives its port another name, or none
  };

  Kind kind = Kind::all;
  Hardware::Loam::SystemPhyPortId port = Hardware::Loam::nullPort;
  Nexo::IntfId portIntf;  // the name that the switch gives the port; may be empty

  bool byQueues() const { return kind == Kind::all || kind == Kind::lagTable; }
  bool byIngressAndDrops() const { return kind == Kind::all; }
  /// Why a command has no rows for the interface, for use in a message; empty if all commands have some.
  std::string reason() const;
};

/// Takes three look-ups, independent of the size of the switch.
Coverage coverage(const SwitchState& state, Nexo::IntfId intf);

/// Why a command never has rows for this interface, independent of counts: for use in a message; empty if it
/// can have rows.
std::string whyNoRows(const SwitchState& state, std::string_view command, Nexo::IntfId intf);

}  // namespace loamshow
