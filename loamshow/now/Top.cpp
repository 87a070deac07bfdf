#include "loamshow/now/Top.h"

#include <cmath>
#include <string>
#include <vector>

#include "loamshow/commands/ShowCommands.h"
#include "loamshow/now/LossReader.h"
#include "loamshow/now/LossTable.h"
#include "platform/tabula.h"

namespace loamshow {

namespace {

std::vector<const char*> commandsFor(const CommandLine& line) {
  if (line.interfaces.empty()) return {"ingress", "queues", "cpu", "acl", "mtu"};
  return {"ingress", "queues", "acl"};  // the commands whose rows are of interfaces
}

/// Rounded to 0.1, as shown; nothing if that is 0.
std::optional<double> rounded(std::optional<double> seconds) {
  const double tenths = std::round(seconds.value_or(0) * 10);
  return tenths == 0 ? std::nullopt : std::optional(tenths / 10);
}

}  // namespace

void showTop(const CommandLine& line, const Shown& shown, std::string_view heading, U32 fd) {
  Losses losses(line.byOctets);
  LossReader reader(losses);
  CommandLine question = line;
  question.format = tabula::formatJson;
  tabula::MemoryOutput output;
  for (const char* const command : commandsFor(line)) {
    question.command = command;
    output.clear();
    runShowCommand(question, shown.state, output.fd());
    if (tabula::operationInterrupted()) return;
    JsonReader answer("the answer of " + question.command, JsonText::inPlace(output.text(JsonText::padding)));
    reader.read(command, answer);
  }
  const auto write = [&](const Sink& sink) {
    sink(heading);
    const LossTitle title{shown.state.name.view(), shown.state.takenAt.view(), rounded(shown.seconds)};
    const auto writeLosses = line.format == tabula::formatJson ? writeLossJson : writeLossTable;
    writeLosses(title, losses, line.most, sink);
  };
  print(write, fd);
}

}  // namespace loamshow
