// The exception by which the host reports every failure.
#pragma once

#include <exception>
#include <string>

#include "host/visibility.h"

namespace NQRXZELT20 {

class HOST_API TZELTException : public std::exception {
 public:
  explicit TZELTException(const std::string& description);
  TZELTException(const TZELTException& other);
  TZELTException& operator=(const TZELTException& other);
  ~TZELTException() override;

  /// The description given at construction.
  const char* what() const noexcept override;

 private:
  std::string m_description;
};

}  // namespace NQRXZELT20
