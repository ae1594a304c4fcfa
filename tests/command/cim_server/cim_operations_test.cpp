#include "command/cim_server/cim_operations.h"

#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <chrono>
#include <set>
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
typedef std::vector<std::string> TNames;

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
  TEnumerations enumerations;
  return AnswerCim(MakeRequest(operation, parameters), TCimModel(MakeTwoMonitorsJson()), enumerations, "here:1").xml;
}

ptree Call(const std::string& operation, const TGiven& parameters) {
  const ptree answer = Parse(Answer(operation, parameters));
  return GetResponse(answer).get_child("IRETURNVALUE");
}

int GetError(const std::string& answer) { return GetResponse(Parse(answer)).get("ERROR.<xmlattr>.CODE", 0); }

int Refuse(const std::string& operation, const TGiven& parameters) { return GetError(Answer(operation, parameters)); }

/// The text of what an operation returns.
std::string CallForText(const std::string& operation, const TGiven& parameters) {
  const std::string answer = Answer(operation, parameters);
  const std::string begin = "<IRETURNVALUE>";
  const std::size_t first = answer.find(begin) + begin.size();
  return answer.substr(first, answer.find("</IRETURNVALUE>") - first);
}

/// The DeviceID or SettingID of each named object.
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
  TNames origins;
  const ptree instance = Call("GetInstance", parameters).get_child("INSTANCE");
  for (const auto& [element, property] : instance) {
    if (element != "<xmlattr>") origins.push_back(property.get<std::string>("<xmlattr>.CLASSORIGIN"));
  }
  const std::string superclass = "CIM_DesktopMonitor";
  EXPECT_EQ(origins, (TNames{superclass, kMonitors.name, superclass, kMonitors.name, superclass, superclass}));
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
  const TGiven setting = {{"ClassName", TClassName{"QRXSG_MonitorSetting"}}, {"LocalOnly", "FALSE"}};
  const ptree shown = Call("GetClass", setting).get_child("CLASS");
  EXPECT_EQ(ListProperties(shown), (TNames{"Element", "Setting"}));
  EXPECT_EQ(shown.get<std::string>("QUALIFIER.<xmlattr>.NAME"), "Association");
  const ptree element = shown.get_child(ptree::path_type("PROPERTY.REFERENCE", '/'));
  EXPECT_EQ(element.get<std::string>("<xmlattr>.REFERENCECLASS"), "QRXSG_DesktopMonitor");
  EXPECT_EQ(element.get<std::string>("QUALIFIER.<xmlattr>.NAME"), "Key");
  EXPECT_NE(Answer("EnumerateClasses", {}).find("QUALIFIER"), std::string::npos);
  EXPECT_EQ(Answer("EnumerateClasses", {{"IncludeQualifiers", "FALSE"}}).find("QUALIFIER"), std::string::npos);
}

TEST(CimOperations, EnumerateClassesAtTheDepthThatIsAskedFor) {
  EXPECT_EQ(Call("EnumerateClassNames", {}).count("CLASSNAME"), 8U);
  EXPECT_EQ(Call("EnumerateClassNames", {}).get<std::string>("CLASSNAME.<xmlattr>.NAME"), "CIM_VideoController");
  EXPECT_EQ(Call("EnumerateClassNames", {{"DeepInheritance", "true"}}).count("CLASSNAME"), 14U);
  EXPECT_TRUE(Call("EnumerateClassNames", {{"ClassName", kMonitors}}).empty());
  EXPECT_EQ(Call("EnumerateClassNames", {{"ClassName", TClassName{"CIM_DesktopMonitor"}}})
                .get<std::string>("CLASSNAME.<xmlattr>.NAME"),
            kMonitors.name);
  EXPECT_EQ(Call("EnumerateClasses", {{"DeepInheritance", "TRUE"}}).count("CLASS"), 14U);
  EXPECT_EQ(Call("EnumerateClassNames", {{"ClassName", TClassName{"CIM_DesktopMonitor"}}, {"DeepInheritance", "TRUE"}})
                .count("CLASSNAME"),
            1U);
}

