#include "plugin/display_info_callbacks.h"

#include <gmock/gmock.h>

#include <boost/lexical_cast.hpp>

#include <stdexcept>

#include "host/exception.h"
#include "plugin/collector/display.h"
#include "tests/support/edid_builder.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/mock_cim.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::ILogger;
using NQRXZELT20::IPluginBasicQueryCallbacks;
using NQRXZELT20::IPluginCallbacks;
using NQRXZELT20::TDisplayInfoCallbacks;
using NQRXZELT20::TZELTException;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::ReturnRef;

namespace {

const char* const kReceived = "TDisplayInfoCallbacks::GetData - Received request for class ";
const char* const kRetrieved = "TDisplayInfoCallbacks::retrieveDataForClass - Data successfully retrieved.";
const char* const kNothing =
    "TDisplayInfoCallbacks::retrieveDataForClass - No instances of the requested class were created.";
const char* const kExit = "TDisplayInfoCallbacks::GetData - Normal exit from plugin.";
const char* const kThrew = "DisplayInfo plugin threw unknown exception";

TLogEntry Debug(const std::string& message) { return {ILogger::kDebug, message}; }
TLogEntry Received(const std::string& name) { return Debug(kReceived + name + "."); }

/// A class with any name, of which nothing else is asked.
boost::shared_ptr<ICIMClass> Named(const std::string& name) {
  static std::vector<std::unique_ptr<std::string>> names;
  names.push_back(std::make_unique<std::string>(name));
  auto cimClass = boost::make_shared<NiceMock<TMockClass>>();
  ON_CALL(*cimClass, GetName(_)).WillByDefault(ReturnRef(*names.back()));
  return cimClass;
}

/// A collector whose behaviour the test sets.
class TCollector : public TDisplay {
 public:
  explicit TCollector(std::function<std::vector<ICIMInstance*>()> answer)
      : TDisplay(Named("any")), m_class(Named("any")), m_answer(std::move(answer)) {}

  ICIMClass* GetCIMClass() override { return m_class.get(); }
  std::vector<ICIMInstance*> GetCIMInstances(std::string) override { return m_answer(); }

 private:
  boost::shared_ptr<ICIMClass> m_class;
  std::function<std::vector<ICIMInstance*>()> m_answer;
};

class Callbacks : public testing::Test {
 protected:
  TTestHost host;
  TLrmiDouble lrmi;
  std::unique_ptr<TDisplayInfoCallbacks> callbacks = std::make_unique<TDisplayInfoCallbacks>();

  /// Makes the callback object anew with a host that gives a provider.
  void GiveProvider() {
    host.pluginManager = boost::make_shared<TTestPluginManager>(TTestHost::Provider());
    callbacks = std::make_unique<TDisplayInfoCallbacks>();
  }

  const std::vector<TLogEntry>& Ask(std::vector<boost::shared_ptr<ICIMClass>> classes) {
    callbacks->GetData(host.store, classes);
    return host.log.GetEntries();
  }

  const std::vector<TLogEntry>& Retrieve(std::function<std::vector<ICIMInstance*>()> answer) {
    TCollector collector(std::move(answer));
    EXPECT_EQ(callbacks->RetrieveDataForClass(&collector), 0);
    return host.log.GetEntries();
  }
};

}  // namespace

TEST_F(Callbacks, RegisterThemselvesOnceByTheirFirstBase) {
  const auto manager = boost::dynamic_pointer_cast<TTestPluginManager>(host.pluginManager);
  EXPECT_THAT(manager->registered, ElementsAre(callbacks.get()));
  EXPECT_EQ(static_cast<void*>(manager->registered[0]), static_cast<void*>(callbacks.get()));
}

TEST_F(Callbacks, AreReachedAsQueryCallbacksFromTheRegisteredPointer) {
  const auto manager = boost::dynamic_pointer_cast<TTestPluginManager>(host.pluginManager);
  EXPECT_EQ(dynamic_cast<IPluginBasicQueryCallbacks*>(manager->registered[0]), callbacks.get());
}

TEST_F(Callbacks, TellWhoTheyAre) {
  EXPECT_EQ(callbacks->GetType(), 0);
  EXPECT_EQ(callbacks->GetName(), "Display Information Collector");
  EXPECT_EQ(callbacks->GetVersion(), "1.0");
  EXPECT_EQ(callbacks->GetInterfaceVersion(), "1.0");
}

TEST_F(Callbacks, LetAFailureOfTheRegistrationThrough) {
  host.onCall = [](const std::string&) { throw TZELTException("no plug-ins today"); };
  EXPECT_THROW(TDisplayInfoCallbacks(), TZELTException);
}

TEST(CallbacksDeathTest, StopAtAPluginManagerOfAnotherType) {
  TTestHost host;
  host.pluginManager = host.store;
  EXPECT_DEATH(TDisplayInfoCallbacks(), "px != 0");
}

TEST(CallbacksDeathTest, StopAtANullClass) {
  TTestHost host;
  TDisplayInfoCallbacks callbacks;
  std::vector<boost::shared_ptr<ICIMClass>> classes(1);
  EXPECT_DEATH(callbacks.GetData(host.store, classes), "px != 0");
}

TEST_F(Callbacks, LogTheirStartAndStopWithoutAProvider) {
  callbacks->Init();
  callbacks->DeInit();
  EXPECT_THAT(host.log.GetEntries(), ElementsAre(Debug("TDisplayInfoCallbacks::Init - Initializing the plugin."),
                                                 Debug("TDisplayInfoCallbacks::DeInit - De-initializing the plugin.")));
}

