#include <gmock/gmock.h>

#include <stdexcept>

#include "host/exception.h"
#include "plugin/video/video_info.h"
#include "tests/support/mock_association.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::Throw;

namespace {

class HeadAssociation : public testing::Test {
 protected:
  TTestHost host;
  TVideoInfo video{host.GetClass("QRXSG_HeadOfVideoController"), TTestHost::Provider()};

  void Commit(const std::string& className, const std::string& deviceId, const std::string& displayId) {
    const auto instance = host.GetClass(className)->CreateInstance({});
    instance->SetProperty("DeviceID", TCIMValue(deviceId), {});
    instance->SetProperty("DisplayId", TCIMValue(displayId), {});
    instance->Commit({});
  }
  void Controller(const std::string& id, const std::string& displayId) {
    Commit("QRXSG_VideoController", id, displayId);
  }
  void Head(const std::string& id, const std::string& displayId) { Commit("QRXSG_VideoHead", id, displayId); }

  /// "controller-head" of each pair.
  std::vector<std::string> Pair() {
    const auto getId = [](const TCIMValue& reference) {
      const std::string path = reference;
      const std::size_t begin = path.find('"') + 1;
      return path.substr(begin, path.rfind('"') - begin);
    };
    std::vector<std::string> pairs;
    for (const PropertyMap& map : video.MakeHeadAssociation()) {
      EXPECT_EQ(map.size(), 2U);
      pairs.push_back(getId(map.at("Antecedent")) + "-" + getId(map.at("Dependent")));
    }
    return pairs;
  }
};

}  // namespace

TEST_F(HeadAssociation, IsEmptyWithoutHeadsAndSaysNothing) {
  Controller("c", "PCI:1:0:0");
  EXPECT_THAT(Pair(), IsEmpty());
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(HeadAssociation, IsEmptyWithoutControllers) {
  Head("h", "PCI:1:0:0");
  EXPECT_THAT(Pair(), IsEmpty());
}

TEST_F(HeadAssociation, LinksTheHeadsOfACardToItsOneController) {
  Controller("c", "PCI:1:0:0");
  Head("h1", "PCI:1:0:0");
  Head("h2", "PCI:1:0:0");
  EXPECT_THAT(Pair(), ElementsAre("c-h1", "c-h2"));
}

TEST_F(HeadAssociation, LinksAHeadToEachControllerOfItsDisplayId) {
  Controller("c1", "x");
  Controller("c2", "y");
  Controller("c3", "x");
  Head("h", "x");
  EXPECT_THAT(Pair(), ElementsAre("c1-h", "c3-h"));
}

TEST_F(HeadAssociation, LinksNothingByAnEmptyDisplayId) {
  Controller("c", "");
  Head("h", "");
  EXPECT_THAT(Pair(), IsEmpty());
}

TEST_F(HeadAssociation, ComparesDisplayIdsByteForByte) {
  Controller("c1", "pci:1:0:0");
  Controller("c2", "PCI:1:0:0 ");
  Head("h", "PCI:1:0:0");
  EXPECT_THAT(Pair(), IsEmpty());
}

namespace {

class RecordedHeadAssociation : public testing::Test {
 protected:
  TTestHost host;
  TMockAssociation association{"QRXSG_VideoController", "DisplayId", "QRXSG_VideoHead", "DisplayId"};
  TVideoInfo video{association.requested, TTestHost::Provider()};

  TMockInstance& Controller(const std::string& path) { return association.AddFirst("x", path); }
  TMockInstance& Head(const std::string& path) { return association.AddSecond("x", path); }

  std::vector<std::string> Pair() {
    std::vector<std::string> pairs;
    for (const PropertyMap& map : video.MakeHeadAssociation()) {
      pairs.push_back(static_cast<std::string>(map.at("Antecedent")) + "-" +
                      static_cast<std::string>(map.at("Dependent")));
    }
    return pairs;
  }

  static TLogEntry Failure(const std::string& reason) {
    return {ILogger::kStatus,
            "Video controller-head association encountered an error\t\t\t\t\t\t\t enumerating CIM instances for "
            "QRXSG_VideoController OR QRXSG_VideoHead Error Code: " +
                reason};
  }
};

}  // namespace

TEST_F(RecordedHeadAssociation, HandsItsContextOnlyToTheClassLookUp) {
  Controller("c");
  Head("h");
  association.Hold();
  EXPECT_THAT(Pair(), ElementsAre("c-h"));
}

TEST_F(RecordedHeadAssociation, LogsAFailureToFindTheNamespace) {
  EXPECT_CALL(*association.requested, GetNamespace(_)).WillOnce(Throw(TZELTException("no namespace")));
  EXPECT_THAT(Pair(), IsEmpty());
  EXPECT_THAT(host.log.GetEntries(), ElementsAre(Failure("no namespace")));
}

TEST_F(RecordedHeadAssociation, LogsAFailureToEnumerateEitherClass) {
  Controller("c");
  association.Hold();
  EXPECT_CALL(*association.second, EnumerateInstances(_, _, _)).WillOnce(Throw(TZELTException("no heads")));
  EXPECT_THAT(Pair(), IsEmpty());
  EXPECT_THAT(host.log.GetEntries(), ElementsAre(Failure("no heads")));
}

TEST_F(RecordedHeadAssociation, SkipsTheRestOfAHeadWhoseControllerFailsAndKeepsThePairsBefore) {
  Controller("c1");
  EXPECT_CALL(Controller("c2"), GetObjectPath(_))
      .WillOnce(Throw(TZELTException("once")))
      .WillOnce(Return(TCIMReference("c2")));
  Controller("c3");
  Head("h1");
  Head("h2");
  association.Hold();
  EXPECT_THAT(Pair(), ElementsAre("c1-h1", "c1-h2", "c2-h2", "c3-h2"));
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(RecordedHeadAssociation, SkipsAHeadWhoseDisplayIdCannotBeRead) {
  Controller("c");
  EXPECT_CALL(Head("h1"), GetProperty(_, _)).WillOnce(Throw(TZELTException("unreadable")));
  Head("h2");
  association.Hold();
  EXPECT_THAT(Pair(), ElementsAre("c-h2"));
}

TEST_F(RecordedHeadAssociation, LetsOtherExceptionsThrough) {
  EXPECT_CALL(*association.requested, GetNamespace(_)).WillOnce(Throw(std::runtime_error("not the host's own kind")));
  EXPECT_THROW(Pair(), std::runtime_error);
}
