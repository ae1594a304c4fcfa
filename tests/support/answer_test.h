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