TEST(CimOperations, ShowClassesWithAllTheirPropertiesAtAnyDepth) {
  const ptree classes =
      Call("EnumerateClasses",
           {{"ClassName", TClassName{"CIM_DesktopMonitor"}}, {"DeepInheritance", "FALSE"}, {"LocalOnly", "TRUE"}});
  EXPECT_FALSE(ListProperties(classes.get_child("CLASS")).empty());
}

TEST(CimOperations, ShowOnlyWhatAClassDeclaresItselfUnlessToldOtherwise) {
  const auto show = [](const TGiven& more) {
    TGiven given = {{"ClassName", TClassName{"QRXSG_VideoHead"}}};
    given.insert(given.end(), more.begin(), more.end());
    return Call("GetClass", given).get_child("CLASS");
  };
  EXPECT_EQ(show({}).get<std::string>("<xmlattr>.SUPERCLASS"), "CIM_VideoHead");
  EXPECT_EQ(ListProperties(show({})),
            (TNames{"DisplayId", "VideoProcessor", "DACType", "VideoRamSize", "MonitorString", "HeadNumber"}));
  const ptree all = show({{"LocalOnly", "FALSE"}, {"IncludeClassOrigin", "TRUE"}});
  EXPECT_EQ(ListProperties(all).size(), 14U);
  EXPECT_EQ(all.get<std::string>("PROPERTY.<xmlattr>.CLASSORIGIN"), "CIM_VideoHead");
  EXPECT_EQ(all.get<std::string>("PROPERTY.<xmlattr>.PROPAGATED"), "true");
}

TEST(CimOperations, EnumerateTheInstancesOfASuperclass) {
  const TClassName superclass = {"CIM_DesktopMonitor"};
  const auto list = [&](const TGiven& more) {
    TGiven given = {{"ClassName", superclass}};
    given.insert(given.end(), more.begin(), more.end());
    const ptree found = Call("EnumerateInstances", given);
    EXPECT_EQ(found.size(), 2U);
    const ptree instance = found.get_child(ptree::path_type("VALUE.NAMEDINSTANCE/INSTANCE", '/'));
    EXPECT_EQ(instance.get<std::string>("<xmlattr>.CLASSNAME"), kMonitors.name);
    return ListProperties(instance);
  };
  const TNames all = {"Bandwidth", "DPMSStandby", "DeviceID", "EDIDVersion", "Name", "OperationalStatus"};
  EXPECT_EQ(list({}), all);
  EXPECT_EQ(list({{"LocalOnly", "TRUE"}}), all);
  EXPECT_EQ(list({{"DeepInheritance", "FALSE"}}), (TNames{"Bandwidth", "DeviceID", "Name", "OperationalStatus"}));
  EXPECT_EQ(Call("EnumerateInstanceNames", {{"ClassName", superclass}}).size(), 2U);
  EXPECT_EQ(
      Call("AssociatorNames", {{"ObjectName", kOne}, {"ResultClass", TClassName{"CIM_MonitorResolution"}}}).size(), 1U);
  EXPECT_EQ(Call("AssociatorNames", {{"ObjectName", kOne}, {"AssocClass", TClassName{"CIM_MonitorSetting"}}}).size(),
            1U);
  EXPECT_TRUE(Call("AssociatorNames", {{"ObjectName", kOne}, {"AssocClass", TClassName{"CIM_Dependency"}}}).empty());
}

TEST(CimOperations, SayWhatValuesMean) {
  const std::string shown = Answer("GetClass", {{"ClassName", TClassName{"CIM_MonitorResolution"}}});
  EXPECT_NE(shown.find(R"(<QUALIFIER NAME="ValueMap" TYPE="string"><VALUE.ARRAY><VALUE>1</VALUE><VALUE>2</VALUE>)"),
            std::string::npos);
  EXPECT_NE(
      shown.find(R"(<QUALIFIER NAME="Values" TYPE="string" TRANSLATABLE="true"><VALUE.ARRAY><VALUE>Other</VALUE>)"),
      std::string::npos);
}

