// Every call of the plug-in to its host fails once, in each of three ways. Only exceptions that may leave the plug-in
// do, the log says what was lost, later classes are served, the next request is complete, and no object is kept.
#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "host/exception.h"
#include "tests/faults/faulty_session.h"

using NQRXZELT20::TZELTException;
using testing::IsEmpty;

namespace {

const std::string kUnknown = "DisplayInfo plugin threw unknown exception";
const std::string kReceived = "TDisplayInfoCallbacks::GetData - Received request for class ";
const std::string kGenerating = "TDisplay::generateCIMInstance - ";

/// Where in a request a call is made.
struct TPlace {
  std::string call;
  std::string className;  // of the class that is being served
  bool isDispatch;        // made between two classes
  bool isGenerating;      // made for one instance
};

TPlace FindPlace(const std::string& call, const std::vector<TLogEntry>& log) {
  TPlace place = {call.substr(0, call.find(' ')), "", true, false};
  for (const TLogEntry& entry : log) {
    const bool isReceived = entry.message.compare(0, kReceived.size(), kReceived) == 0;
    if (isReceived)
      place.className = entry.message.substr(kReceived.size(), entry.message.size() - kReceived.size() - 1);
    place.isDispatch = !isReceived && entry.message.find("retrieveDataForClass") != std::string::npos;
    place.isGenerating = entry.message.compare(0, kGenerating.size(), kGenerating) == 0;
  }
  return place;
}

/// What the log says of a host's failure "lost" at a place; the first row that fits counts.
struct TComplaint {
  const char* classNames;  // those for which it is said; empty: all
  bool isGenerating;
  const char* calls;    // those that failed; empty: all
  const char* message;  // null: none
};

const TComplaint kComplaints[] = {
    {"QRXSG_VideoController", true, "",
     "VideoInfo encountered an error\t\t\t\t\t\t\t\t generating CIM instances for QRXSG_VideoController Error Code: "
     "lost"},
    {"QRXSG_VideoHead", true, "",
     "VideoInfo encountered an error\t\t\t\t\t\t\t\t generating CIM instances for QRXSG_VideoHead Error Code: lost"},
    {"QRXSG_HeadOfVideoController", true, "",
     "VideoInfo encountered an error\t\t\t\t\t\t\t\t generating CIM instances for QRXSG_HeadOfVideoController Error "
     "Code: "
     "lost"},
    {"", true, "", "Monitor encountered an error\t\t\t\t\t\tgenerating CIM instances. Error Code: lost"},
    {"", false, "GetName GetRunningTypeOnXen", kUnknown.c_str()},
    {"QRXSG_HeadOfVideoController", false, "GetNamespace GetClass EnumerateInstances",
     "Video controller-head association encountered an error\t\t\t\t\t\t\t enumerating CIM instances for "
     "QRXSG_VideoController OR QRXSG_VideoHead Error Code: lost"},
    {"QRXSG_MonitorSetting", false, "",
     "Monitor association encountered an error\t\t\t\t\tenumerating CIM instances for QRXSG_DesktopMonitor OR "
     "QRXSG_MonitorResolution Error Code: lost"},
    // Without a message: a file is looked for elsewhere, a name of the system stays empty, a head loses its
    // controllers.
    {"", false, "", nullptr},
};

bool Has(const std::string& words, const std::string& word) {
  return words.empty() || (" " + words + " ").find(" " + word + " ") != std::string::npos;
}

std::vector<std::string> GetComplaintsOfTheHostsOwn(const TPlace& place) {
  const auto fits = [&](const TComplaint& complaint) {
    return complaint.isGenerating == place.isGenerating && Has(complaint.classNames, place.className) &&
           Has(complaint.calls, place.call);
  };
  const TComplaint& complaint = *std::find_if(std::begin(kComplaints), std::end(kComplaints), fits);
  return complaint.message == nullptr ? std::vector<std::string>() : std::vector<std::string>{complaint.message};
}

/// True if every later request loses the same, since a loaded plug-in reads the configuration only once.
bool IsKept(const TPlace& place) {
  return place.className == "QRXSG_VideoController" && !place.isGenerating &&
         Has("FileExists CaptureFile GetNamespace GetSystemCreationClassName GetSystemName", place.call);
}

/// If anything else is thrown, the next request reads again.
bool IsNeverKept(const TPlace&) { return false; }

std::vector<std::string> GetServedClasses(const std::vector<TLogEntry>& log) {
  std::vector<std::string> names;
  for (const TLogEntry& entry : log) {
    if (entry.message.compare(0, kReceived.size(), kReceived) == 0) names.push_back(entry.message);
  }
  return names;
}

/// Makes the call of that number throw, and remembers where that was.
template <typename TThrow>
class TFault {
 public:
  TFault(TFaultySession& session, std::size_t number, TThrow raise) {
    session.onHostCall = [this, &session, number, raise](const std::string& call) {
      if (++m_calls != number) return;
      m_place = FindPlace(call, session.GetLog());
      raise();
    };
  }

