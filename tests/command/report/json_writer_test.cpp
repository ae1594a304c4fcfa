#include "command/report/json_writer.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

/// A document with every kind of nesting.
std::string Write(TJsonWriter::ELayout layout) {
  TJsonWriter writer(layout);
  writer.BeginObject();
  writer.Key("empty");
  writer.BeginArray();
  writer.EndArray();
  writer.Key("nested");
  writer.BeginArray();
  writer.BeginObject();
  writer.EndObject();
  writer.BeginObject();
  writer.Key("a");
  writer.String("text");
  writer.Key("b");
  writer.Literal("1.5");
  writer.EndObject();
  writer.Literal("null");
  writer.EndArray();
  writer.EndObject();
  return writer.TakeText();
}

std::string WriteString(const std::string& text) {
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  writer.String(text);
  return writer.TakeText();
}

}  // namespace

TEST(JsonWriter, IndentsEachLevel) {
  EXPECT_EQ(Write(TJsonWriter::ELayout::kIndented), R"({
  "empty": [],
  "nested": [
    {},
    {
      "a": "text",
      "b": 1.5
    },
    null
  ]
})");
}

TEST(JsonWriter, WritesTheSameOnOneLine) {
  EXPECT_EQ(Write(TJsonWriter::ELayout::kOneLine), R"({"empty":[],"nested":[{},{"a":"text","b":1.5},null]})");
}

TEST(JsonWriter, EscapesWhatAStringMayNotHold) {
  EXPECT_EQ(WriteString("a\"\\\b\f\n\r\t/\x01\x1F\x7F"), "\"a\\\"\\\\\\b\\f\\n\\r\\t/\\u0001\\u001f\x7F\"");
}

TEST(JsonWriter, WritesEveryCharacterSoThatAParserReadsItBack) {
  for (int code = 0; code < 0x80; ++code) {
    const std::string text(1, static_cast<char>(code));
    EXPECT_EQ(json::parse(WriteString("x" + text + "y")), "x" + text + "y") << code;
  }
}

TEST(JsonWriter, ReplacesBytesThatAreNotUtf8) { EXPECT_EQ(WriteString("\xC3\xA4\xC3!"), "\"\xC3\xA4\xEF\xBF\xBD!\""); }

TEST(JsonWriter, EscapesTheNamesOfMembersToo) {
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  writer.BeginObject();
  writer.Key("\"");
  writer.Literal("1");
  writer.EndObject();
  EXPECT_EQ(writer.TakeText(), R"({"\"":1})");
}

TEST(JsonWriter, BeginsAnewAfterItsTextWasTaken) {
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  writer.Literal("1");
  EXPECT_EQ(writer.TakeText(), "1");
  writer.Literal("2");
  EXPECT_EQ(writer.TakeText(), "2");
}
