#include "command/report/mof_report.h"

#include <limits>

#include "tests/support/answer_test.h"

using NQRXZELT20::TCIMDateTime;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TCIMValue;

namespace {

class MofReport : public TAnswerTest {
 protected:
  std::string Make(const TRequest& classes = {"QRXSG_DesktopMonitor"}) {
    EndRequest(classes);
    return MakeMofReport(answer);
  }

  std::string MakeName(const std::string& name) {
    Commit("QRXSG_DesktopMonitor", {{"Name", TCIMValue(name)}});
    return Make();
  }
};

std::string Named(const std::string& literal) {
  return "instance of QRXSG_DesktopMonitor {\n    Name = " + literal + ";\n};\n";
}

}  // namespace

TEST_F(MofReport, GivesEachTypeItsOwnForm) {
  typedef TCIMValue::TCIMType TType;
  TCIMDateTime date;
  date.Set(2010, 1, 1, 6, 0, 0, 0, 0);
  const TCIMValue two(static_cast<unsigned short>(2));
  Commit("QRXSG_DesktopMonitor", {{"DPMSStandby", TCIMValue(true)},
                                  {"DPMSSuspend", TCIMValue(false)},
                                  {"Bandwidth", TCIMValue(4294967295U)},
                                  {"EDIDVersion", TCIMValue(1.0F)},
                                  {"Gamma", TCIMValue(2.2F)},
                                  {"ManufacturingDate", TCIMValue(date)},
                                  {"MinVertFreq", TCIMValue(static_cast<unsigned char>(50))},
                                  {"Name", TCIMValue("n")},
                                  {"OperationalStatus", TCIMValue(TType(TType::kUint16), 2, {two, two})},
                                  {"StatusDescriptions", TCIMValue(TType(TType::kString), 0, {})}});
  EXPECT_EQ(Make(),
            "instance of QRXSG_DesktopMonitor {\n"
            "    Bandwidth = 4294967295;\n"
            "    DPMSStandby = TRUE;\n"
            "    DPMSSuspend = FALSE;\n"
            "    EDIDVersion = 1.0;\n"
            "    Gamma = 2.2;\n"
            "    ManufacturingDate = \"20100101060000.000000+000\";\n"
            "    MinVertFreq = 50;\n"
            "    Name = \"n\";\n"
            "    OperationalStatus = {2, 2};\n"
            "    StatusDescriptions = {};\n"
            "};\n");
}

TEST_F(MofReport, WritesANullValueAsNull) {
  Commit("QRXSG_DesktopMonitor", {{"Name", TCIMValue()}});
  EXPECT_EQ(Make(), Named("NULL"));
}

TEST_F(MofReport, QuotesAReferenceWithItsQuotesEscaped) {
  TCIMReference monitor("QRXSG_DesktopMonitor.DeviceID=\"Monitor 1\"");
  Commit("QRXSG_MonitorSetting", {{"Element", TCIMValue(monitor)}});
  EXPECT_EQ(Make(),
            "instance of QRXSG_MonitorSetting {\n"
            "    Element = \"QRXSG_DesktopMonitor.DeviceID=\\\"Monitor 1\\\"\";\n"
            "};\n");
}

TEST_F(MofReport, EscapesWhatWouldEndAString) { EXPECT_EQ(MakeName("a\"; };\\"), Named("\"a\\\"; };\\\\\"")); }

TEST_F(MofReport, EscapesControlCharacters) {
  EXPECT_EQ(MakeName("\b\t\n\f\r\x1B[2J\x7F\u009B"), Named("\"\\b\\t\\n\\f\\r\\x001B[2J\\x007F\\x009B\""));
}

TEST_F(MofReport, ReplacesBytesThatAreNotText) { EXPECT_EQ(MakeName("\xE2\x82"), Named("\"\uFFFD\uFFFD\"")); }

TEST_F(MofReport, WritesARealNumberThatIsNotFiniteAsNull) {
  Commit("QRXSG_DesktopMonitor", {{"Gamma", TCIMValue(std::numeric_limits<float>::infinity())}});
  EXPECT_EQ(Make(), "instance of QRXSG_DesktopMonitor {\n    Gamma = NULL;\n};\n");
}

TEST_F(MofReport, KeepsTheOrderOfTheCommits) {
  Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue("b")}});
  Commit("QRXSG_DesktopMonitor", {});
  Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue("a")}});
  EXPECT_EQ(Make(),
            "instance of QRXSG_VideoHead {\n    DeviceID = \"b\";\n};\n"
            "instance of QRXSG_DesktopMonitor {\n};\n"
            "instance of QRXSG_VideoHead {\n    DeviceID = \"a\";\n};\n");
}

TEST_F(MofReport, SaysEachInstanceOnceAsItWasCommittedLast) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("a")}, {"Bandwidth", TCIMValue(1U)}});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("b")}});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("a")}, {"Bandwidth", TCIMValue(2U)}});
  EndRequest({"QRXSG_DesktopMonitor"});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("b")}, {"Bandwidth", TCIMValue(3U)}});
  EXPECT_EQ(Make(),
            "// Request: QRXSG_DesktopMonitor\n"
            "instance of QRXSG_DesktopMonitor {\n    Bandwidth = 2;\n    DeviceID = \"a\";\n};\n"
            "instance of QRXSG_DesktopMonitor {\n    Bandwidth = 3;\n    DeviceID = \"b\";\n};\n"
            "// Request: QRXSG_DesktopMonitor\n");
}

TEST_F(MofReport, IsEmptyWhenNothingIsFound) { EXPECT_EQ(Make(), ""); }

TEST_F(MofReport, HeadsEachOfSeveralRequests) {
  Make({"QRXSG_VideoHead", "QRXSG_DesktopMonitor"});
  EXPECT_EQ(Make({"QRXSG_VideoHead"}),
            "// Request: QRXSG_VideoHead, QRXSG_DesktopMonitor\n"
            "// Request: QRXSG_VideoHead\n");
}
