#pragma once

#include "platform/Mote.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// Writes one answer to `fd` in the format `fmt`, through the one Printer of an operation's call.
template <class Body>
decltype(auto) answer(U32 fd, U32 fmt, Body&& body) {
  tabula::Printer printer(static_cast<int>(fd), fmt, true, false, true, 0);
  if constexpr (std::is_void_v<decltype(body(printer))>) {
    body(printer);
    printer.close();
  } else {
    auto result = body(printer);
    printer.close();
    return result;
  }
}

}  // namespace LoamCounters
