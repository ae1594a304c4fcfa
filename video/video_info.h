// TVideoInfo: the collector for the video classes.
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

#include "collector/display.h"

class TVideoInfo : public TDisplay {
 public:
  explicit TVideoInfo(boost::shared_ptr<NQRXZELT20::ICIMClass> cimClass);
  TVideoInfo(boost::shared_ptr<NQRXZELT20::ICIMClass> cimClass, NQRXZELT20::TPluginManagerProvider* provider);

  using TDisplay::GetCIMInstances;

  /// No instances yet.
  std::vector<NQRXZELT20::ICIMInstance*> GetCIMInstances(std::string className) override;
};
