#include "command/cim_server/cim_model.h"

#include <gtest/gtest.h>

#include "tests/command/cim_server/cim_answer.h"

namespace {

TObjectName NameMode(const std::string& id) { return {"QRXSG_MonitorResolution", {{"SettingID", id}}}; }

constexpr std::size_t kOfServer = 3;  // instances by which the server describes itself

}  // namespace

TEST(CimModel, HoldsValuesAsCimXmlWritesThem) {
  const TCimModel model(MakeAnswerJson(MakeMonitorJson("one")));
  const TCimInstance& monitor = model.GetInstances().at(0);
  EXPECT_EQ(monitor.Find("bandwidth")->values, std::vector<std::string>{"140"});
  EXPECT_EQ(monitor.Find("DPMSStandby")->values, std::vector<std::string>{"TRUE"});
  EXPECT_EQ(monitor.Find("EDIDVersion")->values, std::vector<std::string>{"1.0e+20"});
  EXPECT_EQ(monitor.Find("OperationalStatus")->values, (std::vector<std::string>{"2", "3"}));
  EXPECT_TRUE(monitor.Find("Name")->isNull);
  EXPECT_EQ(monitor.Find("Gamma"), nullptr);
}

TEST(CimModel, ReplacesWhatXmlDoesNotHave) {
  const TCimModel model(MakeAnswerJson(MakeModeJson("a\\u0001")));
  const std::string clean = "a\xEF\xBF\xBD";
  EXPECT_EQ(model.GetInstances().at(0).Find("SettingID")->values, std::vector<std::string>{clean});
  EXPECT_TRUE(model.Find(NameMode(clean)));
}

TEST(CimModel, HoldsTheLastCommitOfAPathInTheFirstsPlace) {
  std::string changed = MakeMonitorJson("one");
  changed.replace(changed.find("140"), 3, "150");
  const TCimModel model(MakeAnswerJson(MakeMonitorJson("one") + "," + MakeModeJson("a") + "," + changed));
  ASSERT_EQ(model.GetInstances().size(), 2U + kOfServer);
  EXPECT_EQ(model.GetInstances()[0].Find("Bandwidth")->values, std::vector<std::string>{"150"});
}

TEST(CimModel, FindsAKeyAsItComesBeforeItsEscapesAreUndone) {
  // JSON and the path escape a backslash once each.
  const std::string mode =
      R"({"class": "QRXSG_MonitorResolution", "properties": {}, "path": "QRXSG_MonitorResolution.SettingID=\")";
  const TCimModel single(MakeAnswerJson(mode + R"(a\\\\b\""})"));
  EXPECT_EQ(single.Find(NameMode(R"(a\b)")), 0U);
  EXPECT_EQ(single.Find(NameMode(R"(a\\b)")), 0U);
  EXPECT_EQ(single.Find(NameMode(R"(a\\\\b)")), std::nullopt);
  EXPECT_EQ(single.Find(NameMode("ab")), std::nullopt);
  const TCimModel both(MakeAnswerJson(mode + R"(a\\\\b\""},)" + mode + R"(a\\\\\\\\b\""})"));
  EXPECT_EQ(both.Find(NameMode(R"(a\\b)")), 1U);
}

TEST(CimModel, FindsAKeyWhoseLineEndsAnXmlReaderHasJoined) {
  const TCimModel model(
      MakeAnswerJson(MakeModeJson("a\\r\\nb\\r") + "," + MakeModeJson("c\\rd") + "," + MakeModeJson("c\\nd")));
  EXPECT_EQ(model.Find(NameMode("a\r\nb\r")), 0U);
  EXPECT_EQ(model.Find(NameMode("a\nb\n")), 0U);
  EXPECT_EQ(model.Find(NameMode("c\rd")), 1U);
  EXPECT_EQ(model.Find(NameMode("c\nd")), 2U);
}

TEST(CimModel, KnowsWhichInstancesAnAssociationLinks) {
  const TCimModel model(MakeTwoMonitorsJson());
  ASSERT_EQ(model.GetLinksTo(0).size(), 1U);
  EXPECT_EQ(model.GetLinksTo(0)[0].association, 4U);
  EXPECT_EQ(model.GetLinksTo(0)[0].role, "Element");
  ASSERT_EQ(model.GetLinksOf(5).size(), 2U);
  EXPECT_EQ(model.GetLinksOf(5)[1].object, 3U);
}

TEST(CimModel, LeavesOutLinksToInstancesThatAreNotThere) {
  const TCimModel model(MakeAnswerJson(MakeModeJson("a") + "," + MakeSettingJson("one", "a")));
  ASSERT_EQ(model.GetLinksOf(1).size(), 1U);
  EXPECT_EQ(model.GetLinksOf(1)[0].role, "Setting");
}

TEST(CimModel, LinksAnOutputToTheMonitorThatStandsForIt) {
  const TCimModel model(MakeAnswerJson(MakeMonitorJson("one") + "," + MakeMonitorJson("two"),
                                       R"({"unit": 0, "deviceID": null}, {"unit": 1, "deviceID": "two"},
                                          {"unit": 2, "deviceID": "three"})"));
  const auto name = [](const char* unit) { return TObjectName{"DI_Output", {{"SystemName", "N"}, {"Unit", unit}}}; };
  const std::optional<std::size_t> output = model.Find(name("1"));
  ASSERT_TRUE(output);
  const auto& links = model.GetLinksTo(*output);
  ASSERT_EQ(links.size(), 1U);
  EXPECT_STREQ(model.GetInstances()[links[0].association].declaration->name, "DI_OutputMonitor");
  EXPECT_EQ(links[0].role, "Dependent");
  ASSERT_EQ(model.GetLinksTo(1).size(), 1U);
  EXPECT_EQ(model.GetLinksTo(1)[0].association, links[0].association);
  EXPECT_EQ(model.GetLinksTo(1)[0].role, "Antecedent");
  EXPECT_TRUE(model.Find(model.GetInstances()[links[0].association].name));
  EXPECT_TRUE(model.GetLinksTo(model.Find(name("0")).value()).empty());
  EXPECT_TRUE(model.GetLinksTo(model.Find(name("2")).value()).empty());
}

TEST(CimModel, IsNotMadeOfAnotherText) {
  for (const char* const text : {"", "{", "{}", "[]", R"({"error": "none"})", R"({"requests": [{"instances": [{}]}]})",
                                 R"({"requests": [{"instances": [{"class": "A", "path": "A", "properties": {}}]}]})",
                                 R"({"requests": [], "outputs": [{}]})"}) {
    EXPECT_THROW(static_cast<void>(TCimModel(std::string(text))), std::exception) << text;
  }
}
