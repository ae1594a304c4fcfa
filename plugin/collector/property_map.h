// The properties of one future CIM instance, and the one rule for inserting them.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "host/cim_value.h"

/// Property values by name, in byte-wise order of the names; the same type as the host's query context.
typedef std::map<std::string, NQRXZELT20::TCIMValue> PropertyMap;

/// Inserts the pair unless the value is null or the map already holds the name: a property without a value is left out
/// of the instance, and the first source that has a value for a property wins.
template <typename TMap>
void InsertProperty(TMap* map, std::string name, NQRXZELT20::TCIMValue value) {
  if (value.IsNull()) return;
  map->insert(std::make_pair(std::move(name), std::move(value)));
}
