#pragma once

// The frame around the body of an operation.

#include "platform/Mote.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// Runs `body` with a new Printer for `fd` and the format `fmt`, and completes the output.
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
