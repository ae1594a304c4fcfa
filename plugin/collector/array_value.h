// Makes array values from lists.
#pragma once

#include <vector>

#include "host/cim_value.h"

/// An array value of the host's element type `code` with one element per item, in order. An empty list gives an array
/// of no elements, not a null value.
template <typename T>
NQRXZELT20::TCIMValue MakeArrayValue(NQRXZELT20::TCIMValue::TCIMType::ECIMType code, const std::vector<T>& items) {
  const std::vector<NQRXZELT20::TCIMValue> elements(items.begin(), items.end());
  return NQRXZELT20::TCIMValue(NQRXZELT20::TCIMValue::TCIMType(code), static_cast<unsigned int>(elements.size()),
                               elements);
}
