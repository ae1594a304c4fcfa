#include "command/report/schema_document.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>

#include "embedded_host/log.h"
#include "embedded_host/schema.h"

using nlohmann::json;
using testing::HasSubstr;

TEST(SchemaText, TellsTypeKeyUnitMeaningAndSource) {
  const std::string text = MakeSchemaText();
  EXPECT_THAT(text, HasSubstr("QRXSG_DesktopMonitor\n"
                              "  A monitor that answers the video BIOS with an EDID.\n"
                              "  From the EDID of the monitor.\n"
                              "  CreationClassName             string    key\n"));
  EXPECT_THAT(text, HasSubstr("  Bandwidth                     uint32    MHz\n      The highest pixel clock.\n"));
}

TEST(SchemaText, IsEightyColumnsWideAtMost) {
  std::istringstream lines(MakeSchemaText());
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

TEST(SchemaMof, DeclaresKeysUnitsAndArrays) {
  const std::string mof = MakeSchemaMof();
  EXPECT_THAT(mof, HasSubstr("class QRXSG_MonitorResolution {\n    [Key, Description("));
  EXPECT_THAT(mof,
              HasSubstr("    [Units(\"MHz\"), Description(\"The highest pixel clock.\")]\n    uint32 Bandwidth;\n"));
  EXPECT_THAT(mof, HasSubstr("    uint16 OperationalStatus[];\n"));
}

TEST(SchemaMof, DeclaresAssociationsWithTheClassesTheyReferTo) {
  EXPECT_THAT(MakeSchemaMof(), HasSubstr("[Association, Description(\"Links a monitor to a mode.\")]\n"
                                         "class QRXSG_MonitorSetting {\n"
                                         "    [Key, Description(\"The monitor.\")]\n"
                                         "    QRXSG_DesktopMonitor REF Element;\n"));
}

TEST(SchemaMof, DeclaresEveryClassBeforeAReferenceToIt) {
  const std::regex word("class (\\w+) \\{|(\\w+) REF ");
  const std::string mof = MakeSchemaMof();
  std::set<std::string> declared;
  int references = 0;
  for (std::sregex_iterator match(mof.begin(), mof.end(), word), end; match != end; ++match) {
    if ((*match)[1].matched) declared.insert((*match)[1]);
    if (!(*match)[2].matched) continue;
    EXPECT_EQ(declared.count((*match)[2]), 1U) << (*match)[2];
    ++references;
  }
  EXPECT_EQ(references, 4);
}

TEST(SchemaMof, DeclaresItsQualifiersFirst) {
  EXPECT_THAT(MakeSchemaMof(), testing::StartsWith("Qualifier Key : boolean = false,\n"
                                                   "    Scope(reference, property),\n"
                                                   "    Flavor(DisableOverride);\n"
                                                   "Qualifier Association : boolean = false,\n"
                                                   "    Scope(association),\n"
                                                   "    Flavor(DisableOverride);\n"
                                                   "Qualifier Description : string = null,\n"
                                                   "    Scope(any),\n"
                                                   "    Flavor(EnableOverride, Translatable);\n"
                                                   "Qualifier Units : string = null,\n"
                                                   "    Scope(property, method, parameter),\n"
                                                   "    Flavor(EnableOverride, Translatable);\n\n"));
}

TEST(JsonSchema, KnowsEveryPropertyOfEveryClass) {
  const json instances = json::parse(MakeJsonSchema())["$defs"]["instance"]["oneOf"];
  ASSERT_EQ(instances.size(), GetSchema().size());
  for (std::size_t index = 0; index < instances.size(); ++index) {
    EXPECT_EQ(instances[index]["properties"]["class"]["const"], GetSchema()[index].name);
    EXPECT_EQ(instances[index]["properties"]["properties"]["properties"].size(), GetSchema()[index].properties.size());
  }
}

TEST(JsonSchema, KnowsEveryClassAndTheOutputsAsRows) {
  const json rows = json::parse(MakeJsonSchema())["$defs"]["row"]["oneOf"];
  ASSERT_EQ(rows.size(), GetSchema().size() + 1);
  for (std::size_t index = 0; index < GetSchema().size(); ++index) {
    EXPECT_EQ(rows[index]["properties"]["class"]["const"], GetSchema()[index].name);
    for (const TPropertyDeclaration& property : GetSchema()[index].properties) {
      EXPECT_TRUE(rows[index]["properties"].contains(property.name)) << property.name;
    }
  }
  EXPECT_EQ(rows.back()["properties"]["class"]["const"], "output");
}

TEST(JsonSchema, KnowsTheSeveritiesOfTheLog) {
  std::vector<std::string> severities;
  for (int severity = NQRXZELT20::ILogger::kError; severity <= NQRXZELT20::ILogger::kVerbose; ++severity) {
    severities.emplace_back(GetSeverityName(static_cast<NQRXZELT20::ILogger::EZELTLogSeverity>(severity)));
  }
  const json log = json::parse(MakeJsonSchema())["$defs"]["log"];
  EXPECT_EQ(log["items"]["properties"]["severity"]["enum"], json(severities));
}