TEST(CimOperations, DeclareTheQualifiersThatTheClassesUse) {
  EXPECT_EQ(Call("EnumerateQualifiers", {}).size(), 6U);
  EXPECT_EQ(Call("GetQualifier", {{"QualifierName", "key"}}).size(), 1U);
}

TEST(CimOperations, WriteADeclarationOfAQualifierInFull) {
  const auto get = [](const char* name) { return CallForText("GetQualifier", {{"QualifierName", name}}); };
  EXPECT_EQ(get("Key"), R"(<QUALIFIER.DECLARATION NAME="Key" TYPE="boolean" ISARRAY="false" OVERRIDABLE="false">)"
                        R"(<SCOPE REFERENCE="true" PROPERTY="true"/><VALUE>FALSE</VALUE></QUALIFIER.DECLARATION>)");
  EXPECT_EQ(get("Description"),
            R"(<QUALIFIER.DECLARATION NAME="Description" TYPE="string" ISARRAY="false" OVERRIDABLE="true" )"
            R"(TRANSLATABLE="true"><SCOPE CLASS="true" ASSOCIATION="true" REFERENCE="true" PROPERTY="true" )"
            R"(METHOD="true" PARAMETER="true" INDICATION="true"/></QUALIFIER.DECLARATION>)");
  EXPECT_EQ(get("ValueMap"),
            R"(<QUALIFIER.DECLARATION NAME="ValueMap" TYPE="string" ISARRAY="true" OVERRIDABLE="true">)"
            R"(<SCOPE PROPERTY="true" METHOD="true" PARAMETER="true"/></QUALIFIER.DECLARATION>)");
}

TEST(CimOperations, WriteAClassInFull) {
  EXPECT_EQ(CallForText("GetClass", {{"ClassName", TClassName{"CIM_MonitorResolution"}},
                                     {"PropertyList", TNames{"SettingID", "RefreshRate", "ScanMode"}}}),
            R"(<CLASS NAME="CIM_MonitorResolution">)"
            R"(<QUALIFIER NAME="Description" TYPE="string"><VALUE>A mode of a monitor.</VALUE></QUALIFIER>)"
            R"(<PROPERTY NAME="SettingID" TYPE="string">)"
            R"(<QUALIFIER NAME="Key" TYPE="boolean" OVERRIDABLE="false"><VALUE>TRUE</VALUE></QUALIFIER>)"
            R"(<QUALIFIER NAME="Description" TYPE="string">)"
            R"(<VALUE>The monitor's DeviceID and the number of the mode.</VALUE></QUALIFIER></PROPERTY>)"
            R"(<PROPERTY NAME="RefreshRate" TYPE="uint32">)"
            R"(<QUALIFIER NAME="Units" TYPE="string"><VALUE>Hz</VALUE></QUALIFIER>)"
            R"(<QUALIFIER NAME="Description" TYPE="string"><VALUE>The field rate.</VALUE></QUALIFIER></PROPERTY>)"
            R"(<PROPERTY NAME="ScanMode" TYPE="uint16"><QUALIFIER NAME="Description" TYPE="string">)"
            R"(<VALUE>5 interlaced, 4 not interlaced, 2 unknown; for all of its modes alike.</VALUE></QUALIFIER>)"
            R"(<QUALIFIER NAME="ValueMap" TYPE="string"><VALUE.ARRAY><VALUE>1</VALUE><VALUE>2</VALUE><VALUE>3</VALUE>)"
            R"(<VALUE>4</VALUE><VALUE>5</VALUE></VALUE.ARRAY></QUALIFIER>)"
            R"(<QUALIFIER NAME="Values" TYPE="string" TRANSLATABLE="true"><VALUE.ARRAY><VALUE>Other</VALUE>)"
            R"(<VALUE>Unknown</VALUE><VALUE>Not Supported</VALUE><VALUE>Non-Interlaced Operation</VALUE>)"
            R"(<VALUE>Interlaced Operation</VALUE></VALUE.ARRAY></QUALIFIER></PROPERTY></CLASS>)");
  EXPECT_EQ(
      CallForText("GetClass", {{"ClassName", TClassName{"DI_OutputMonitor"}}, {"PropertyList", TNames{"Dependent"}}}),
      R"(<CLASS NAME="DI_OutputMonitor">)"
      R"(<QUALIFIER NAME="Association" TYPE="boolean" OVERRIDABLE="false"><VALUE>TRUE</VALUE></QUALIFIER>)"
      R"(<QUALIFIER NAME="Description" TYPE="string">)"
      R"(<VALUE>Links a monitor to the output that it is connected to.</VALUE></QUALIFIER>)"
      R"(<PROPERTY.REFERENCE NAME="Dependent" REFERENCECLASS="DI_Output">)"
      R"(<QUALIFIER NAME="Key" TYPE="boolean" OVERRIDABLE="false"><VALUE>TRUE</VALUE></QUALIFIER>)"
      R"(<QUALIFIER NAME="Description" TYPE="string"><VALUE>The output.</VALUE></QUALIFIER>)"
      R"(</PROPERTY.REFERENCE></CLASS>)");
}

