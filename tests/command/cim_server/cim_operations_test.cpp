#include "command/cim_server/cim_operations.h"

#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <sstream>

#include "command/base/xml_reader.h"
#include "tests/command/cim_server/cim_answer.h"

namespace {

using boost::property_tree::ptree;

const TObjectName kOne = {"QRXSG_DesktopMonitor",
                          {{"CreationClassName", "QRXSG_DesktopMonitor"},
                           {"DeviceID", "one"},
                           {"SystemCreationClassName", "S"},
                           {"SystemName", "N"}}};
const TClassName kMonitors = {"QRXSG_DesktopMonitor"};

typedef std::vector<std::pair<std::string, TParameterValue>> TGiven;

TCimRequest MakeRequest(const std::string& operation, const TGiven& parameters) {
  return {"<7>", operation, "Root/CIMv2", parameters};
}

ptree Parse(const std::string& text) {
  static_cast<void>(ReadXml(text));
  std::istringstream stream(text);
  ptree tree;
  read_xml(stream, tree);
  return tree;
}

const ptree& GetResponse(const ptree& answer) { return answer.get_child("CIM.MESSAGE.SIMPLERSP.IMETHODRESPONSE"); }

std::string Answer(const std::string& operation, const TGiven& parameters) {
  return AnswerCim(MakeRequest(operation, parameters), TCimModel(MakeTwoMonitorsJson()), "here:1");
}

ptree Call(const std::string& operation, const TGiven& parameters) {
  const ptree answer = Parse(Answer(operation, parameters));
  return GetResponse(answer).get_child("IRETURNVALUE");
}

int GetError(const std::string& answer) { return GetResponse(Parse(answer)).get("ERROR.<xmlattr>.CODE", 0); }

int Refuse(const std::string& operation, const TGiven& parameters) { return GetError(Answer(operation, parameters)); }

/// The DeviceID or SettingID of each of the objects named.
std::vector<std::string> ListKeys(const ptree& names) {
  std::vector<std::string> keys;
  for (const auto& name : names) {
    for (const auto& binding : name.second.get_child("INSTANCEPATH.INSTANCENAME")) {
      const std::string key = binding.second.get("<xmlattr>.NAME", "");
      if (key == "DeviceID" || key == "SettingID") keys.push_back(binding.second.get<std::string>("KEYVALUE"));
    }
  }
  return keys;
}

std::vector<std::string> ListProperties(const ptree& instance) {
  std::vector<std::string> names;
  for (const auto& [element, property] : instance) {
    if (element.rfind("PROPERTY", 0) == 0) names.push_back(property.get<std::string>("<xmlattr>.NAME"));
  }
  return names;
}

typedef std::vector<std::string> TNames;

}  // namespace

TEST(CimOperations, AnswerWithTheRequestsIdAndName) {
  const ptree answer = Parse(Answer("EnumerateClassNames", {}));
  EXPECT_EQ(answer.get<std::string>("CIM.MESSAGE.<xmlattr>.ID"), "<7>");
  EXPECT_EQ(GetResponse(answer).get<std::string>("<xmlattr>.NAME"), "EnumerateClassNames");
}

TEST(CimOperations, EnumerateTheInstancesOfAClass) {
  EXPECT_EQ(Call("EnumerateInstances", {{"ClassName", kMonitors}}).count("VALUE.NAMEDINSTANCE"), 2U);
  EXPECT_EQ(Call("EnumerateInstanceNames", {{"ClassName", kMonitors}}).count("INSTANCENAME"), 2U);
  EXPECT_TRUE(Call("EnumerateInstances", {{"ClassName", TClassName{"QRXSG_VideoHead"}}}).empty());
}

TEST(CimOperations, KnowNamesWithoutRegardToCase) {
  EXPECT_EQ(Call("enumerateinstancenames", {{"CLASSNAME", TClassName{"qrxsg_desktopmonitor"}}}).size(), 2U);
}

TEST(CimOperations, ShowAnInstanceWithTheTypesOfItsValues) {
  const ptree instance = Call("GetInstance", {{"InstanceName", kOne}}).get_child("INSTANCE");
  EXPECT_EQ(ListProperties(instance),
            (TNames{"Bandwidth", "DPMSStandby", "DeviceID", "EDIDVersion", "Name", "OperationalStatus"}));
  EXPECT_EQ(instance.get<std::string>("PROPERTY.<xmlattr>.TYPE"), "uint32");
  EXPECT_EQ(instance.get<std::string>("PROPERTY.VALUE"), "140");
  EXPECT_EQ(instance.get_child(ptree::path_type("PROPERTY.ARRAY", '/')).get<std::string>("<xmlattr>.TYPE"), "uint16");
  EXPECT_EQ(instance.get("PROPERTY.<xmlattr>.CLASSORIGIN", "none"), "none");
}

