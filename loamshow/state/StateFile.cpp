#include "loamshow/state/StateFile.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "loamshow/state/ReadValues.h"
#include "loamshow/state/Source.h"

namespace loamshow {

using Hardware::Loam::VoqId;

namespace {

/// Whether the text is an RFC 3339 time in UTC: seconds from 00 to 59, up to six digits of fraction.
bool isUtcTime(std::string_view text) {
  constexpr std::string_view layout = "dddd-dd-ddTdd:dd:dd";
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  const auto fits = [&](char c, char place) { return place == 'd' ? isDigit(c) : c == place; };
  if (text.size() <= layout.size() || text.back() != 'Z') return false;
  if (!std::equal(layout.begin(), layout.end(), text.begin(), [&](char l, char c) { return fits(c, l); })) {
    return false;
  }
  std::string_view fraction = text.substr(layout.size(), text.size() - layout.size() - 1);
  if (!fraction.empty()) {
    if (fraction.front() != '.' || fraction.size() < 2 || fraction.size() > 7) return false;
    fraction.remove_prefix(1);
    if (!std::all_of(fraction.begin(), fraction.end(), isDigit)) return false;
  }
  const auto number = [&](std::size_t at, std::size_t size) {
    unsigned value = 0;
    for (const char c : text.substr(at, size)) value = 10 * value + static_cast<unsigned>(c - '0');
    return value;
  };
  const std::chrono::year_month_day day{std::chrono::year(static_cast<int>(number(0, 4))),
                                        std::chrono::month(number(5, 2)), std::chrono::day(number(8, 2))};
  return day.ok() && number(11, 2) < 24 && number(14, 2) < 60 && number(17, 2) < 60;
}

}  // namespace

void read(JsonValue value, SwitchName<Mote::String> into) {
  read(value, into.name);
  if (into.name.empty()) value.fail("expected a name that is not empty");
}

void read(JsonValue value, Time<Mote::String> into) {
  read(value, into.text);
  if (!isUtcTime(into.text)) value.fail("expected a time in UTC such as 2026-11-23T10:53:31Z");
}

void read(JsonValue value, Interfaces<std::vector<Nexo::IntfId>> into) {
  Vane::HashMap<Nexo::IntfId, bool> seen;
  for (JsonElements in(value); in.next();) {
    Nexo::IntfId intf;
    read(in.value(), intf);
    if (intf == Nexo::IntfId()) in.value().fail("expected an interface name");
    if (seen.contains(intf)) in.value().fail("repeated entry");
    seen.set(intf, true);
    into.list.push_back(intf);
  }
}

void read(JsonValue value, FabricMcastRange<SwitchState> into) {
  constexpr U64 mostVoqs = 8;
  FabricMcastVoqs range;
  read(value, range);
  if (range.min.has_value() != range.max.has_value()) value.fail("expected both min and max");
  if (!range.min) return;
  if (*range.max < *range.min || U64{range.max->value()} - range.min->value() >= mostVoqs) {
    value.fail("expected a max from min to min + 7");
  }
  into.state.fabricMcastVoqMin = *range.min;
  into.state.fabricMcastVoqMax = *range.max;
}

template <class Entry, class Map>
void read(JsonValue value, EntryList<Entry, Map> into) {
  for (JsonElements in(value); in.next();) {
    Entry entry;
    read(in.value(), entry);
    if (into.map.contains(entry.key)) in.value().fail("repeated entry of this " + std::string(into.key));
    if constexpr (std::is_same_v<Entry, PlacedRecircPort>) {
      if (!entry.item) in.value().fail("expected a systemPhyPortId");
      into.map.set(entry.key, *entry.item);
    } else {
      into.map.set(entry.key, entry.item);
    }
  }
}

SwitchState loadStateFile(const std::string& path) {
  return Source(path).read();
}

SwitchState parseState(const std::string& name, JsonText text) {
  JsonReader reader(name, std::move(text));
  SwitchState state;
  read(reader.root(), state);
  reader.finish();
  return state;
}

SwitchState parseState(const std::string& name, std::string_view text) {
  return parseState(name, JsonText(text));
}

void mountProcessWide(const SwitchState& state) {
  Keel::switchTimeOffsetIs(state.switchTimeOffset);
  VoqId::fabricMcastVoqRangeIs(state.fabricMcastVoqMin, state.fabricMcastVoqMax);
}

}  // namespace loamshow
