#pragma once

// tabula, the CLI output library: one sequence of calls writes a text table or a JSON model.

#include "platform/tabula/Attributes.h"
#include "platform/tabula/Interrupt.h"
#include "platform/tabula/MemoryOutput.h"
#include "platform/tabula/Printer.h"
#include "platform/tabula/Renderer.h"
