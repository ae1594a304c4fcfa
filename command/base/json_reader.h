// Reads strangers' JSON piece by piece. Rules say what is expected where; the first error ends the reading, and only
// what a rule takes is kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// A value that is neither an object nor an array.
typedef std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string> TJsonValue;

/// The value as a whole number; nothing if it is none, or does not fit.
std::optional<std::int64_t> GetInteger(const TJsonValue& value);

bool IsNumber(const TJsonValue& value);

/// The value as JSON text.
std::string ToJson(const TJsonValue& value);

/// What a value must be, and what is done with it. The functions may be empty.
struct TJsonRule {
  typedef std::function<void()> TStep;
  typedef std::vector<std::pair<std::string, TJsonRule>> TMembers;

  enum EShape : unsigned int { kPlain = 1, kObject = 2, kArray = 4 };

  /// A string.
  static TJsonRule Text(std::function<void(std::string& text)> take);
  /// A plain value that `take` accepts; `expected` tells people what it must be: "must be true or false".
  static TJsonRule Plain(std::function<bool(TJsonValue& value)> take, const char* expected);
  /// An object whose members have known names.
  static TJsonRule Object(TMembers members, TStep begin = {}, TStep end = {});
  /// An object whose members may have any name and all follow one rule. `name` is called before each of them.
  static TJsonRule Names(TJsonRule each, std::function<void(const std::string& name)> name);
  /// An array whose elements all follow one rule.
  static TJsonRule Array(TJsonRule each);

  unsigned int shapes;                               // one or more of EShape
  const char* expected;                              // the message for any other value: "must be an object"
  std::function<bool(TJsonValue& value)> take = {};  // false: the value is not what is expected
  TMembers members = {};
  std::vector<TJsonRule> each = {};  // the one rule of an array's elements, or of members with any name
  std::function<void(const std::string& name)> name = {};
  TStep begin = {};  // before the first member or element, ...
  TStep end = {};    // ... and after the last, when the object or the array is closed
};

/// What happens to values without a rule, and to values that their rule does not expect: both are refused, only the
/// latter are, or both are skipped.
enum class EUnexpected { kRefused, kUnknownSkipped, kSkipped };

/// How messages name what is being read.
struct TJsonSource {
  std::string name;       // the file, or the file and its line: the beginning of a message
  const char* kind;       // "captured machine"
  const char* cure = "";  // ends a message, after "; "; or empty
  bool isLine = false;    // the name includes the line, so the parser's line number is left out
};

/// Refuses values nested more than 16 deep, and a member with a rule that appears twice in its object.
class TJsonReader {
 public:
  TJsonReader(TJsonSource source, EUnexpected unexpected);

  /// Throws TUnusable, which names the source and the key, if the text is not JSON or not what the rule expects.
  void Read(const std::string& text, const TJsonRule& document);

  // For the functions in the rules:

  /// Throws TUnusable with the source, the key that is being read, and `what`.
  [[noreturn]] void Fail(const std::string& what) const;

  /// The source and the key that is being read, such as: ws-17.json: "bios.units.0.failAtBlock".
  std::string GetPlace() const;

  /// Ends the reading: the rest of the text is ignored.
  void Stop() { m_isStopped = true; }

 private:
  friend class TJsonEvents;

  /// An object or array whose end has not come yet.
  struct TFrame {
    const TJsonRule* rule;  // null if it is skipped
    bool isArray;
    std::string key;        // of the next member
    const TJsonRule* next;  // for the next member or element; null if it is skipped
    std::set<std::string> seen;
  };

  bool TakeKey(const std::string& name);
  bool TakeValue(TJsonValue value);
  bool Open(TJsonRule::EShape shape);
  bool Close();
  const TJsonRule* FindMember(const TJsonRule& object, const std::string& name) const;
  const TJsonRule* GetNext() const { return m_frames.empty() ? m_document : m_frames.back().next; }
  std::string GetKey() const;
  [[noreturn]] void FailToParse(const std::string& reason) const;
  [[noreturn]] void FailWithCure(const std::string& what) const;

  TJsonSource m_source;
  EUnexpected m_unexpected;
  const TJsonRule* m_document = nullptr;
  std::vector<TFrame> m_frames;
  bool m_isStopped = false;
};