TEST(CimOperations, WriteANumberAmongKeysAsOne) {
  const TCimModel model(MakeAnswerJson("", R"({"unit": 3})"));
  TEnumerations enumerations;
  const std::string answer = AnswerCim(MakeRequest("EnumerateInstanceNames", {{"ClassName", TClassName{"DI_Output"}}}),
                                       model, enumerations, "")
                                 .xml;
  EXPECT_NE(answer.find("<INSTANCENAME CLASSNAME=\"DI_Output\"><KEYBINDING NAME=\"SystemName\"><KEYVALUE "
                        "VALUETYPE=\"string\" TYPE=\"string\">N</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"Unit\">"
                        "<KEYVALUE VALUETYPE=\"numeric\" TYPE=\"uint32\">3</KEYVALUE></KEYBINDING></INSTANCENAME>"),
            std::string::npos)
      << answer;
}

TEST(CimOperations, DescribeTheServerInTheInteropNamespace) {
  TCimRequest request = MakeRequest("EnumerateInstances", {});
  request.nameSpace = "root/Interop";
  const auto call = [&](const std::string& name) {
    request.parameters = {{"ClassName", TClassName{name}}};
    TEnumerations enumerations;
    return AnswerCim(request, TCimModel(MakeTwoMonitorsJson()), enumerations, "").xml;
  };
  const ptree namespaces = GetResponse(Parse(call("CIM_Namespace"))).get_child("IRETURNVALUE");
  TNames names;
  for (const auto& [element, named] : namespaces) {
    for (const auto& [tag, property] : named.get_child("INSTANCE")) {
      if (property.get("<xmlattr>.NAME", "") == "Name") names.push_back(property.get<std::string>("VALUE"));
    }
  }
  EXPECT_EQ(names, (TNames{"root/interop", "root/cimv2"}));
  EXPECT_NE(call("CIM_ObjectManager").find("<VALUE>displayinfo</VALUE>"), std::string::npos);
  EXPECT_TRUE(GetResponse(Parse(call("CIM_RegisteredProfile"))).get_child("IRETURNVALUE").empty());
  EXPECT_EQ(GetError(call("QRXSG_DesktopMonitor")), 5);
  EXPECT_EQ(Refuse("EnumerateInstances", {{"ClassName", TClassName{"CIM_Namespace"}}}), 5);
  request.operation = "GetInstance";
  request.parameters = {{"InstanceName", kOne}};
  TEnumerations enumerations;
  EXPECT_EQ(GetError(AnswerCim(request, TCimModel(MakeTwoMonitorsJson()), enumerations, "").xml), 6);
}

