// An open file, socket or folder, closed by its destructor.
#pragma once

#include <unistd.h>

#include <utility>

class TDescriptor {
 public:
  /// Owns what open() or the like returned, also -1. Leaves errno as it is.
  explicit TDescriptor(int descriptor = -1) : m_descriptor(descriptor) {}
  ~TDescriptor() { Close(); }
  TDescriptor(TDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
  TDescriptor& operator=(TDescriptor&& other) noexcept {
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
  }

  bool IsOpen() const { return m_descriptor >= 0; }
  /// -1 when none is open.
  int Get() const { return m_descriptor; }
  /// From now on the caller owns the descriptor and closes it.
  int Release() { return std::exchange(m_descriptor, -1); }
  void Close() {
    if (IsOpen()) close(std::exchange(m_descriptor, -1));
  }

 private:
  int m_descriptor;
};
