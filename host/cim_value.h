// The host's CIM value types: dates, object paths and the value a property holds.
//
// They are declared here and implemented by the host's core library. All of them are values: they are copied freely,
// and a copy does not change when the original does.
#pragma once

#include <boost/shared_ptr.hpp>

#include <map>
#include <string>
#include <vector>

#include "host/visibility.h"

namespace NQRXZELT20 {

/// A CIM datetime: a local date and time with its offset from UTC, or null.
class HOST_API TCIMDateTime {
 public:
  /// A null datetime.
  TCIMDateTime();

  bool IsNull() const;

  /// Makes this the given moment. `month` and `day` count from 1; `utcOffsetMinutes` is positive east of Greenwich.
  void Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hours, unsigned short minutes,
           unsigned short seconds, unsigned int microseconds, short utcOffsetMinutes);

  /// The CIM text form "yyyymmddhhmmss.mmmmmmsutc" (DMTF DSP0004), or the empty string for a null datetime.
  std::string GetText() const;

 private:
  std::string m_text;
};

/// The object path of one instance, built by the host from the instance's class and key properties.
class HOST_API TCIMReference {
 public:
  /// `path`: the object path as text, in the host's canonical form.
  explicit TCIMReference(const std::string& path);

  /// True if both paths name the same instance.
  bool operator==(const TCIMReference& other) const;

  const std::string& GetText() const;

 private:
  std::string m_path;
};

/// One CIM value: null, a scalar, or an array.
class HOST_API TCIMValue {
 public:
  /// The type tag of a value, or of an array's elements.
  class HOST_API TCIMType {
   public:
    enum ECIMType {
      kNull = 0,
      kUint8 = 2,
      kUint16 = 4,
      kUint32 = 6,
      kReal32 = 9,
      kBoolean = 11,
      kString = 13,
      kDateTime = 14,
      kReference = 15
    };

    TCIMType(ECIMType code);  // NOLINT(google-explicit-constructor): array values are built from the bare code
    ECIMType GetCode() const;

   private:
    ECIMType m_code;
  };

  /// A null value.
  TCIMValue();

  // These are implicit conversions, so that a property can be given as a C++ value.
  // NOLINTBEGIN(google-explicit-constructor)
  TCIMValue(bool value);
  TCIMValue(unsigned char value);
  TCIMValue(unsigned short value);
  TCIMValue(unsigned int value);
  TCIMValue(float value);
  TCIMValue(const char* value);
  TCIMValue(const std::string& value);
  TCIMValue(const TCIMDateTime& value);
  TCIMValue(TCIMReference& value);
  // NOLINTEND(google-explicit-constructor)

  /// An array of `count` elements of one type, in order. Throws TZELTException if `count` is not the size of
  /// `elements`, or if an element has another type.
  TCIMValue(TCIMType type, unsigned int count, const std::vector<TCIMValue>& elements);

  /// True for a null value. An array without elements is not null.
  bool IsNull() const;

  /// The value's text: a string as it is, a number in decimal, a boolean as "true" or "false", a datetime or a
  /// reference in its text form; the empty string for a null value and for an array.
  operator std::string() const;  // NOLINT(google-explicit-constructor): callers assign a value to a string

  /// The type of the value, or of the elements of an array; kNull for a null value.
  TCIMType GetType() const;
  bool IsArray() const;

  // The content. Each function throws TZELTException if the value is of another kind.
  bool GetBoolean() const;
  /// The value of any of the three unsigned integer types.
  unsigned int GetUnsigned() const;
  float GetReal() const;
  /// The text of a string, a datetime or a reference.
  const std::string& GetText() const;
  const std::vector<TCIMValue>& GetElements() const;

 private:
  struct TContent;
  boost::shared_ptr<const TContent> m_content;  // shared and never changed: copying a value copies the pointer
};

/// The last argument of every CIM operation: settings for the query by name, normally none.
typedef std::map<std::string, TCIMValue> TCIMQueryContext;

}  // namespace NQRXZELT20
