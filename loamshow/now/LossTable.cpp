#include "loamshow/now/LossTable.h"

#include "loamshow/json/JsonWriter.h"
#include "loamshow/now/Amounts.h"
#include "platform/Nexo.h"

namespace loamshow {

namespace {

struct KindName {
  std::string_view json;
  std::string_view text;
};

/// Indexed by kind.
constexpr KindName kindNames[] = {{"voq", "VOQ"},
                                  {"egressUnicast", "egress unicast"},
                                  {"egressMulticast", "egress multicast"},
                                  {"cpuVoq", "CPU"},
                                  {"cpuPolicer", "policer"},
                                  {"cpuEgressUnicast", "CPU port unicast"},
                                  {"cpuEgressMulticast", "CPU port multicast"},
                                  {"acl", "egress ACL"},
                                  {"mtu", "MTU"}};

const KindName& nameOf(LossKind kind) {
  return kindNames[static_cast<std::size_t>(kind)];
}

/// The columns of the table: where text columns begin, and where numeric ones end. There are rates if the
/// interval is known.
struct Columns {
  static constexpr std::size_t queue = 18;
  static constexpr std::size_t place = 24;
  static constexpr std::size_t placeEnd = 40;

  std::size_t packets;
  std::size_t packetRate;
  std::size_t octets;
  std::size_t octetRate;
  std::size_t share = 80;
};

constexpr Columns withRates{50, 55, 69, 74};
constexpr Columns withoutRates{54, 0, 74, 0};

/// A line of the table, filled from the left. A value that is too wide moves the next ones to the right, as
/// little as possible.
class Line {
 public:
  void left(std::size_t begin, std::string_view value) {
    if (value.empty()) return;
    text_.append(std::max(text_.empty() ? 0 : text_.size() + 1, begin) - text_.size(), ' ');
    text_ += value;
  }
  void right(std::size_t end, std::string_view value) {
    if (value.empty()) return;
    text_.append(std::max(text_.size() + 1 + value.size(), end) - text_.size() - value.size(), ' ');
    text_ += value;
  }
  std::string_view ended() { return text_ += '\n'; }

 private:
  std::string text_;
};

class Table {
 public:
  Table(const LossTitle& title, const Losses& losses, const Sink& sink)
      : title_(title), losses_(losses), columns_(title.seconds ? withRates : withoutRates), sink_(sink) {}

  void print(std::size_t most) {
    const std::string what = losses_.byOctets() ? "octets" : "packets";
    if (losses_.size() == 0) {
      sink_("No dropped " + what + titled());
      return;
    }
    sink_("Dropped " + what + titled());
    Line heading;
    heading.left(0, "Interface");
    heading.left(Columns::queue, "Queue");
    heading.left(Columns::place, "Where");
    numbers(heading, "Packets", "/s", "Octets", "/s", "Share");
    sink_(heading.ended());
    const std::vector<const Loss*> rows = losses_.worst(most);
    for (const Loss* const loss : rows) row(*loss);
    total(losses_.size() - rows.size());
  }

 private:
  std::string titled() const {
    std::string text;
    const char* separator = ": ";
    const auto add = [&](std::string_view part) {
      if (part.empty()) return;
      (text += separator) += part;
      separator = ", ";
    };
    add(title_.switchName);
    add(title_.takenAt);
    add(title_.seconds ? "in " + seconds(*title_.seconds) : "");
    return text + '\n';
  }
  void numbers(Line& line, std::string_view packets, std::string_view packetRate, std::string_view octets,
               std::string_view octetRate, std::string_view share) const {
    line.right(columns_.packets, packets);
    if (title_.seconds) line.right(columns_.packetRate, packetRate);
    line.right(columns_.octets, octets);
    if (title_.seconds) line.right(columns_.octetRate, octetRate);
    line.right(columns_.share, share);
  }
  void counts(Line& line, U64 packets, U64 octets, bool hasOctets, const std::string& share) const {
    const double interval = title_.seconds.value_or(1);
    numbers(line, grouped(packets), rate(static_cast<double>(packets) / interval),
            hasOctets ? grouped(octets) : "n/a",
            hasOctets ? rate(static_cast<double>(octets) / interval) : "", share);
  }
  void row(const Loss& loss) const {
    std::string place(nameOf(loss.kind).text);
    if (loss.source != LossName::none) {
      place += ' ' + losses_.text(loss.source);
    } else if (loss.kind == LossKind::voq) {
      place += " all chips";
    }
    Line line;
    line.left(0, loss.interface == LossName::none
                     ? "-"
                     : Nexo::IntfId(losses_.text(loss.interface)).shortName().view());
    line.left(Columns::queue, losses_.text(loss.queue));
    // If there is no queue, a long place begins in the queue column.
    const bool beginsEarly =
        loss.queue == LossName::none && Columns::place + place.size() > Columns::placeEnd;
    line.left(beginsEarly ? Columns::queue : Columns::place, place);
    counts(line, loss.packets, loss.octets, countsOctets(loss.kind), percentage(losses_.share(loss)));
    sink_(line.ended());
  }
  void total(std::size_t hidden) const {
    Line line;
    line.left(
        0, "Total" +
               (hidden == 0 ? "" : ", " + grouped(hidden) + (hidden == 1 ? " row" : " rows") + " not shown"));
    counts(line, losses_.packets(), losses_.octets(), true, "100%");
    sink_(line.ended());
  }

  const LossTitle& title_;
  const Losses& losses_;
  const Columns& columns_;
  const Sink& sink_;
};

}  // namespace

void writeLossTable(const LossTitle& title, const Losses& losses, std::size_t most, const Sink& sink) {
  Table(title, losses, sink).print(most);
}

void writeLossJson(const LossTitle& title, const Losses& losses, std::size_t most, const Sink& sink) {
  JsonWriter out(sink, JsonWriter::Layout::oneLine);
  out.beginObject();
  if (!title.switchName.empty()) out.member("switch", title.switchName);
  if (!title.takenAt.empty()) out.member("takenAt", title.takenAt);
  if (title.seconds) out.member("seconds", *title.seconds);
  out.member("droppedPackets", losses.packets());
  out.member("droppedBytes", losses.octets());
  out.key("losses");
  out.beginArray();
  const auto optional = [&](const char* key, LossName name) {
    if (name != LossName::none) out.member(key, std::string_view(losses.text(name)));
  };
  for (const Loss* const loss : losses.worst(most)) {
    out.beginObject();
    optional("interface", loss->interface);
    optional("queue", loss->queue);
    out.member("kind", nameOf(loss->kind).json);
    optional("source", loss->source);
    out.member("droppedPackets", loss->packets);
    if (countsOctets(loss->kind)) out.member("droppedBytes", loss->octets);
    out.endObject();
  }
  out.endArray();
  out.endObject();
}

}  // namespace loamshow
