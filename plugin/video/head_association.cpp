// Links each video head to the controllers that carry its display id.
#include "host/exception.h"
#include "plugin/collector/association.h"
#include "plugin/collector/data_to_string.h"
#include "plugin/video/video_info.h"

using NQRXZELT20::ICIMInstance;
using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TZELTException;

namespace {

const std::string kDisplayId = "DisplayId";

/// Appends a pair for each controller with the head's display id. A head without one gets no pair.
void Link(ICIMInstance& head, const TInstanceList& controllers, std::vector<PropertyMap>& pairs) {
  const std::string displayId = GetPropertyText(head, kDisplayId);
  if (displayId.empty()) return;
  for (const auto& controller : controllers) {
    if (GetPropertyText(*controller, kDisplayId) != displayId) continue;
    PropertyMap pair;
    InsertProperty(&pair, "Antecedent", GetPathValue(*controller));
    InsertProperty(&pair, "Dependent", GetPathValue(head));
    pairs.push_back(pair);
  }
}

}  // namespace

std::vector<PropertyMap> TVideoInfo::MakeHeadAssociation() {
  std::vector<PropertyMap> pairs;
  TInstanceList controllers;
  TInstanceList heads;
  try {
    const boost::shared_ptr<ICIMNamespace> ns = GetCIMClass()->GetNamespace(TCIMQueryContext());
    controllers = EnumerateInstances(*ns, kController);
    heads = EnumerateInstances(*ns, kHead);
  } catch (const TZELTException& exception) {
    WriteStatus(
        std::string(
            "Video controller-head association encountered an error\t\t\t\t\t\t\t enumerating CIM instances for ") +
        kController + " OR " + kHead + " Error Code: " + dataToString(exception.what()));
    return pairs;
  }
  for (const auto& head : heads) {
    try {
      Link(*head, controllers, pairs);
    } catch (const TZELTException&) {
      // Only the rest of this head's pairs is lost.
    }
  }
  return pairs;
}
