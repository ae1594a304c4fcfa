// A callback for ICIMClass::EnumerateInstances that appends what it is given to a vector.
#pragma once

#include <boost/shared_ptr.hpp>

#include <functional>
#include <vector>

namespace NQRXZELT20 {

// The host derives it from std::unary_function, which C++11 deprecated and the C++ library still offers.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

/// Appends each argument to a vector, which the caller owns and keeps alive. Returns true, so that the enumeration goes
/// on.
template <typename T>
class TAddToVectorCallback : public std::unary_function<boost::shared_ptr<T>, bool> {
 public:
  explicit TAddToVectorCallback(std::vector<boost::shared_ptr<T>>* target) : m_target(target) {}

  bool operator()(boost::shared_ptr<T> element) const {
    m_target->push_back(element);
    return true;
  }

 private:
  std::vector<boost::shared_ptr<T>>* m_target;
};

#pragma GCC diagnostic pop

}  // namespace NQRXZELT20