namespace {

/// A client that opens and pulls.
class Pulling : public testing::Test {
 protected:
  /// Returns the answer and keeps its context.
  ptree Ask(const std::string& operation, const TGiven& parameters, const std::string& nameSpace = "root/cimv2") {
    TCimRequest request = MakeRequest(operation, parameters);
    request.nameSpace = nameSpace;
    const ptree response = GetResponse(Parse(AnswerCim(request, m_model, m_enumerations, "here:1").xml));
    m_error = response.get("ERROR.<xmlattr>.CODE", 0);
    for (const auto& [element, value] : response) {
      if (element != "PARAMVALUE") continue;
      (value.get<std::string>("<xmlattr>.NAME") == "EndOfSequence" ? m_end : m_context) =
          value.get<std::string>("VALUE");
    }
    return response.get_child("IRETURNVALUE", ptree());
  }

  int Refuse(const std::string& operation, const TGiven& parameters, const std::string& nameSpace = "root/cimv2") {
    Ask(operation, parameters, nameSpace);
    return m_error;
  }

  TCimModel m_model = TCimModel(MakeTwoMonitorsJson());
  TEnumerations::TTime m_now;
  TEnumerations m_enumerations = TEnumerations([this] { return m_now; });
  std::string m_context;
  std::string m_end;
  int m_error = 0;
};

}  // namespace

TEST_F(Pulling, BringsInstancesPieceByPiece) {
  EXPECT_TRUE(Ask("OpenEnumerateInstances", {{"ClassName", kMonitors}}).empty());
  EXPECT_EQ(m_end, "FALSE");
  EXPECT_EQ(Ask("PullInstancesWithPath", {{"EnumerationContext", m_context}, {"MaxObjectCount", "1"}})
                .count("VALUE.INSTANCEWITHPATH"),
            1U);
  EXPECT_EQ(m_end, "FALSE");
  EXPECT_TRUE(Ask("PullInstancesWithPath", {{"EnumerationContext", m_context}, {"MaxObjectCount", "0"}}).empty());
  const ptree last =
      Ask("PullInstancesWithPath", {{"EnumerationContext", m_context}, {"MaxObjectCount", "4294967295"}});
  EXPECT_EQ(m_end, "TRUE");
  EXPECT_EQ(m_context, "");
  const ptree one = last.get_child(ptree::path_type("VALUE.INSTANCEWITHPATH", '/'));
  EXPECT_EQ(one.get<std::string>("INSTANCEPATH.NAMESPACEPATH.HOST"), "here:1");
  EXPECT_EQ(one.count("INSTANCE"), 1U);
}

TEST_F(Pulling, BringsAllAtOnceWhenAskedTo) {
  EXPECT_EQ(
      Ask("OpenEnumerateInstancePaths", {{"ClassName", kMonitors}, {"MaxObjectCount", "2"}}).count("INSTANCEPATH"), 2U);
  EXPECT_EQ(m_end, "TRUE");
  EXPECT_EQ(m_context, "");
}

TEST_F(Pulling, FollowsAssociations) {
  const TGiven one = {{"InstanceName", kOne}, {"MaxObjectCount", "9"}};
  EXPECT_EQ(Ask("OpenAssociatorInstances", one).count("VALUE.INSTANCEWITHPATH"), 1U);
  EXPECT_EQ(Ask("OpenAssociatorInstancePaths", one).count("INSTANCEPATH"), 1U);
  EXPECT_EQ(Ask("OpenReferenceInstances", one).count("VALUE.INSTANCEWITHPATH"), 1U);
  EXPECT_EQ(Ask("OpenReferenceInstancePaths", one).count("INSTANCEPATH"), 1U);
  EXPECT_EQ(Refuse("OpenAssociatorInstances", {{"ObjectName", kOne}}), 4);
  EXPECT_EQ(Refuse("OpenAssociatorInstances", {{"InstanceName", kMonitors}}), 4);
}

