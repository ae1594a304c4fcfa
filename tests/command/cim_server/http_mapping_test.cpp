#include "command/cim_server/http_mapping.h"

#include <gtest/gtest.h>

namespace {

const std::string kBody =
    R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="7" PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME="GetClass">)"
    R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH>)"
    R"(</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>)";

typedef std::vector<std::pair<std::string, std::string>> THeaders;

/// "400 unsupported-operation"; empty if the request is accepted.
std::string RefuseHttp(const std::string& method, const THeaders& headers, const std::string& body = kBody) try {
  ReadHttpRequest({method, headers, body});
  return "";
} catch (const TRefused& refused) {
  return std::to_string(refused.GetStatus()) + " " + refused.GetCimError();
}

std::string GetHeader(const THttpAnswer& answer, const std::string& name) {
  for (const auto& header : answer.headers) {
    if (header.first == name) return header.second;
  }
  return "none";
}

}  // namespace

TEST(HttpMapping, TakesACimOperation) {
  EXPECT_EQ(RefuseHttp("POST", {{"cimoperation", "MethodCall"}}), "");
  EXPECT_EQ(
      RefuseHttp("POST", {{"CIMOperation", "MethodCall"}, {"CIMMethod", "GetClass"}, {"CIMObject", "root%2fcimv2"}}),
      "");
}

TEST(HttpMapping, UndoesAPercentAtTheEndOfAName) {
  EXPECT_EQ(RefuseHttp("POST", {{"CIMOperation", "MethodCall"}, {"CIMObject", "root/cimv%32"}}), "");
}

TEST(HttpMapping, RefusesWhatIsNoCimOperation) {
  EXPECT_EQ(RefuseHttp("POST", {}), "400 unsupported-operation");
  EXPECT_EQ(RefuseHttp("POST", {{"CIMOperation", "MethodResponse"}}), "400 unsupported-operation");
  EXPECT_EQ(RefuseHttp("POST", {{"CIMOperation", "MethodCall"}}, "<"), "400 request-not-well-formed");
  EXPECT_EQ(RefuseHttp("GET", {{"CIMOperation", "MethodCall"}}), "405 unsupported-operation");
}

TEST(HttpMapping, RefusesHeadersThatSayOtherThanTheXml) {
  EXPECT_EQ(RefuseHttp("POST", {{"CIMOperation", "MethodCall"}, {"CIMMethod", "GetInstance"}}), "400 header-mismatch");
  EXPECT_EQ(RefuseHttp("POST", {{"CIMOperation", "MethodCall"}, {"CIMObject", "root%2Fother"}}), "400 header-mismatch");
  EXPECT_EQ(RefuseHttp("POST", {{"CIMOperation", "MethodCall"}, {"CIMObject", "root%2"}}), "400 header-mismatch");
}

TEST(HttpMapping, RefusesWebPages) {
  EXPECT_EQ(RefuseHttp("POST", {{"CIMOperation", "MethodCall"}, {"Origin", "http://localhost:5988"}}), "403 ");
}

TEST(HttpMapping, RefusesRequestsToNamesThatAreNotOfThisMachineAlone) {
  const auto refuse = [](const std::string& host) {
    return RefuseHttp("POST", {{"CIMOperation", "MethodCall"}, {"Host", host}});
  };
  for (const char* const host :
       {"localhost", "LocalHost:5988", "127.0.0.1", "127.1.2.3:1", "[::1]", "[::1]:5988", ""}) {
    EXPECT_EQ(refuse(host), "") << host;
  }
  for (const char* const host :
       {"example.org", "example.org:5988", "localhost.example.org", "localhost:5988.example.org",
        "127.0.0.1.example.org", "10.0.0.1", "128.0.0.1", "[::2]", "[::1", "[", "::1", ":1"}) {
    EXPECT_EQ(refuse(host), "403 ") << host;
  }
  EXPECT_EQ(RefuseHttp("POST", {{"CIMOperation", "MethodCall"}, {"Host", "localhost"}, {"Host", "example.org"}}),
            "403 ");
  EXPECT_EQ(RefuseHttp("POST", {{"CIMOperation", "MethodCall"}, {"host", "example.org"}}), "403 ");
}