TEST(CimOperations, ShowWhereAPropertyComesFromWhenAsked) {
  const TGiven parameters = {{"InstanceName", kOne}, {"IncludeClassOrigin", "true"}};
  EXPECT_EQ(Call("GetInstance", parameters).get<std::string>("INSTANCE.PROPERTY.<xmlattr>.CLASSORIGIN"),
            kMonitors.name);
}

TEST(CimOperations, ShowThePropertiesThatAreListed) {
  const auto list = [](const TNames& names) {
    return ListProperties(Call("GetInstance", {{"InstanceName", kOne}, {"PropertyList", names}}).get_child("INSTANCE"));
  };
  EXPECT_EQ(list({"deviceid", "Nope"}), TNames{"DeviceID"});
  EXPECT_EQ(list({}), TNames());
}

TEST(CimOperations, GetAProperty) {
  const auto get = [](const char* name) {
    return Call("GetProperty", {{"InstanceName", kOne}, {"PropertyName", name}});
  };
  EXPECT_EQ(get("DEVICEID").get<std::string>("VALUE"), "one");
  EXPECT_EQ(get("OperationalStatus").get_child(ptree::path_type("VALUE.ARRAY", '/')).count("VALUE"), 2U);
  EXPECT_TRUE(get("Name").empty());
  EXPECT_TRUE(get("Gamma").empty());
}

TEST(CimOperations, ShowClassesWithTheirQualifiersUnlessToldNotTo) {
  const TGiven setting = {{"ClassName", TClassName{"QRXSG_MonitorSetting"}}};
  const ptree shown = Call("GetClass", setting).get_child("CLASS");
  EXPECT_EQ(ListProperties(shown), (TNames{"Element", "Setting"}));
  EXPECT_EQ(shown.get<std::string>("QUALIFIER.<xmlattr>.NAME"), "Association");
  const ptree element = shown.get_child(ptree::path_type("PROPERTY.REFERENCE", '/'));
  EXPECT_EQ(element.get<std::string>("<xmlattr>.REFERENCECLASS"), "QRXSG_DesktopMonitor");
  EXPECT_EQ(element.get<std::string>("QUALIFIER.<xmlattr>.NAME"), "Key");
  EXPECT_NE(Answer("EnumerateClasses", {}).find("QUALIFIER"), std::string::npos);
  EXPECT_EQ(Answer("EnumerateClasses", {{"IncludeQualifiers", "FALSE"}}).find("QUALIFIER"), std::string::npos);
}

TEST(CimOperations, EnumerateClassesOfWhichNoneHasSubclasses) {
  EXPECT_EQ(Call("EnumerateClassNames", {}).count("CLASSNAME"), 6U);
  EXPECT_TRUE(Call("EnumerateClassNames", {{"ClassName", kMonitors}}).empty());
  EXPECT_EQ(Call("EnumerateClasses", {}).count("CLASS"), 6U);
}

TEST(CimOperations, DeclareTheQualifiersThatTheClassesUse) {
  EXPECT_EQ(Call("EnumerateQualifiers", {}).size(), 4U);
  EXPECT_EQ(Call("GetQualifier", {{"QualifierName", "key"}}).size(), 1U);
}

TEST(CimOperations, FollowAssociations) {
  const TGiven one = {{"ObjectName", kOne}};
  EXPECT_EQ(ListKeys(Call("AssociatorNames", one)), TNames{"a"});
  EXPECT_EQ(Call("Associators", one).count("VALUE.OBJECTWITHPATH"), 1U);
  EXPECT_EQ(Call("ReferenceNames", one).count("OBJECTPATH"), 1U);
  EXPECT_EQ(Call("References", one).count("VALUE.OBJECTWITHPATH"), 1U);
  EXPECT_NE(Answer("ReferenceNames", one).find("<HOST>here:1</HOST>"), std::string::npos);
}