TEST_F(Callbacks, DeleteThemselvesWhenTheHostUnloads) {
  // The leak checker sees whether the memory is freed too.
  struct TWatched : TDisplayInfoCallbacks {
    explicit TWatched(bool& isDeleted) : m_isDeleted(isDeleted) {}
    ~TWatched() override { m_isDeleted = true; }
    bool& m_isDeleted;
  };
  bool isDeleted = false;
  IPluginCallbacks* const registered = new TWatched(isDeleted);
  registered->PrepareForUnload();
  EXPECT_TRUE(isDeleted);
}

TEST_F(Callbacks, LogOnlyTheExitForNoClasses) { EXPECT_THAT(Ask({}), ElementsAre(Debug(kExit))); }

TEST_F(Callbacks, ServeTheClassesInTheOrderOfTheRequest) {
  lrmi.edids[0] = TEdidBuilder().Build();
  EXPECT_THAT(Ask({host.GetClass("QRXSG_VideoHead"), host.GetClass("QRXSG_DesktopMonitor")}),
              ElementsAre(Received("QRXSG_VideoHead"), Debug(kNothing), Received("QRXSG_DesktopMonitor"),
                          Debug(kRetrieved), Debug(kExit)));
}

TEST_F(Callbacks, PutTheCollectorsOwnLinesBetweenTheirs) {
  GiveProvider();
  lrmi.initWorks = false;
  EXPECT_THAT(Ask({host.GetClass("QRXSG_DesktopMonitor")}),
              ElementsAre(Received("QRXSG_DesktopMonitor"),
                          TLogEntry{ILogger::kStatus, "Lib not initialized. Cannot get monitor info."},
                          TLogEntry{ILogger::kStatus, "EDID structure for monitor is not valid or not supported"},
                          Debug(kNothing), Debug(kExit)));
}

TEST_F(Callbacks, AreHeardWithoutAProviderWhileTheCollectorsAreSilent) {
  lrmi.initWorks = false;
  EXPECT_THAT(Ask({host.GetClass("QRXSG_DesktopMonitor")}),
              ElementsAre(Received("QRXSG_DesktopMonitor"), Debug(kNothing), Debug(kExit)));
}

TEST_F(Callbacks, ServeAllSixClasses) {
  std::vector<boost::shared_ptr<ICIMClass>> classes;
  for (const TClassDeclaration& declaration : GetSchema()) classes.push_back(host.GetClass(declaration.name));
  const auto isRetrieveLine = [](const TLogEntry& entry) {
    return entry.message.find("retrieveDataForClass") != std::string::npos;
  };
  const std::vector<TLogEntry>& log = Ask(classes);
  EXPECT_EQ(std::count_if(log.begin(), log.end(), isRetrieveLine), 6);
}

TEST_F(Callbacks, SkipAClassThatDiffersInLetterCase) {
  EXPECT_THAT(Ask({Named("qrxsg_desktopmonitor")}), ElementsAre(Received("qrxsg_desktopmonitor"), Debug(kExit)));
  EXPECT_THAT(lrmi.calls, IsEmpty());
}

TEST_F(Callbacks, LetAFailureToNameAClassThrough) {
  auto cimClass = boost::make_shared<NiceMock<TMockClass>>();
  EXPECT_CALL(*cimClass, GetName(IsEmpty())).WillOnce(testing::Throw(TZELTException("nameless")));
  EXPECT_THROW(Ask({cimClass}), TZELTException);
}

TEST_F(Callbacks, ContainAnExceptionOfACollectorAndServeTheNextClass) {
  lrmi.edids[0] = TEdidBuilder().Build();
  int calls = 0;
  host.onCall = [&](const std::string&) {
    if (++calls == 1) throw std::runtime_error("not the host's own kind");
  };
  const auto monitors = host.GetClass("QRXSG_DesktopMonitor");
  EXPECT_THAT(Ask({monitors, monitors}),
              ElementsAre(Received("QRXSG_DesktopMonitor"), TLogEntry{ILogger::kStatus, kThrew}, Debug(kNothing),
                          Received("QRXSG_DesktopMonitor"), Debug(kRetrieved), Debug(kExit)));
}

TEST_F(Callbacks, ReportInstances) {
  EXPECT_THAT(Retrieve([] { return std::vector<ICIMInstance*>(1); }), ElementsAre(Debug(kRetrieved)));
}

TEST_F(Callbacks, FollowTheReturnedVectorNotTheHostsStore) {
  EXPECT_THAT(Retrieve([this] {
                host.GetClass("QRXSG_DesktopMonitor")->CreateInstance({})->Commit({});
                return std::vector<ICIMInstance*>();
              }),
              ElementsAre(Debug(kNothing)));
}

TEST_F(Callbacks, UseTheSameWordsForWhateverIsThrown) {
  const std::function<std::vector<ICIMInstance*>()> throwers[] = {
      []() -> std::vector<ICIMInstance*> { throw TZELTException("host"); },
      []() -> std::vector<ICIMInstance*> { throw boost::bad_lexical_cast(); },
      []() -> std::vector<ICIMInstance*> { throw 42; },
  };
  for (const auto& thrower : throwers) Retrieve(thrower);
  const TLogEntry threw = {ILogger::kStatus, kThrew};
  EXPECT_THAT(host.log.GetEntries(),
              ElementsAre(threw, Debug(kNothing), threw, Debug(kNothing), threw, Debug(kNothing)));
}
