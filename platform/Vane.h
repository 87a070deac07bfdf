#pragma once

// Vane, the entity framework: failures, identifiers, enumerations, collections, values and the registry of
// modules.

#include "platform/vane/Collections.h"
#include "platform/vane/Declare.h"
#include "platform/vane/Enumeration.h"
#include "platform/vane/Failure.h"
#include "platform/vane/Identifier.h"
#include "platform/vane/Module.h"
#include "platform/vane/Scalars.h"
#include "platform/vane/Value.h"
