// Functions that both association passes use to go through the instances that the host holds.
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

#include "host/cim_objects.h"
#include "plugin/collector/property_map.h"

typedef std::vector<boost::shared_ptr<NQRXZELT20::ICIMInstance>> TInstanceList;

/// All instances that the host holds of a class, looked up in that namespace. Only the look-up of the class gets the
/// association context. Host failures pass through.
TInstanceList EnumerateInstances(NQRXZELT20::ICIMNamespace& ns, const std::string& className);

/// A property of an instance as text.
std::string GetPropertyText(NQRXZELT20::ICIMInstance& instance, const std::string& name);

/// The object path of an instance as a reference value.
NQRXZELT20::TCIMValue GetPathValue(NQRXZELT20::ICIMInstance& instance);
