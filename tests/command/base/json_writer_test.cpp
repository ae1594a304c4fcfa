#include "command/base/json_writer.h"

#include <gtest/gtest.h>
#include <utf8.h>

#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "command/base/text_encoding.h"

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

std::string Encode(unsigned int code) {
  std::string text;
  utf8::append(static_cast<char32_t>(code), std::back_inserter(text));
  return text;
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
  EXPECT_EQ(WriteString("a\"\\\b\f\n\r\t/\x01\x1F\x7F"), "\"a\\\"\\\\\\b\\f\\n\\r\\t/\\u0001\\u001f\\u007f\"");
}

TEST(JsonWriter, WritesEveryCharacterSoThatAParserReadsItBack) {
  for (unsigned int code = 0; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 0x101) {
    if (code >= 0xD800 && code < 0xE000) continue;  // surrogates are no characters
    const std::string text = "x" + Encode(code) + "y";
    EXPECT_EQ(json::parse(WriteString(text)), text) << code;
  }
}

TEST(JsonWriter, ReplacesBytesThatAreNotUtf8) { EXPECT_EQ(WriteString("\xC3\xA4\xC3!"), "\"\xC3\xA4\xEF\xBF\xBD!\""); }

TEST(JsonWriter, SendsNoCharacterThatATerminalObeys) {
  for (unsigned int code = 0; code < 0x3000; ++code) {
    if (ToPrintable(Encode(code)) == Encode(code) && code != '\t') continue;
    EXPECT_EQ(WriteString(Encode(code)).find(Encode(code)), std::string::npos) << code;
  }
}

TEST(JsonWriter, EscapesTheNamesOfMembersToo) {
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  writer.BeginObject();
  writer.Key(std::string("\""));
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

TEST(JsonWriter, WritesADocumentALine) {
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  for (const char* const name : {"a", "b"}) {
    writer.BeginObject();
    writer.Key(name);
    writer.Literal("1");
    writer.EndObject();
    writer.EndLine();
  }
  EXPECT_EQ(writer.TakeText(), "{\"a\":1}\n{\"b\":1}\n");
}

TEST(JsonWriter, ThrowsAtTheValueThatMakesTheTextTooLong) {
  TJsonWriter strings(TJsonWriter::ELayout::kOneLine, 12);
  strings.BeginArray();
  strings.String("01234567");
  EXPECT_THROW(strings.String("8"), std::length_error);
  TJsonWriter literals(TJsonWriter::ELayout::kOneLine, 3);
  EXPECT_THROW(literals.Literal("12345"), std::length_error);
}

TEST(JsonWriter, WritesAMemberAsItsTypeHasIt) {
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  writer.BeginObject();
  writer.Member("text", "a");
  writer.Member("string", std::string("b"));
  writer.Member("number", -3);
  writer.Member("truth", true);
  writer.Member("texts", std::vector<std::string>{"c", "d"});
  writer.Member("none", std::vector<std::string>());
  writer.EndObject();
  EXPECT_EQ(writer.TakeText(), R"({"text":"a","string":"b","number":-3,"truth":true,"texts":["c","d"],"none":[]})");
}
