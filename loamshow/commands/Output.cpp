#include "loamshow/commands/Output.h"

#include <iostream>

#include "platform/tabula.h"

namespace loamshow {

void print(std::string_view text, U32 fd) {
  print([&](const Sink& sink) { sink(text); }, fd);
}

void print(const std::function<void(const Sink&)>& write, U32 fd) {
  tabula::endingOnInterrupt([&] {
    tabula::Printer printer(static_cast<int>(fd), tabula::formatText, true, false, true, 0);
    write([&](std::string_view piece) { printer.addFrills<"%s">(piece); });
    printer.close();
  });
}

void warn(std::string_view warning) {
  std::cerr << "loamshow: " << warning << std::endl;
}

}  // namespace loamshow
