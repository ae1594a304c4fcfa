#include "command/base/json_reader.h"

#include <gmock/gmock.h>

#include "command/base/unusable.h"

using testing::ElementsAre;

namespace {

typedef std::vector<std::string> TSteps;

/// What the rules of a made-up document do with the text, step by step, and at the end the message of a failure.
TSteps Read(const std::string& text, EUnexpected unexpected = EUnexpected::kUnknownSkipped, bool isLine = false) {
  TJsonReader reader({"x.json", "test", "write it anew", isLine}, unexpected);
  TSteps steps;
  const auto step = [&steps](const std::string& what) { return [&steps, what] { steps.push_back(what); }; };
  const auto take = [&](const std::string& what) {
    return [&steps, what](std::string& t) { steps.push_back(what + t); };
  };
  const auto takePlain = [&](TJsonValue& value) {
    steps.push_back(ToJson(value));
    return IsNumber(value);
  };
  const TJsonRule element =
      TJsonRule::Object({{"size", TJsonRule::Plain(takePlain, "must be a number")}}, step("begin"), step("end"));
  const TJsonRule document = TJsonRule::Object(
      {{"name", TJsonRule::Text(take("name "))},
       {"last", TJsonRule::Text([&](std::string&) { reader.Stop(); })},
       {"bad", TJsonRule::Text([&](std::string&) { reader.Fail("is bad"); })},
       {"list", TJsonRule::Array(element)},
       {"names", TJsonRule::Names(element, [&](const std::string& name) { steps.push_back(name); })}});
  try {
    reader.Read(text, document);
  } catch (const TUnusable& failure) {
    steps.emplace_back(failure.what());
  }
  return steps;
}

}  // namespace

TEST(JsonReader, GivesEachValueToItsRule) {
  EXPECT_THAT(Read(R"({"name": "a", "list": [{"size": 1}, {}], "names": {"b": {"size": -2.5}}})"),
              ElementsAre("name a", "begin", "1", "end", "begin", "end", "b", "begin", "-2.5", "end"));
}

TEST(JsonReader, SkipsWhatIsUnknownWithAllThatIsInIt) {
  EXPECT_THAT(Read(R"({"later": {"name": "b", "name": "c", "list": 7}, "name": "a"})"), ElementsAre("name a"));
}

TEST(JsonReader, RefusesWhatIsUnknownAndListsWhatIsKnown) {
  EXPECT_THAT(Read(R"({"list": [{"later": 1}]})", EUnexpected::kRefused),
              ElementsAre("begin", "x.json: \"list.later\" is not a known key; known here: size"));
  EXPECT_THAT(Read(R"({"later": 1})", EUnexpected::kRefused),
              ElementsAre("x.json: \"later\" is not a known key; known here: bad, last, list, name, names"));
}

TEST(JsonReader, RefusesWhatItsRuleDoesNotExpect) {
  EXPECT_THAT(Read(R"({"name": 1})"), ElementsAre("x.json: \"name\" must be a string"));
  EXPECT_THAT(Read(R"({"name": []})"), ElementsAre("x.json: \"name\" must be a string"));
  EXPECT_THAT(Read(R"({"list": {}})"), ElementsAre("x.json: \"list\" must be an array"));
  EXPECT_THAT(Read(R"({"names": {"b": 1}})"), ElementsAre("b", "x.json: \"names.b\" must be an object"));
  EXPECT_THAT(Read(R"({"list": [{"size": true}]})"),
              ElementsAre("begin", "true", "x.json: \"list.size\" must be a number"));
  EXPECT_THAT(Read("[]"), ElementsAre("x.json: the document must be an object"));
}

TEST(JsonReader, SkipsWhatItsRuleDoesNotExpectWhereThatIsWanted) {
  EXPECT_THAT(Read(R"({"name": 1, "list": {"size": 2}, "names": [{"size": 3}], "name2": 4})", EUnexpected::kSkipped),
              ElementsAre());
  EXPECT_THAT(Read(R"([{"name": "a"}])", EUnexpected::kSkipped), ElementsAre());
}

TEST(JsonReader, RefusesAKnownKeyTwice) {
  EXPECT_THAT(Read(R"({"name": "a", "name": "b"})"), ElementsAre("name a", "x.json: \"name\" appears twice"));
  EXPECT_THAT(Read(R"({"names": {"b": {}, "\u0062": {}}})"),
              ElementsAre("b", "begin", "end", "x.json: \"names.b\" appears twice"));
  EXPECT_THAT(Read(R"({"list": [{"size": 1}, {"size": 1}]})"), ElementsAre("begin", "1", "end", "begin", "1", "end"));
}

TEST(JsonReader, StopsWhereARuleSaysSo) {
  EXPECT_THAT(Read(R"({"name": "a", "last": "", "list": 7, no JSON)"), ElementsAre("name a"));
}

TEST(JsonReader, NamesTheKeyAtWhichARuleFails) {
  EXPECT_THAT(Read(R"({"bad": ""})"), ElementsAre("x.json: \"bad\" is bad"));
}

TEST(JsonReader, GoesSixteenValuesDeepAtMost) {
  const std::string open(15, '[');
  const std::string close(15, ']');
  EXPECT_THAT(Read(R"({"later": )" + open + close + "}"), ElementsAre());
  EXPECT_THAT(Read(R"({"later": [)" + open + close + "]}"),
              ElementsAre("x.json: is more than 16 values deep, which no test is; write it anew"));
}

TEST(JsonReader, SaysWhatIsNoJson) {
  EXPECT_THAT(Read("{]"),
              ElementsAre("x.json: is not JSON: parse error at line 1, column 2: syntax error while parsing "
                          "object key - unexpected ']'; expected string literal; write it anew"));
  EXPECT_THAT(Read("{]", EUnexpected::kRefused, true),
              ElementsAre("x.json: is not JSON: parse error at column 2: syntax error while parsing object key - "
                          "unexpected ']'; expected string literal; write it anew"));
  EXPECT_THAT(Read(std::string("{}\0{}", 5)), ElementsAre("x.json: is not JSON: it has a zero byte"));
}

TEST(JsonReader, KnowsWholeNumbersOfSixtyFourBits) {
  EXPECT_EQ(GetInteger(std::uint64_t{7}), 7);
  EXPECT_EQ(GetInteger(std::int64_t{-7}), -7);
  EXPECT_EQ(GetInteger(~std::uint64_t{0}), std::nullopt);
  EXPECT_EQ(GetInteger(7.0), std::nullopt);
  EXPECT_EQ(GetInteger(true), std::nullopt);
}