TEST(HttpMapping, FindsItsExtensionAmongOthersHoweverItIsWritten) {
  for (const char* const man : {
           "http://www.dmtf.org/cim/mapping/http/v1.0;ns=73",
           "\"http://www.dmtf.org/cim/mapping/http/v1.0\" ; ns=73",
           "\"HTTP://WWW.DMTF.ORG/CIM/MAPPING/HTTP/V1.0\"; NS = \"73\"",
           "\thttp://www.dmtf.org/cim/mapping/http/v1.0\t;\tns\t=\t73\t",
           "http://www.dmtf.org/cim/mapping/http/v1.0; ns=\"; ns=73",
           "\"http://example.org/other\"; ns=11, \"http://www.dmtf.org/cim/mapping/http/v1.1\"; a=b; ns=73",
       }) {
    EXPECT_EQ(RefuseHttp("M-POST", {{"MAN", man}, {"73-CIMOPERATION", "MethodCall"}}), "") << man;
  }
  EXPECT_EQ(RefuseHttp("M-POST", {{"Man", "http://example.org; ns=11"},
                                  {"Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=73"},
                                  {"73-CIMOperation", "MethodCall"}}),
            "");
  for (const char* const man : {"http://example.org/other; ns=73", "http://www.dmtf.org/cim/mapping/http/v1.0",
                                "http://www.dmtf.org/cim/mapping/http/v1.0; ns=a", ";;,,=", "ns=73"}) {
    EXPECT_EQ(RefuseHttp("M-POST", {{"Man", man}, {"73-CIMOperation", "MethodCall"}}), "510 ") << man;
  }
}

TEST(HttpMapping, TakesTheExtendedMethodWithItsPrefix) {
  const THeaders headers = {{"Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=73"},
                            {"73-CIMOperation", "MethodCall"}};
  EXPECT_EQ(RefuseHttp("M-POST", headers), "");
  EXPECT_EQ(RefuseHttp("M-POST", {{"CIMOperation", "MethodCall"}}), "510 ");
  EXPECT_EQ(RefuseHttp("M-POST", {headers[0], {"CIMOperation", "MethodCall"}}), "400 unsupported-operation");
  EXPECT_EQ(GetHeader(MakeHttpAnswer({"M-POST", headers, ""}, ""), "73-CIMOperation"), "MethodResponse");
}

TEST(HttpMapping, RefusesPrefixedHeadersThatSayOtherThanTheXml) {
  const auto refuse = [](const std::string& header) {
    return RefuseHttp("M-POST", {{"Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=73"},
                                 {"73-CIMOperation", "MethodCall"},
                                 {header, "other"}});
  };
  EXPECT_EQ(refuse("73-CIMMethod"), "400 header-mismatch");
  EXPECT_EQ(refuse("73-CIMObject"), "400 header-mismatch");
}

TEST(HttpMapping, AnswersWithTheHeadersOfTheProtocol) {
  const THttpAnswer answer = MakeHttpAnswer({"POST", {}, ""}, "<a/>");
  EXPECT_EQ(answer.status, 200U);
  EXPECT_EQ(GetHeader(answer, "CIMOperation"), "MethodResponse");
  EXPECT_EQ(GetHeader(answer, "Content-Type"), "application/xml; charset=\"utf-8\"");
  EXPECT_EQ(answer.body, "<a/>");
}

TEST(HttpMapping, AnswersTheExtendedMethodWithItsHeaders) {
  const THeaders headers = {{"Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=73"}};
  EXPECT_EQ(MakeHttpAnswer({"M-POST", headers, ""}, "").headers,
            (THeaders{{"Content-Type", "application/xml; charset=\"utf-8\""},
                      {"Cache-Control", "no-cache"},
                      {"73-CIMOperation", "MethodResponse"},
                      {"Ext", ""},
                      {"Man", "http://www.dmtf.org/cim/mapping/http/v1.0; ns=73"}}));
}

TEST(HttpMapping, TellsWhyItRefuses) {
  const THttpAnswer answer = MakeRefusal(TRefused(400, "request-not-valid", "a\x1b"));
  EXPECT_EQ(answer.status, 400U);
  EXPECT_EQ(answer.headers,
            (THeaders{{"Content-Type", "text/plain; charset=\"utf-8\""}, {"CIMError", "request-not-valid"}}));
  EXPECT_EQ(answer.body, "a\\x1b\n");
  EXPECT_EQ(MakeRefusal(TRefused(405, "", "")).headers,
            (THeaders{{"Content-Type", "text/plain; charset=\"utf-8\""}, {"Allow", "POST, M-POST"}}));
}

TEST(HttpMapping, IsCalledAsTheClientCallsIt) {
  EXPECT_EQ(GetHost({"POST", {{"host", "there:2"}}, ""}, "here:1"), "there:2");
  EXPECT_EQ(GetHost({"POST", {{"Host", "localhost"}, {"X-Forwarded-Host", "ws-17:5989"}}, ""}, "here:1"), "ws-17:5989");
  EXPECT_EQ(GetHost({"POST", {}, ""}, "here:1"), "here:1");
  EXPECT_EQ(GetHost({"POST", {{"Host", "\x01"}}, ""}, "here:1"), "here:1");
  EXPECT_EQ(GetHost({"POST", {{"Host", std::string(256, 'a')}}, ""}, "here:1"), "here:1");
  EXPECT_EQ(GetHost({"POST", {{"Host", std::string(255, 'a')}}, ""}, "here:1"), std::string(255, 'a'));
}