TEST_F(Pulling, EndsWhenItIsClosed) {
  Ask("OpenEnumerateInstancePaths", {{"ClassName", kMonitors}});
  EXPECT_EQ(Refuse("CloseEnumeration", {{"EnumerationContext", m_context}}), 0);
  EXPECT_EQ(Refuse("CloseEnumeration", {{"EnumerationContext", m_context}}), 21);
  EXPECT_EQ(Refuse("PullInstancePaths", {{"EnumerationContext", m_context}, {"MaxObjectCount", "1"}}), 21);
}

TEST_F(Pulling, EndsAfterTheLastObject) {
  Ask("OpenEnumerateInstancePaths", {{"ClassName", kMonitors}});
  const TGiven pull = {{"EnumerationContext", m_context}, {"MaxObjectCount", "9"}};
  EXPECT_EQ(Refuse("PullInstancePaths", pull), 0);
  EXPECT_EQ(Refuse("PullInstancePaths", pull), 21);
}

TEST_F(Pulling, MayPauseForAMinuteUnlessToldOtherwise) {
  Ask("OpenEnumerateInstancePaths", {{"ClassName", kMonitors}});
  const TGiven pull = {{"EnumerationContext", m_context}, {"MaxObjectCount", "0"}};
  m_now += std::chrono::seconds(60);
  EXPECT_EQ(Refuse("PullInstancePaths", pull), 0);
  m_now += std::chrono::seconds(61);
  EXPECT_EQ(Refuse("PullInstancePaths", pull), 21);
}

TEST_F(Pulling, TellsWhatAContextIsOf) {
  const auto pull = [&](const std::string& operation) {
    const TCimRequest request = MakeRequest(operation, {{"EnumerationContext", m_context}, {"MaxObjectCount", "1"}});
    return AnswerCim(request, m_model, m_enumerations, "").xml;
  };
  Ask("OpenEnumerateInstancePaths", {{"ClassName", kMonitors}});
  EXPECT_NE(pull("PullInstancesWithPath").find("it is of paths"), std::string::npos);
  Ask("OpenEnumerateInstances", {{"ClassName", kMonitors}});
  EXPECT_NE(pull("PullInstancePaths").find("it is of instances"), std::string::npos);
}

TEST_F(Pulling, KnowsAContextOnlyForWhatItWasOpened) {
  Ask("OpenEnumerateInstancePaths", {{"ClassName", kMonitors}});
  const TGiven pull = {{"EnumerationContext", m_context}, {"MaxObjectCount", "1"}};
  EXPECT_EQ(Refuse("PullInstancesWithPath", pull), 21);
  EXPECT_EQ(Refuse("PullInstancePaths", pull, "root/interop"), 21);
  EXPECT_EQ(Refuse("CloseEnumeration", {pull[0]}, "root/interop"), 21);
  EXPECT_EQ(Refuse("PullInstancePaths", pull, "ROOT/CIMV2"), 0);
  EXPECT_EQ(Refuse("PullInstancePaths", {{"EnumerationContext", "nope"}, {"MaxObjectCount", "1"}}), 21);
}

