// A host made only of doubles, for the association passes. It answers only if an operation gets the right context, and
// fails where a test wants it to.
#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/mock_cim.h"

class TMockAssociation {
 public:
  typedef std::vector<boost::shared_ptr<NQRXZELT20::ICIMInstance>> TInstances;

  boost::shared_ptr<testing::StrictMock<TMockClass>> requested;
  boost::shared_ptr<testing::StrictMock<TMockClass>> first;
  boost::shared_ptr<testing::StrictMock<TMockClass>> second;

  /// Makes two classes by name, each with the property that its instances are asked for.
  TMockAssociation(const std::string& firstClass, const std::string& firstProperty, const std::string& secondClass,
                   const std::string& secondProperty);
  ~TMockAssociation();

  /// Adds an instance with that property value, which is also its path.
  TMockInstance& AddFirst(const std::string& value);
  TMockInstance& AddSecond(const std::string& value);

  /// The same with a path of its own.
  TMockInstance& AddFirst(const std::string& value, const std::string& path);
  TMockInstance& AddSecond(const std::string& value, const std::string& path);

  /// Lets both classes enumerate what was added.
  void Hold();

 private:
  struct TDoubled;

  TMockInstance& Add(TInstances& list, const std::string& property, const std::string& value, const std::string& path);

  std::string m_firstProperty;
  std::string m_secondProperty;
  boost::shared_ptr<testing::StrictMock<TMockNamespace>> m_namespace;
  TInstances m_firsts;
  TInstances m_seconds;
  std::vector<std::unique_ptr<TDoubled>> m_doubled;
};
