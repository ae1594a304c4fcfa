// Reads JSON that strangers send piece by piece, by rules that say what is expected where: the first wrong thing ends
// the reading, and nothing is kept except what a rule takes.
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

/// A value that is no object and no array.
typedef std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string> TJsonValue;

/// The whole number that the value is, if it has 64 bits with a sign.
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
  /// A plain value that `take` accepts; `expected` tells people what that is: "must be true or false".
  static TJsonRule Plain(std::function<bool(TJsonValue& value)> take, const char* expected);
  /// An object of known members.
  static TJsonRule Object(TMembers members, TStep begin = {}, TStep end = {});
  /// An object whose members have any names and are all of one kind. `name` is called before each.
  static TJsonRule Names(TJsonRule each, std::function<void(const std::string& name)> name);
  /// An array whose elements are all of one kind.
  static TJsonRule Array(TJsonRule each);

  unsigned int shapes;   // one or more of EShape
  const char* expected;  // what is said of a value that is none of them: "must be an object"
  std::function<bool(TJsonValue& value)> take = {};  // false: the value is not what is expected
  TMembers members = {};
  std::vector<TJsonRule> each = {};  // one, for an array or an object of any names
  std::function<void(const std::string& name)> name = {};
  TStep begin = {};  // before the first member or element, ...
  TStep end = {};    // ... and after the last, when the object or the array is closed
};

/// What becomes of values for which there is no rule, and of values that their rule does not expect.
enum class EUnexpected { kRefused, kUnknownSkipped, kSkipped };

/// What is read, as messages tell it.
struct TJsonSource {
  std::string name;       // where a message begins: the file, or the file and its line
  const char* kind;       // "captured machine"
  const char* cure = "";  // ends a message, after "; "; or empty
  bool isLine = false;    // the name says which line of a file it is
};

/// Values are nested 16 deep at most. In an object that has a rule, no member that has one may appear twice.
class TJsonReader {
 public:
  TJsonReader(TJsonSource source, EUnexpected unexpected);

  /// Throws TUnusable, naming the source and the key, for a text that is not JSON or not what the rule expects.
  void Read(const std::string& text, const TJsonRule& document);

  // For the functions of the rules:

  /// Throws TUnusable: the source, the key that is being read, and `what`.
  [[noreturn]] void Fail(const std::string& what) const;

  /// The source and the key that is being read, such as: ws-17.json: "bios.units.0.failAtBlock".
  std::string GetPlace() const;

  /// The rest of the text is not looked at.
  void Stop() { m_isStopped = true; }

 private:
  friend class TJsonEvents;

  /// An object or an array that is open.
  struct TFrame {
    const TJsonRule* rule;  // null for one that is skipped
    bool isArray;
    std::string key;        // of the member that comes next
    const TJsonRule* next;  // of that member, or of the elements; null when these are skipped
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