TEST_F(Pulling, RefusesWithTheErrorOfTheStandard) {
  const auto refuse = [&](const char* name, const char* value) {
    return Refuse("OpenEnumerateInstances", {{"ClassName", kMonitors}, {name, value}});
  };
  EXPECT_EQ(refuse("OperationTimeout", "0"), 22);
  EXPECT_EQ(refuse("OperationTimeout", "601"), 22);
  EXPECT_EQ(refuse("OperationTimeout", "600"), 0);
  EXPECT_EQ(refuse("OperationTimeout", "-1"), 4);
  EXPECT_EQ(refuse("OperationTimeout", "60x"), 4);
  EXPECT_EQ(refuse("FilterQueryLanguage", "DMTF:FQL"), 25);
  EXPECT_EQ(refuse("FilterQuery", "a = 1"), 25);
  EXPECT_EQ(refuse("FilterQuery", ""), 0);
  EXPECT_EQ(refuse("ContinueOnError", "TRUE"), 26);
  EXPECT_EQ(refuse("ContinueOnError", "FALSE"), 0);
  EXPECT_EQ(refuse("MaxObjectCount", "4294967296"), 4);
  EXPECT_EQ(Refuse("PullInstancesWithPath", {{"EnumerationContext", m_context}}), 4);
  EXPECT_EQ(Refuse("OpenEnumerateInstances", {{"ClassName", TClassName{"Nope"}}}), 5);
}

TEST_F(Pulling, IsRefusedWhenTooManyAreOpen) {
  const TGiven monitors = {{"ClassName", kMonitors}};
  for (std::size_t number = 0; number < TEnumerations::kMaxCount; ++number) {
    EXPECT_EQ(Refuse("OpenEnumerateInstancePaths", monitors), 0);
  }
  EXPECT_EQ(Refuse("OpenEnumerateInstancePaths", monitors), 27);
  EXPECT_EQ(Refuse("CloseEnumeration", {{"EnumerationContext", m_context}}), 0);
  EXPECT_EQ(Refuse("OpenEnumerateInstancePaths", monitors), 0);
}

TEST_F(Pulling, NeedsNoInstancesToGoOn) {
  EXPECT_TRUE(NeedsInstances(MakeRequest("OpenEnumerateInstances", {{"ClassName", kMonitors}})));
  EXPECT_FALSE(NeedsInstances(MakeRequest("PullInstancesWithPath", {{"EnumerationContext", "a"}})));
  EXPECT_FALSE(NeedsInstances(MakeRequest("OpenEnumerateInstances", {{"ContinueOnError", "maybe"}})));
}

TEST(CimOperations, RefuseFlagsThatAreNeitherTrueNorFalse) {
  for (const char* const flag : {"LocalOnly", "DeepInheritance", "IncludeQualifiers", "IncludeClassOrigin"}) {
    EXPECT_EQ(Refuse("EnumerateInstances", {{"ClassName", kMonitors}, {flag, "maybe"}}), 4) << flag;
    EXPECT_EQ(Refuse("EnumerateInstances", {{"ClassName", kMonitors}, {flag, ""}}), 4) << flag;
    EXPECT_EQ(Refuse("EnumerateInstances", {{"ClassName", kMonitors}, {flag, "False"}}), 0) << flag;
  }
}

