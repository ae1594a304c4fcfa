// The out-of-line parts of the host's interfaces, so that their type information and vtables exist only in this
// library.
#include "host/cim_objects.h"
#include "host/exception.h"
#include "host/logger.h"
#include "host/plugin_callbacks.h"

namespace NQRXZELT20 {

ICIMNamespace::~ICIMNamespace() = default;
ICIMClass::~ICIMClass() = default;
ICIMProperty::~ICIMProperty() = default;
ICIMInstance::~ICIMInstance() = default;
ILogger::~ILogger() = default;
IPluginCallbacks::~IPluginCallbacks() = default;
IPluginBasicQueryCallbacks::~IPluginBasicQueryCallbacks() = default;

TZELTException::TZELTException(const std::string& description) : m_description(description) {}
TZELTException::TZELTException(const TZELTException& other) = default;
TZELTException& TZELTException::operator=(const TZELTException& other) = default;
TZELTException::~TZELTException() = default;
const char* TZELTException::what() const noexcept { return m_description.c_str(); }

}  // namespace NQRXZELT20
