#include "command/report/answer_identity.h"

#include "command/base/text_encoding.h"
#include "command/base/utc_time.h"

std::string ShowSystemName(const TAnswerIdentity& identity) {
  return identity.systemName.empty() ? "A system without a name" : ToPrintable(identity.systemName);
}

std::string DescribeCollection(const TAnswerIdentity& identity) {
  const std::string shown = "hown by displayinfo " + identity.version;
  return identity.collected.empty() ? "S" + shown : "Collected " + ShowUtcTime(identity.collected) + ", s" + shown;
}
