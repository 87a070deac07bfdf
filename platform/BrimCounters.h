#pragma once

// Brim::Counters, the counters framework: descriptors of debug counters, and the reader of their values.

#include "platform/brim/Descriptors.h"
#include "platform/brim/ShmemManager.h"