TEST(CimOperations, ChooseAmongAssociationsByClassesAndRoles) {
  struct TCase {
    const char* parameter;
    TParameterValue value;
    bool isFound;
  };
  for (const TCase& one :
       {TCase{"AssocClass", TClassName{"QRXSG_MonitorSetting"}, true},
        TCase{"AssocClass", TClassName{"QRXSG_HeadOfVideoController"}, false},
        TCase{"ResultClass", TClassName{"QRXSG_MonitorResolution"}, true},
        TCase{"ResultClass", TClassName{"QRXSG_DesktopMonitor"}, false}, TCase{"Role", "element", true},
        TCase{"Role", "Setting", false}, TCase{"ResultRole", "Setting", true}, TCase{"ResultRole", "Element", false}}) {
    const ptree found = Call("AssociatorNames", {{"ObjectName", kOne}, {one.parameter, one.value}});
    EXPECT_EQ(!found.empty(), one.isFound) << one.parameter;
  }
  EXPECT_TRUE(Call("ReferenceNames", {{"ObjectName", kOne}, {"ResultClass", kMonitors}}).empty());
  EXPECT_TRUE(Call("ReferenceNames", {{"ObjectName", kOne}, {"Role", "Setting"}}).empty());
}

TEST(CimOperations, RefuseWithTheErrorOfTheStandard) {
  const TClassName nope = {"Nope"};
  const TObjectName none = {"QRXSG_DesktopMonitor", {{"DeviceID", "none"}}};
  EXPECT_EQ(Refuse("EnumerateInstances", {{"ClassName", nope}}), 5);
  EXPECT_EQ(Refuse("EnumerateInstances", {}), 4);
  EXPECT_EQ(Refuse("EnumerateInstances", {{"ClassName", "QRXSG_VideoHead"}}), 4);
  EXPECT_EQ(Refuse("EnumerateInstances", {{"ClassName", kMonitors}, {"ClassName", kMonitors}}), 4);
  EXPECT_EQ(Refuse("EnumerateInstances", {{"ClassName", kMonitors}, {"Nope", "1"}}), 4);
  EXPECT_EQ(Refuse("EnumerateInstances", {{"ClassName", kMonitors}, {"IncludeClassOrigin", "1"}}), 4);
  EXPECT_EQ(Refuse("EnumerateClasses", {{"ClassName", nope}}), 5);
  EXPECT_EQ(Refuse("GetClass", {{"ClassName", nope}}), 6);
  EXPECT_EQ(Refuse("GetInstance", {{"InstanceName", none}}), 6);
  EXPECT_EQ(Refuse("GetQualifier", {{"QualifierName", "Nope"}}), 6);
  EXPECT_EQ(Refuse("GetProperty", {{"InstanceName", kOne}, {"PropertyName", "Nope"}}), 12);
  EXPECT_EQ(Refuse("Associators", {{"ObjectName", none}}), 6);
  EXPECT_EQ(Refuse("Associators", {{"ObjectName", kMonitors}}), 7);
  EXPECT_EQ(Refuse("Associators", {{"ObjectName", kOne}, {"AssocClass", nope}}), 4);
  for (const char* const name : {"CreateInstance", "ModifyInstance", "DeleteInstance", "SetProperty", "CreateClass",
                                 "DeleteClass", "ExecQuery", "OpenEnumerateInstances", "PullInstances", "Nope"}) {
    EXPECT_EQ(Refuse(name, {{"NewInstance", TOtherElement()}}), 7) << name;
  }
}

TEST(CimOperations, RefuseOtherNamespaces) {
  TCimRequest request = MakeRequest("EnumerateClassNames", {});
  request.nameSpace = "root/other";
  EXPECT_EQ(GetError(AnswerCim(request, TCimModel(), "")), 3);
}

TEST(CimOperations, TellWhyACollectionFailed) {
  const std::string answer = AnswerFailure(MakeRequest("GetInstance", {}), "it died \x01");
  EXPECT_EQ(GetError(answer), 1);
  EXPECT_NE(answer.find("CIM_ERR_FAILED: it died \xEF\xBF\xBD"), std::string::npos);
}

TEST(CimOperations, NeedInstancesOnlyToShowThem) {
  EXPECT_TRUE(NeedsInstances(MakeRequest("EnumerateInstances", {{"ClassName", kMonitors}})));
  EXPECT_FALSE(NeedsInstances(MakeRequest("GetClass", {{"ClassName", kMonitors}})));
  EXPECT_FALSE(NeedsInstances(MakeRequest("CreateInstance", {})));
}
