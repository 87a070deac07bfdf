#include "loamshow/now/Answer.h"

#include "loamshow/commands/ShowCommands.h"
#include "loamshow/now/Top.h"
#include "loamshow/state/StateFile.h"

namespace loamshow {

void answer(const CommandLine& line, const Shown& shown, std::string_view heading, U32 fd) {
  mountProcessWide(shown.state);
  if (line.command == "top") {
    showTop(line, shown, heading, fd);
  } else {
    runShowCommand(line, shown.state, fd, heading);
  }
}

}  // namespace loamshow
