#include "command/cim_server/cim_xml_reader.h"

#include <gtest/gtest.h>

namespace {

std::string MakeCall(const std::string& content) {
  return R"(<?xml version="1.0"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="7" PROTOCOLVERSION="1.0"><SIMPLEREQ>)" +
         content + "</SIMPLEREQ></MESSAGE></CIM>";
}

std::string MakeRequest(const std::string& parameters) {
  return MakeCall(
      R"(<IMETHODCALL NAME="Do"><LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH>)" +
      parameters + "</IMETHODCALL>");
}

TParameterValue ReadValue(const std::string& value) {
  return ReadCimRequest(MakeRequest("<IPARAMVALUE NAME=\"P\">" + value + "</IPARAMVALUE>")).parameters.at(0).second;
}

/// "400 request-not-valid"; empty if the request is accepted.
std::string Refuse(const std::string& text) try {
  ReadCimRequest(text);
  return "";
} catch (const TRefused& refused) {
  return std::to_string(refused.GetStatus()) + " " + refused.GetCimError();
}

std::string Replace(std::string text, const std::string& piece, const std::string& other) {
  return text.replace(text.find(piece), piece.size(), other);
}

}  // namespace

TEST(CimXmlReader, ReadsTheOperationAndItsNamespace) {
  const TCimRequest request = ReadCimRequest(MakeRequest(""));
  EXPECT_EQ(request.messageId, "7");
  EXPECT_EQ(request.operation, "Do");
  EXPECT_EQ(request.nameSpace, "root/cimv2");
  EXPECT_TRUE(request.parameters.empty());
}

TEST(CimXmlReader, ReadsEveryKindOfParameter) {
  EXPECT_EQ(std::get<std::string>(ReadValue("<VALUE> a &lt;<![CDATA[&]]></VALUE>")), " a <&");
  EXPECT_EQ(std::get<std::vector<std::string>>(ReadValue("<VALUE.ARRAY><VALUE>a</VALUE><VALUE/></VALUE.ARRAY>")),
            (std::vector<std::string>{"a", ""}));
  EXPECT_EQ(std::get<TClassName>(ReadValue(R"(<CLASSNAME NAME="a"/>)")).name, "a");
  EXPECT_TRUE(std::holds_alternative<std::monostate>(ReadValue("")));
  EXPECT_TRUE(std::holds_alternative<TOtherElement>(ReadValue(R"(<INSTANCE CLASSNAME="a"/>)")));
}

TEST(CimXmlReader, ReadsTheNameOfAnInstance) {
  const auto name = std::get<TObjectName>(ReadValue(
      R"(<INSTANCENAME CLASSNAME="a"><KEYBINDING NAME="b"><KEYVALUE VALUETYPE="string"> c </KEYVALUE></KEYBINDING></INSTANCENAME>)"));
  EXPECT_EQ(name.className, "a");
  EXPECT_EQ(name.keys.at(0).name, "b");
  EXPECT_EQ(name.keys.at(0).value, " c ");
}

TEST(CimXmlReader, ReadsAKeyWithoutItsName) {
  const auto name =
      std::get<TObjectName>(ReadValue(R"(<INSTANCENAME CLASSNAME="a"><KEYVALUE>c</KEYVALUE></INSTANCENAME>)"));
  EXPECT_EQ(name.keys.at(0).name, "");
  EXPECT_EQ(name.keys.at(0).value, "c");
}

TEST(CimXmlReader, ReadsAReferenceKeyInEachOfItsForms) {
  const std::string target = R"(<INSTANCENAME CLASSNAME="t"/>)";
  for (const std::string& form : {target, "<INSTANCEPATH><NAMESPACEPATH/>" + target + "</INSTANCEPATH>",
                                  "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH/>" + target + "</LOCALINSTANCEPATH>"}) {
    const auto name =
        std::get<TObjectName>(ReadValue(R"(<INSTANCENAME CLASSNAME="a"><KEYBINDING NAME="b"><VALUE.REFERENCE>)" + form +
                                        "</VALUE.REFERENCE></KEYBINDING></INSTANCENAME>"));
    ASSERT_NE(name.keys.at(0).reference, nullptr) << form;
    EXPECT_EQ(name.keys.at(0).reference->className, "t");
  }
}

TEST(CimXmlReader, RefusesWhatIsNotWellFormed) {
  for (const std::string& text :
       {std::string(), MakeRequest("") + "<", MakeRequest("<!DOCTYPE a>"), MakeRequest("&a;")}) {
    EXPECT_EQ(Refuse(text), "400 request-not-well-formed") << text;
  }
}

TEST(CimXmlReader, RefusesOtherDocuments) {
  const std::string name = R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/></LOCALNAMESPACEPATH>)";
  for (const std::string& text :
       {std::string("<a/>"), std::string("<CIM/>"), MakeCall(""), MakeCall("<a/>"), MakeCall("<IMETHODCALL/>"),
        MakeCall(R"(<IMETHODCALL NAME="Do"/>)"), MakeCall("<IMETHODCALL>" + name + "</IMETHODCALL>"),
        MakeRequest("<a/>"), MakeRequest("<IPARAMVALUE/>"),
        MakeRequest(R"(<IPARAMVALUE NAME="a"><VALUE/><VALUE/></IPARAMVALUE>)"),
        MakeRequest(R"(<IPARAMVALUE NAME="a"><VALUE.ARRAY><a/></VALUE.ARRAY></IPARAMVALUE>)"),
        MakeRequest(R"(<IPARAMVALUE NAME="a"><INSTANCENAME/></IPARAMVALUE>)"),
        MakeRequest(R"(<IPARAMVALUE NAME="a"><VALUE.REFERENCE/></IPARAMVALUE>)"),
        Replace(Replace(MakeRequest(""), "<MESSAGE", "<a"), "/MESSAGE", "/a"), Replace(MakeRequest(""), "ID=\"7\"", ""),
        Replace(MakeRequest(""), "NAMESPACE NAME", "NAMESPACE NOME")}) {
    EXPECT_EQ(Refuse(text), "400 request-not-valid") << text;
  }
}

TEST(CimXmlReader, RefusesOtherVersions) {
  const std::string text = MakeRequest("");
  EXPECT_EQ(Refuse(Replace(text, "CIMVERSION=\"2", "CIMVERSION=\"3")), "501 unsupported-cim-version");
  EXPECT_EQ(Refuse(Replace(text, "DTDVERSION=\"2", "DTDVERSION=\"1")), "501 unsupported-dtd-version");
  EXPECT_EQ(Refuse(Replace(text, "PROTOCOLVERSION=\"1", "PROTOCOLVERSION=\"2")), "501 unsupported-protocol-version");
  EXPECT_EQ(Refuse(Replace(text, "DTDVERSION=\"2.0", "DTDVERSION=\"2.4.1")), "");
}

TEST(CimXmlReader, RefusesSeveralRequestsAndMethods) {
  std::string several = MakeCall("");
  several = Replace(Replace(several, "SIMPLEREQ", "MULTIREQ"), "/SIMPLEREQ", "/MULTIREQ");
  EXPECT_EQ(Refuse(several), "501 multiple-requests-unsupported");
  EXPECT_EQ(Refuse(MakeCall(R"(<METHODCALL NAME="a"/>)")), "501 unsupported-operation");
}
