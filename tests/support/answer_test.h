// The base of the tests of reports: an answer, made of instances that the test commits.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "command/collection/collection.h"
#include "embedded_host/schema.h"

class TAnswerTest : public testing::Test {
 protected:
  typedef std::map<std::string, NQRXZELT20::TCIMValue> TValues;

  TAnswer answer;

  /// Every property of a monitor that says all it can.
  static TValues MakeFullMonitor() {
    using NQRXZELT20::TCIMValue;
    const auto byte = [](unsigned int value) { return TCIMValue(static_cast<unsigned char>(value)); };
    NQRXZELT20::TCIMDateTime date;
    date.Set(2008, 4, 1, 6, 0, 0, 0, 0);
    return {{"DeviceID", TCIMValue("Monitor 1")},
            {"Name", TCIMValue("Acme A190")},
            {"MonitorManufacturer", TCIMValue("ACM")},
            {"SerialNumber", TCIMValue("A190-1")},
            {"ManufacturingDate", TCIMValue(date)},
            {"HorizontalImageSize", byte(38)},
            {"VerticalImageSize", byte(30)},
            {"Gamma", TCIMValue(2.2F)},
            {"MinHorizFreq", byte(30)},
            {"MaxHorizFreq", byte(83)},
            {"MinVertFreq", byte(56)},
            {"MaxVertFreq", byte(76)},
            {"Bandwidth", TCIMValue(140U)},
            {"DPMSStandby", TCIMValue(true)},
            {"DPMSSuspend", TCIMValue(false)},
            {"DPMSActiveOff", TCIMValue(true)},
            {"SupportedDigitalInterface", byte(2)},
            {"EDIDVersion", TCIMValue(1.3F)}};
  }

  void Commit(const std::string& className, const TValues& values) {
    const auto instance = m_store->GetClass(className, {})->CreateInstance({});
    for (const auto& [name, value] : values) instance->SetProperty(name, value, {});
    instance->Commit({});
  }

  /// Adds a request for these classes to the answer, with what was committed since the one before.
  void EndRequest(const TRequest& classes, const std::vector<TLogEntry>& log = {}) {
    answer.requests.push_back({classes, m_store->TakeCommits(), log});
  }

 private:
  boost::shared_ptr<TCimStore> m_store = TCimStore::Create(GetSchema());
};
