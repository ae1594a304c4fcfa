// An open file, socket or folder, closed when its owner goes.
#pragma once

#include <unistd.h>

#include <utility>

class TDescriptor {
 public:
  /// Takes over what open() or the like returned; -1 for none, with errno left as it is.
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
  /// Gives it up: the caller closes it.
  int Release() { return std::exchange(m_descriptor, -1); }
  void Close() {
    if (IsOpen()) close(std::exchange(m_descriptor, -1));
  }

 private:
  int m_descriptor;
};
