// Loads a shared library that need not be installed, when it is first needed.
#pragma once

#include <dlfcn.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>

class TSharedLibrary {
 public:
  /// `file`: its file name, such as "libpci.so.3", which the loader looks for in its usual places.
  explicit TSharedLibrary(const char* file) : m_library(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
    if (m_library == nullptr) m_failure = dlerror();
  }

  /// Why an existing library could not be loaded, such as "libpci.so.3: cannot open shared object file: Too many open
  /// files". Empty if it was loaded or is missing.
  std::string GetFailure() const {
    return m_failure.find(std::strerror(ENOENT)) == std::string::npos ? m_failure : std::string();
  }

  /// The function of that name; null if it or the library is missing. It is valid as long as this object lives.
  template <typename TFunction>
  TFunction* Find(const char* name) const {
    return m_library == nullptr ? nullptr : reinterpret_cast<TFunction*>(dlsym(m_library.get(), name));
  }

 private:
  struct TClose {
    void operator()(void* library) const { dlclose(library); }
  };

  std::unique_ptr<void, TClose> m_library;
  std::string m_failure;  // in the loader's words
};
