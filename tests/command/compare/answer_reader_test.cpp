#include "command/compare/answer_reader.h"

#include <gmock/gmock.h>

#include "command/base/unusable.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

void ExpectUnusable(const std::string& text, const std::string& message) {
  try {
    ReadAnswer(text, "a.json");
    FAIL() << text;
  } catch (const TUnusable& error) {
    EXPECT_EQ(error.what(), "a.json: " + message);
  }
}

/// An answer with these members in its only instance.
std::string WithInstance(const std::string& members) {
  return R"({"requests": [{"instances": [{)" + members + R"(}]}], "outputs": []})";
}

std::string WithProperty(const std::string& property) {
  return WithInstance(R"("class": "C", "path": "P", "properties": {"Name": )" + property + "}");
}

std::string WithOutput(const std::string& members) { return R"({"requests": [], "outputs": [{)" + members + "}]}"; }

const std::string kCure = "; compare takes captured machines, and what --format json or --machines has written";

}  // namespace

TEST(AnswerReader, TakesWhatAComparisonNeeds) {
  const TReadAnswer answer = ReadAnswer(R"({
      "machine": "ws-17",
      "plugin": {"name": "x"},
      "requests": [{"classes": ["A", "B"], "log": [{"severity": "error"}], "instances": [
          {"class": "A", "path": "A.Key=\"1\"", "properties": {
              "Name": {"type": "string", "value": "a \"b\""},
              "Gamma": {"type": "real32", "value": 2.2},
              "Status": {"type": "uint16[]", "value": [2, 3]}}}]}],
      "outputs": [{"unit": 0, "connector": "card0-DP-1", "deviceID": null, "preferredMode": {"width": 1}}],
      "log": []})",
                                        "a.json");
  EXPECT_EQ(answer.machine, "ws-17");
  EXPECT_EQ(answer.error, std::nullopt);
  ASSERT_THAT(answer.requests, SizeIs(1));
  EXPECT_THAT(answer.requests[0].classes, ElementsAre("A", "B"));
  ASSERT_THAT(answer.requests[0].instances, SizeIs(1));
  EXPECT_EQ(answer.requests[0].instances[0].className, "A");
  EXPECT_EQ(json(answer.requests[0].instances[0].properties),
            json::parse(R"({"Name": "a \"b\"", "Gamma": 2.2, "Status": [2, 3]})"));
  ASSERT_THAT(answer.outputs, SizeIs(1));
  EXPECT_EQ(answer.outputs[0].connector, "card0-DP-1");
  EXPECT_EQ(answer.outputs[0].deviceId, "");
}

TEST(AnswerReader, TakesTheLineOfAMachineThatCouldNotBeAsked) {
  const TReadAnswer answer = ReadAnswer(R"({"machine": "ws-17", "error": "no such folder"})", "a.json");
  EXPECT_EQ(answer.machine, "ws-17");
  EXPECT_EQ(answer.error, "no such folder");
}

TEST(AnswerReader, KnowsACapturedMachineByItsKeyAndReadsNoFurther) {
  EXPECT_TRUE(ReadAnswer(R"({"systemName": "ws-17", "captured": 1, "requests": 1)", "a.json").isCapturedMachine);
  EXPECT_FALSE(ReadAnswer(R"({"plugin": {"captured": 1}, "requests": [], "outputs": []})", "a.json").isCapturedMachine);
}

TEST(AnswerReader, SaysWhatIsNoJson) {
  ExpectUnusable("{\n]",
                 "is not JSON: parse error at line 2, column 1: syntax error while parsing object key - unexpected "
                 "']'; expected string literal" +
                     kCure);
  ExpectUnusable(std::string("{}\0", 3), "is not JSON: it has a zero byte");
  ExpectUnusable(WithProperty(R"({"value": 1e999})"), "is not JSON: number overflow parsing '1e999'" + kCure);
}

TEST(AnswerReader, LeavesItToThePlaceOfALineWhichLineItIs) {
  ExpectUnusable("{]",
                 "is not JSON: parse error at column 2: syntax error while parsing object key - unexpected ']'; "
                 "expected string literal" +
                     kCure);
}

TEST(AnswerReader, RefusesWhatIsNoAnswer) {
  ExpectUnusable("[]", "the document must be an object");
  ExpectUnusable("7", "the document must be an object");
  ExpectUnusable("{}", "has no \"requests\", so it is no answer" + kCure);
  ExpectUnusable(R"({"requests": []})", "has no \"outputs\", so it is no answer" + kCure);
  ExpectUnusable(R"({"machine": "ws-17", "class": "QRXSG_VideoHead"})",
                 "has no \"requests\", so it is no answer" + kCure);
  ExpectUnusable(R"({"error": "x"})", "has no \"requests\", so it is no answer" + kCure);
}

TEST(AnswerReader, NamesTheKeyOfAValueOfAWrongType) {
  ExpectUnusable(R"({"machine": 1})", "\"machine\" must be a string");
  ExpectUnusable(R"({"error": ["x"]})", "\"error\" must be a string");
  ExpectUnusable(R"({"requests": {}})", "\"requests\" must be an array");
  ExpectUnusable(R"({"requests": [1]})", "\"requests\" must be an object");
  ExpectUnusable(R"({"requests": [{"classes": [{}]}]})", "\"requests.classes\" must be a string");
  ExpectUnusable(WithInstance(R"("class": null)"), "\"requests.instances.class\" must be a string");
  ExpectUnusable(WithInstance(R"("path": "P")"), "\"requests.instances\" has an instance without \"class\"");
  ExpectUnusable(WithProperty("7"), "\"requests.instances.properties.Name\" must be an object");
  ExpectUnusable(WithProperty("{}"), "\"requests.instances.properties.Name\" has no \"value\"");
  ExpectUnusable(WithProperty(R"({"value": {}})"),
                 "\"requests.instances.properties.Name.value\" must be a plain value, or an array of such");
  ExpectUnusable(WithProperty(R"({"value": [[]]})"),
                 "\"requests.instances.properties.Name.value\" must be a plain value, or an array of such");
  ExpectUnusable(WithOutput(R"("deviceID": 1)"), "\"outputs.deviceID\" must be a string or null");
}

TEST(AnswerReader, RefusesAKeyTwice) {
  ExpectUnusable(R"({"machine": "a", "machine": "b"})", "\"machine\" appears twice");
  ExpectUnusable(WithInstance(R"("class": "C", "class": "D")"), "\"requests.instances.class\" appears twice");
}

TEST(AnswerReader, RefusesAnEdidThatIsNotWholeBlocks) {
  for (const char* const edid : {"", "AAAA", "!", "AP/"}) {
    ExpectUnusable(WithOutput("\"edid\": \"" + std::string(edid) + "\""),
                   "\"outputs.edid\" must be whole 128-byte blocks in base64");
  }
}

TEST(AnswerReader, RefusesWhatIsTooDeep) {
  const std::string deep = R"({"later": )" + std::string(100000, '[');
  ExpectUnusable(deep, "is more than 16 values deep, which no answer is" + kCure);
}

TEST(AnswerReader, ObeysNothingInAMessage) {
  ExpectUnusable("{\"requests\": [{\"instances\": [{\"properties\": {\"\\u001b[2J\": 1}}]}]}",
                 "\"requests.instances.properties.\\x1b[2J\" must be an object");
}
