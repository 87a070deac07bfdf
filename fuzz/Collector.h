#pragma once

#include <string>

#include "platform/tabula/Renderer.h"

namespace loamfuzz {

/// Collects what is printed.
class Collector : public tabula::Renderer {
 public:
  explicit Collector(U32 format) : Renderer(format) {}
  std::string text;

 protected:
  void take(std::string_view bytes) override { text += bytes; }
};

}  // namespace loamfuzz
