// What people are told in addition to the answer.
#pragma once

#include <iostream>
#include <string>

#include "command/base/text_encoding.h"

/// One line on standard error, written at once since several processes may share it. An empty remark is none.
inline void ShowRemark(const std::string& remark) {
  if (!remark.empty()) std::cerr << "displayinfo: " + ToMessage(remark) + "\n";
}
