#include "loamshow/state/StateReaders.h"
#include "loamshow/state/StateValues.h"

namespace loamshow {

namespace {

using Hardware::Loam::FapPortId;
using Hardware::Loam::LocalCoreId;
using Hardware::Loam::PortMap;
using Hardware::Loam::Status;

/// Whether the member is one of a port map's; it is then read.
bool readPlace(JsonMembers& in, PortMap& place) {
  if (in.is("fapPortId")) {
    place.fapPortId = id<FapPortId>(in.value());
  } else if (in.is("fapId")) {
    place.fapId = id<FapId>(in.value());
  } else if (in.is("coreId")) {
    place.coreId = id<LocalCoreId>(in.value());
  } else {
    return false;
  }
  return true;
}

PortMap portMap(JsonValue entry) {
  PortMap place;
  for (JsonMembers in(entry); in.next();) {
    if (!readPlace(in, place)) in.unknown();
  }
  return place;
}

void readPortMapToIntfId(JsonValue array, Status& status) {
  for (JsonElements entries(array); entries.next();) {
    JsonValue entry = entries.value();
    PortMap place;
    IntfId intfId;
    for (JsonMembers in(entry); in.next();) {
      if (in.is("intfId")) {
        intfId = intf(in.value());
      } else if (!readPlace(in, place)) {
        in.unknown();
      }
    }
    if (status.portMapToIntfId.contains(place)) entry.fail("repeated entry of this FAP, core and port");
    status.portMapToIntfId.set(place, intfId);
  }
}

void readRecircPort(JsonValue array, Status& status) {
  for (JsonElements entries(array); entries.next();) {
    JsonValue entry = entries.value();
    Hardware::Loam::RecircPort recircPort;
    Vane::Optional<SystemPhyPortId> port;
    for (JsonMembers in(entry); in.next();) {
      if (in.is("recircType")) {
        recircPort.recircType = number<U8>(in.value());
      } else if (in.is("id")) {
        recircPort.id = number<U16>(in.value());
      } else if (in.is("systemPhyPortId")) {
        port = id<SystemPhyPortId>(in.value());
      } else {
        in.unknown();
      }
    }
    if (!port) entry.fail("expected a systemPhyPortId");
    if (status.recircPort.contains(recircPort)) entry.fail("repeated entry of this recircType and id");
    status.recircPort.set(recircPort, *port);
  }
}

Hardware::Loam::FapRevision revision(JsonValue entry) {
  Hardware::Loam::FapRevision revision;
  for (JsonMembers in(entry); in.next();) {
    if (!in.is("major")) in.unknown();
    revision.major = number<Hardware::Loam::FapRevMajor>(in.value());
  }
  return revision;
}

SystemPhyPortId port(JsonValue value) {
  return id<SystemPhyPortId>(value);
}

}  // namespace

void readStatus(JsonValue object, Status& status) {
  for (JsonMembers in(object); in.next();) {
    const JsonValue value = in.value();
    if (in.is("fapIdToName")) {
      readMap(value, status.fapIdToName, fapKey, name);
    } else if (in.is("fapNumCores")) {
      readMap(value, status.fapNumCores, fapKey, number<U16>);
    } else if (in.is("fapRevision")) {
      readMap(value, status.fapRevision, fapKey, revision);
    } else if (in.is("sppidToIntfId")) {
      readMap(value, status.sppidToIntfId, portKey, intf);
    } else if (in.is("intfIdToSppid")) {
      readMap(value, status.intfIdToSppid, intfKey, port);
    } else if (in.is("portMap")) {
      readMap(value, status.portMaps, portKey, portMap);
    } else if (in.is("portMapToIntfId")) {
      readPortMapToIntfId(value, status);
    } else if (in.is("olpPort")) {
      readMap(value, status.olpPort, smallKey, port);
    } else if (in.is("erpPort")) {
      readMap(value, status.erpPort, smallKey, port);
    } else if (in.is("recircPort")) {
      readRecircPort(value, status);
    } else if (in.is("fabricMeshDropPort")) {
      readMap(value, status.fabricMeshDropPort, smallKey, port);
    } else if (in.is("fapToSflowAccelSppid")) {
      readMap(value, status.fapToSflowAccelSppid, nameKey, port);
    } else if (in.is("ipsecPort")) {
      readMap(value, status.ipsecPort, smallKey, port);
    } else if (in.is("eventorPort")) {
      readMap(value, status.eventorPort, fapKey, port);
    } else if (in.is("cpuRecircEnabled")) {
      status.cpuRecircEnabled = value.boolean();
    } else if (in.is("subIntfNumVoqs")) {
      // A sub-interface has no more VOQs than there are traffic classes to share among them.
      status.subIntfNumVoqs = static_cast<U8>(value.integer(0, 8));
    } else if (in.is("coppClassNumVoqs")) {
      status.coppClassNumVoqs = number<U16>(value);
    } else {
      in.unknown();
    }
  }
}

}  // namespace loamshow
