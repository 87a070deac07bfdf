#include "platform/vane/Value.h"

namespace Vane {

void Value::throwMismatch(std::string_view expected) const {
  throw InternalException(Mote::String("expected ") + expected + ", got " + type_);
}

}  // namespace Vane
