// Writes JSON text value by value, without building a tree first: an answer is mostly strings that already exist, and
// building, copying and freeing a tree of them took most of the time of a short run.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "command/base/text_buffer.h"

class TJsonWriter {
 public:
  enum class ELayout { kIndented, kOneLine };

  /// Writing a value throws std::length_error if it makes the text longer than `maxSize` bytes.
  explicit TJsonWriter(ELayout layout, std::size_t maxSize = std::numeric_limits<std::size_t>::max());

  void BeginObject();
  void EndObject();
  void BeginArray();
  void EndArray();

  /// The name of the next value; only inside an object. One that stands in the code is written as it is: it has nothing
  /// to escape.
  void Key(const char* name);
  void Key(const std::string& name);

  /// A string of any bytes, written as QuoteJson does.
  void String(std::string_view text);

  /// From now on `change` is applied to every string; null: none is changed.
  void ChangeStrings(std::string (*change)(const std::string& text)) { m_change = change; }

  /// A member of an object: its name and its value, which is a string, a number, a Boolean or an array of strings.
  template <typename TName, typename T>
  void Member(const TName& name, const T& value) {
    Key(name);
    if constexpr (std::is_convertible_v<T, std::string_view>) {
      String(value);
    } else if constexpr (std::is_same_v<T, bool>) {
      Literal(value ? "true" : "false");
    } else if constexpr (std::is_arithmetic_v<T>) {
      Literal(std::to_string(value));
    } else {
      BeginArray();
      for (const std::string& text : value) String(text);
      EndArray();
    }
  }

  /// A value that is already JSON, such as a number or null.
  void Literal(std::string_view text);

  /// Ends the line after a complete document; the next value begins a new one.
  void EndLine();

  /// Returns the text so far and empties the writer.
  std::string TakeText();

 private:
  void Begin(char bracket);
  void End(char bracket);
  void Separate();
  void EndKey();
  void BreakLine();
  void CheckSize() const;

  ELayout m_layout;
  std::string (*m_change)(const std::string& text) = nullptr;
  std::size_t m_maxSize;
  TTextBuffer m_text;
  std::size_t m_depth = 0;
  bool m_isFirst = true;  // true while the innermost object or array is empty
  bool m_followsKey = false;
};
