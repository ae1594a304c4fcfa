// A shared library that the command can do without, loaded when it is first needed.
#pragma once

#include <dlfcn.h>

#include <memory>

class TSharedLibrary {
 public:
  /// `file`: its file name, such as "libpci.so.3", which the loader looks for in its usual places.
  explicit TSharedLibrary(const char* file) : m_library(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {}

  /// The function of that name, or null when it or the library is missing. It lives as long as this object.
  template <typename TFunction>
  TFunction* Find(const char* name) const {
    return m_library == nullptr ? nullptr : reinterpret_cast<TFunction*>(dlsym(m_library.get(), name));
  }

 private:
  struct TClose {
    void operator()(void* library) const { dlclose(library); }
  };

  std::unique_ptr<void, TClose> m_library;
};
