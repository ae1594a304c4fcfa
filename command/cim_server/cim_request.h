// A request of a CIM client: the operation and its parameters.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "command/cim_server/object_name.h"

/// The name of a class, for parameters that may also name an instance.
struct TClassName {
  std::string name;
};

/// An element that only writing operations take, such as the instance to be created.
struct TOtherElement {};

/// The value of a parameter; std::monostate stands for null.
typedef std::variant<std::monostate, std::string, std::vector<std::string>, TClassName, TObjectName, TOtherElement>
    TParameterValue;

struct TCimRequest {
  std::string messageId;
  std::string operation;  // as the client wrote it
  std::string nameSpace;  // "root/cimv2"
  std::vector<std::pair<std::string, TParameterValue>> parameters;
};

/// The request is refused by an HTTP status other than 200, before its operation is looked at. what() says why.
class TRefused : public std::runtime_error {
 public:
  TRefused(unsigned int status, const char* cimError, const std::string& reason)
      : std::runtime_error(reason), m_status(status), m_cimError(cimError) {}

  unsigned int GetStatus() const { return m_status; }
  /// The value of the header CIMError (DSP0200); empty if the status says enough.
  const std::string& GetCimError() const { return m_cimError; }

 private:
  unsigned int m_status;
  std::string m_cimError;
};
