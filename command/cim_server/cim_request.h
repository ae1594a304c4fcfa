// A request of a CIM client, read: which operation, and what it was given.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "command/cim_server/object_name.h"

/// The name of a class, where an instance's name is allowed as well.
struct TClassName {
  std::string name;
};

/// An element that no reading operation takes, such as the instance to be created.
struct TOtherElement {};

/// std::monostate: null.
typedef std::variant<std::monostate, std::string, std::vector<std::string>, TClassName, TObjectName, TOtherElement>
    TParameterValue;

struct TCimRequest {
  std::string messageId;
  std::string operation;  // as the client wrote it
  std::string nameSpace;  // "root/cimv2"
  std::vector<std::pair<std::string, TParameterValue>> parameters;
};

/// The request is refused before any CIM is looked at: an HTTP status other than 200. what() says why, for people.
class TRefused : public std::runtime_error {
 public:
  TRefused(unsigned int status, const char* cimError, const std::string& reason)
      : std::runtime_error(reason), m_status(status), m_cimError(cimError) {}

  unsigned int GetStatus() const { return m_status; }
  /// For the header CIMError (DSP0200); empty when the status says it all.
  const std::string& GetCimError() const { return m_cimError; }

 private:
  unsigned int m_status;
  std::string m_cimError;
};
