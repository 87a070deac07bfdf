#pragma once

// The Printer: output of a show operation to a file descriptor.

#include "platform/tabula/MemoryOutput.h"
#include "platform/tabula/Renderer.h"

namespace tabula {

/// The only output object of a show operation: renders its output to a file descriptor. Partial writes, EINTR
/// and EAGAIN are retried; any other failure throws std::system_error once, and the Printer writes nothing
/// more. Blocked writes are interruptible.
class Printer : public Renderer {
 public:
  /// `format` is 1 for text, 2 for JSON. The caller keeps ownership of the descriptor. The other four
  /// parameters have no effect.
  Printer(int fd, U32 format, bool, bool, bool, U32);
  /// Writes what is still buffered and does not throw: a failed write is reported on standard error, unless
  /// the operation ends with an exception anyway; an interrupt stays pending. Call close() first to get
  /// exceptions.
  ~Printer() override;

  /// Writes what is still buffered. If this returns, the output is complete and was not interrupted.
  void close();

 protected:
  void take(std::string_view bytes) override;

 private:
  void awaitWritable() const;

  const int fd_;
  MemoryOutput* const memory_;  // the memory output of that descriptor, if any
  const int exceptions_;        // number of uncaught exceptions at construction
};

}  // namespace tabula