  bool HasStruck() const { return m_place.has_value(); }
  const TPlace& GetPlace() const { return *m_place; }

 private:
  std::size_t m_calls = 0;
  std::optional<TPlace> m_place;
};

class HostFaults : public testing::Test {
 protected:
  HostFaults() {
    TFaultySession session;
    whole = session.AskForAll();
    served = GetServedClasses(session.GetLog());
  }

  /// Makes each call fail in turn. `expect` gives the messages that belong to a failure at a place.
  template <typename TThrow, typename TExpect>
  void FailEachCall(TThrow raise, TExpect expect, bool (*isKept)(const TPlace& place)) {
    std::size_t failures = 0;
    for (bool hasStruck = true; hasStruck;) {
      TFaultySession session;
      const TFault<TThrow> fault(session, failures + 1, raise);
      const bool hasEscaped = AskAndCatch(session);
      hasStruck = fault.HasStruck();
      if (hasStruck) {
        ++failures;
        SCOPED_TRACE("call " + std::to_string(failures) + ": " + fault.GetPlace().call + " for " +
                     fault.GetPlace().className);
        ExpectContained(session, fault.GetPlace(), hasEscaped, expect(fault.GetPlace()), isKept(fault.GetPlace()));
        if (HasFailure()) return;
      }
    }
    EXPECT_GT(failures, 150U);
  }

  void ExpectNextRequest(TFaultySession& session, const std::set<TDescribed>& instances) {
    EXPECT_EQ(session.AskForAll(), instances);
    EXPECT_THAT(session.GetComplaints(), IsEmpty());
    EXPECT_EQ(session.CountObjects(), 0);
  }

  std::set<TDescribed> whole;       // the instances of a request in which nothing fails
  std::vector<std::string> served;  // its classes, as the log names them

 private:
  static bool AskAndCatch(TFaultySession& session) {
    try {
      session.Ask();
      return false;
    } catch (...) {
      return true;
    }
  }

  void ExpectContained(TFaultySession& session, const TPlace& place, bool hasEscaped,
                       const std::vector<std::string>& complaints, bool isKept) {
    EXPECT_EQ(session.CountObjects(), 0);
    EXPECT_EQ(hasEscaped, place.isDispatch) << "only the name of a requested class is asked for outside a collector";
    if (!hasEscaped) {
      EXPECT_EQ(session.GetComplaints(), complaints);
      EXPECT_EQ(GetServedClasses(session.GetLog()), served);
    }
    const std::set<TDescribed> left = session.TakeInstances();
    session.onHostCall = nullptr;
    ExpectNextRequest(session, isKept ? left : whole);
  }
};

}  // namespace

TEST_F(HostFaults, OfTheHostsOwnKindCostWhatTheyStruckAndAreLogged) {
  FailEachCall([] { throw TZELTException("lost"); }, GetComplaintsOfTheHostsOwn, IsKept);
}

TEST_F(HostFaults, OfTheStandardLibraryCostTheClassInHand) {
  FailEachCall([] { throw std::runtime_error("lost"); },
               [](const TPlace&) { return std::vector<std::string>{kUnknown}; }, IsNeverKept);
}

TEST_F(HostFaults, OfNoKnownKindCostTheClassInHand) {
  FailEachCall([] { throw 1; }, [](const TPlace&) { return std::vector<std::string>{kUnknown}; }, IsNeverKept);
}

TEST_F(HostFaults, OfTheLogReachTheHostAndLeaveTheNextRequestWhole) {
  std::size_t failures = 0;
  for (bool hasStruck = true; hasStruck; ++failures) {
    TFaultySession session;
    hasStruck = false;
    std::size_t messages = 0;
    session.onMessage = [&](const TLogEntry&) {
      if (messages++ != failures) return;
      hasStruck = true;
      throw TZELTException("the log is full");
    };
    try {
      session.Ask();
    } catch (const TZELTException&) {
    }
    EXPECT_EQ(session.CountObjects(), 0);
    session.TakeInstances();
    session.onMessage = nullptr;
    SCOPED_TRACE("message " + std::to_string(failures));
    ExpectNextRequest(session, whole);
  }
  EXPECT_GT(failures, 20U);
}
