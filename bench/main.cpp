#include <cstdio>
#include <cstring>
#include <string_view>

#include "bench/Benches.h"

int main(int argc, char** argv) {
  bool isChecked = false;
  std::string_view filter;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (word == "--check") {
      isChecked = true;
    } else if (word.starts_with('-') || !filter.empty()) {
      std::fprintf(stderr, "usage: loambench [--check] [TEXT]\n");
      return 2;
    } else {
      filter = word;
    }
  }
  loambench::Measurements all;
  for (const auto add : {loambench::addRows, loambench::addCommands, loambench::addSizes,
                         loambench::addPrograms, loambench::addRegions}) {
    add(all);
  }
  const std::vector<std::string> missed = loambench::printTable(all, filter);
  for (const std::string& name : missed) std::printf("missed by more than a tenth: %s\n", name.c_str());
  return isChecked && !missed.empty() ? 1 : 0;
}
