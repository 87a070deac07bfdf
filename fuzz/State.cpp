// A state file: either rejected with a message that names it, or a switch on which check and all commands can
// run. A zero byte separates an optional earlier state, from which counts are then shown.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "fuzz/Fuzz.h"
#include "loamshow/cli/CommandLine.h"
#include "loamshow/now/Answer.h"
#include "loamshow/state/Capture.h"
#include "loamshow/state/Check.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"

namespace {

/// A file of limited size, because a counter may have 2^32 instances.
int limitedFile() {
  constexpr off_t mostOutput = 1 << 20;
  const int fd = ::memfd_create("fuzz", MFD_ALLOW_SEALING);
  loamfuzz::require(::ftruncate(fd, mostOutput) == 0 && ::fcntl(fd, F_ADD_SEALS, F_SEAL_GROW) == 0);
  return fd;
}

void ask(const loamshow::Shown& shown, const std::string& name, U32 format, int fd) {
  loamshow::CommandLine line;
  line.command = name;
  line.format = format;
  line.internal = line.perPort = true;
  ::lseek(fd, 0, SEEK_SET);
  try {
    loamshow::answer(line, shown, "", static_cast<U32>(fd));
  } catch (const std::exception& error) {
    loamfuzz::require(*error.what() != '\0');
    return;
  }
  std::string answer(static_cast<std::size_t>(::lseek(fd, 0, SEEK_CUR)), '\0');
  loamfuzz::require(::pread(fd, answer.data(), answer.size(), 0) == static_cast<ssize_t>(answer.size()));
  loamfuzz::require(format == 1 || answer.empty() || nlohmann::json::accept(answer));
}

std::string captured(const loamshow::SwitchState& state) {
  std::string text;
  loamshow::JsonWriter out(text, loamshow::JsonWriter::Layout::indented);
  loamshow::capture(state, out);
  return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int fd = limitedFile();
  try {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string_view text = input.substr(0, input.find('\0'));
    const loamshow::SwitchState state = loamshow::parseState("state", text);
    for (const loamshow::Finding& finding : loamshow::check(state)) {
      loamfuzz::require(finding.member.starts_with('/') && !finding.problem.empty());
    }
    loamshow::History history("state");
    if (text.size() < input.size()) {
      history.beginAt("state", loamshow::parseState("state", input.substr(text.size() + 1)));
    }
    const loamshow::Shown shown = history.advance(state);
    for (const char* name : {"queues", "ingress", "cpu", "drops", "acl", "mtu", "debug", "top"}) {
      for (const U32 format : {1U, 2U}) ask(shown, name, format, fd);
    }
    const std::string copy = captured(state);
    loamfuzz::require(captured(loamshow::parseState("copy", copy)) == copy);
  } catch (const loamshow::InputError& error) {
    loamfuzz::require(std::string_view(error.what()).starts_with("state: "));
  }
  return 0;
}
