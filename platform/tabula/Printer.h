#pragma once

#include "platform/tabula/MemoryOutput.h"
#include "platform/tabula/Renderer.h"

namespace tabula {

/// The one output object of a show operation: renders an answer to a file descriptor. Writes are carried on
/// with after partial writes, EINTR and EAGAIN; any other failure raises std::system_error, once, and the
/// Printer then writes nothing more. An interrupt is noticed inside a blocked write, too.
class Printer : public Renderer {
 public:
  /// `format` is 1 for text, 2 for JSON. The descriptor stays the caller's. The other four say nothing here.
  Printer(int fd, U32 format, bool, bool, bool, U32);
  /// Writes what is still buffered and raises nothing: a failed write is reported on standard error, unless
  /// an exception that ends the operation already tells of a failure; an interrupt stays pending. An
  /// operation that is to raise them calls close() first.
  ~Printer() override;

  /// Writes what is still buffered. The answer is whole, and nobody has interrupted it, when this has
  /// returned.
  void close();

 protected:
  void take(std::string_view bytes) override;

 private:
  void awaitWritable() const;

  const int fd_;
  MemoryOutput* const memory_;  // of that descriptor, if it is one
  const int exceptions_;  // in flight when this Printer was made
};

}  // namespace tabula
