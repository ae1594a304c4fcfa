// Remarks: what people are told on standard error in addition to the answer.
#pragma once

#include <iostream>
#include <string>

#include "command/base/text_encoding.h"

/// Writes one line by one call, since several processes may share standard error. Writes nothing for an empty remark.
inline void ShowRemark(const std::string& remark) {
  if (!remark.empty()) std::cerr << "displayinfo: " + ToMessage(remark) + "\n";
}
