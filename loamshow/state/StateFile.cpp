#include "loamshow/state/StateFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "loamshow/json/JsonReader.h"
#include "loamshow/state/StateReaders.h"
#include "loamshow/state/StateValues.h"

namespace loamshow {

namespace {

using Hardware::Loam::VoqId;

std::string readAll(const std::string& path, const std::string& name) {
  const int fd = path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  std::string text;
  std::size_t size = 0;
  ssize_t got = fd < 0 ? -1 : 1;
  while (got > 0) {
    text.resize(std::max<std::size_t>(std::size_t{64} * 1024, 2 * size));
    while (size < text.size() && (got = ::read(fd, text.data() + size, text.size() - size)) != 0) {
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) break;
      size += static_cast<std::size_t>(got);
    }
  }
  const int error = errno;
  if (fd > STDIN_FILENO) ::close(fd);
  if (got < 0) throw InputError(name + ": cannot read: " + std::generic_category().message(error));
  text.resize(size);
  return text;
}

void readFabricMcastVoq(JsonValue object, SwitchState& state) {
  constexpr U64 mostVoqs = 8;
  Vane::Optional<VoqId> min;
  Vane::Optional<VoqId> max;
  for (JsonMembers in(object); in.next();) {
    if (in.is("min")) {
      min = id<VoqId>(in.value());
    } else if (in.is("max")) {
      max = id<VoqId>(in.value());
    } else {
      in.unknown();
    }
  }
  if (min.has_value() != max.has_value()) object.fail("expected both min and max");
  if (!min) return;
  if (*max < *min || U64{max->value()} - min->value() >= mostVoqs) {
    object.fail("expected a max from min to min + 7");
  }
  state.fabricMcastVoqMin = *min;
  state.fabricMcastVoqMax = *max;
}

/// Reads an object that has one member at most.
template <class Read>
void readOnly(JsonValue object, std::string_view memberName, Read read) {
  for (JsonMembers in(object); in.next();) {
    if (!in.is(memberName)) in.unknown();
    read(in.value());
  }
}

void readInterfaces(JsonValue array, std::vector<IntfId>& interfaces) {
  Vane::HashMap<IntfId, bool> seen;
  for (JsonElements elements(array); elements.next();) {
    const JsonValue element = elements.value();
    interfaces.push_back(intf(element));
    if (interfaces.back() == IntfId()) element.fail("expected an interface name");
    if (seen.contains(interfaces.back())) element.fail("repeated entry");
    seen.set(interfaces.back(), true);
  }
}

}  // namespace

SwitchState loadStateFile(const std::string& path) {
  const std::string name = path == "-" ? "standard input" : path;
  return parseState(name, readAll(path, name));
}

SwitchState parseState(const std::string& name, std::string_view text) {
  JsonReader document(name, JsonText(text));
  SwitchState state;
  for (JsonMembers in(document.root()); in.next();) {
    const JsonValue value = in.value();
    if (in.is("interfaces")) {
      readInterfaces(value, state.interfaces);
    } else if (in.is("status")) {
      readStatus(value, *state.status);
    } else if (in.is("tmMapping")) {
      readOnly(value, "portTmMap",
               [&](JsonValue ports) { readSet(ports, state.tmMapping->portTmMap, id<SystemPhyPortId>); });
    } else if (in.is("internalLagStatus")) {
      readOnly(value, "lagIngressVoqCounterTable", [&](JsonValue intfs) {
        for (JsonElements members(intfs); members.next();) {
          state.internalLagStatus->lagIngressVoqCounterTable.set(intf(members.value()), true);
        }
      });
    } else if (in.is("fabricMcastVoq")) {
      readFabricMcastVoq(value, state);
    } else if (in.is("skeinMountMode")) {
      state.skeinMountMode = value.boolean();
    } else if (in.is("counters")) {
      readCounters(value, *state.counters);
    } else if (in.is("debug")) {
      readDebug(value, state);
    } else {
      in.unknown();
    }
  }
  document.finish();
  return state;
}

void mountProcessWide(const SwitchState& state) {
  Keel::switchTimeOffsetIs(state.switchTimeOffset);
  VoqId::fabricMcastVoqRangeIs(state.fabricMcastVoqMin, state.fabricMcastVoqMax);
}

}  // namespace loamshow