TEST(CimOperations, HaveTheParametersOfTheStandard) {
  const TNames shown = {"IncludeQualifiers", "IncludeClassOrigin", "PropertyList"};
  const TNames associated = {"AssocClass", "ResultClass", "Role", "ResultRole"};
  const TNames opened = {"FilterQueryLanguage", "FilterQuery", "OperationTimeout", "ContinueOnError", "MaxObjectCount"};
  const std::pair<const char*, std::vector<TNames>> operations[] = {
      {"EnumerateInstances", {{"ClassName", "LocalOnly", "DeepInheritance"}, shown}},
      {"EnumerateInstanceNames", {{"ClassName"}}},
      {"GetInstance", {{"InstanceName", "LocalOnly"}, shown}},
      {"GetProperty", {{"InstanceName", "PropertyName"}}},
      {"Associators", {{"ObjectName"}, associated, shown}},
      {"AssociatorNames", {{"ObjectName"}, associated}},
      {"References", {{"ObjectName", "ResultClass", "Role"}, shown}},
      {"ReferenceNames", {{"ObjectName", "ResultClass", "Role"}}},
      {"OpenEnumerateInstances", {{"ClassName", "LocalOnly", "DeepInheritance"}, shown, opened}},
      {"OpenEnumerateInstancePaths", {{"ClassName"}, opened}},
      {"OpenAssociatorInstances", {{"InstanceName"}, associated, shown, opened}},
      {"OpenAssociatorInstancePaths", {{"InstanceName"}, associated, opened}},
      {"OpenReferenceInstances", {{"InstanceName", "ResultClass", "Role"}, shown, opened}},
      {"OpenReferenceInstancePaths", {{"InstanceName", "ResultClass", "Role"}, opened}},
      {"PullInstancesWithPath", {{"EnumerationContext", "MaxObjectCount"}}},
      {"PullInstancePaths", {{"EnumerationContext", "MaxObjectCount"}}},
      {"CloseEnumeration", {{"EnumerationContext"}}},
      {"GetClass", {{"ClassName", "LocalOnly"}, shown}},
      {"EnumerateClasses", {{"ClassName", "DeepInheritance", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin"}}},
      {"EnumerateClassNames", {{"ClassName", "DeepInheritance"}}},
      {"EnumerateQualifiers", {}},
      {"GetQualifier", {{"QualifierName"}}},
  };
  std::set<std::string> all;
  for (const auto& [name, lists] : operations) {
    for (const TNames& list : lists) all.insert(list.begin(), list.end());
  }
  for (const auto& [name, lists] : operations) {
    std::set<std::string> expected;
    for (const TNames& list : lists) expected.insert(list.begin(), list.end());
    std::set<std::string> taken;
    for (const std::string& parameter : all) {
      const std::string answer = Answer(name, {{parameter, TParameterValue()}});
      if (answer.find(parameter + " is no parameter of") == std::string::npos) taken.insert(parameter);
    }
    EXPECT_EQ(taken, expected) << name;
  }
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
        TCase{"Role", "Setting", false}, TCase{"ResultRole", "Setting", true}, TCase{"ResultRole", "Element", false},
        TCase{"Role", "", true}, TCase{"ResultRole", "", true}}) {
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
                                 "DeleteClass", "ExecQuery", "OpenQueryInstances", "EnumerationCount", "Nope"}) {
    EXPECT_EQ(Refuse(name, {{"NewInstance", TOtherElement()}}), 7) << name;
  }
}

TEST(CimOperations, RefuseOtherNamespaces) {
  TCimRequest request = MakeRequest("EnumerateClassNames", {});
  request.nameSpace = "root/other";
  TEnumerations enumerations;
  const TCimAnswer answer = AnswerCim(request, TCimModel(), enumerations, "");
  EXPECT_EQ(GetError(answer.xml), 3);
  EXPECT_EQ(answer.error, 3);
}

TEST(CimOperations, TellWhyACollectionFailed) {
  const std::string answer = AnswerFailure(MakeRequest("GetInstance", {}), "it died \x01").xml;
  EXPECT_EQ(GetError(answer), 1);
  EXPECT_NE(answer.find("CIM_ERR_FAILED: it died \xEF\xBF\xBD"), std::string::npos);
}

TEST(CimOperations, NeedInstancesOnlyToShowThem) {
  for (const char* const name :
       {"EnumerateInstances", "EnumerateInstanceNames", "GetInstance", "GetProperty", "Associators", "AssociatorNames",
        "References", "ReferenceNames", "OpenEnumerateInstances", "OpenEnumerateInstancePaths",
        "OpenAssociatorInstances", "OpenAssociatorInstancePaths", "OpenReferenceInstances",
        "OpenReferenceInstancePaths"}) {
    EXPECT_TRUE(NeedsInstances(MakeRequest(name, {}))) << name;
  }
  for (const char* const name :
       {"GetClass", "EnumerateClasses", "EnumerateClassNames", "EnumerateQualifiers", "GetQualifier",
        "PullInstancesWithPath", "PullInstancePaths", "CloseEnumeration", "CreateInstance"}) {
    EXPECT_FALSE(NeedsInstances(MakeRequest(name, {}))) << name;
  }
}
