#include "embedded_host/log.h"

#include <gmock/gmock.h>

using NQRXZELT20::ILogger;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TLogEntry Debug(const std::string& message) { return {ILogger::kDebug, message}; }
TLogEntry LeftOut(int count) { return {ILogger::kWarning, std::to_string(count) + " more log messages were left out"}; }

void Write(TLog& log, const std::vector<std::string>& messages) {
  for (const std::string& message : messages) log.Write(ILogger::kDebug, message);
}

}  // namespace

TEST(Log, KeepsAMillionMessages) { EXPECT_EQ(TLog::kMaxEntries, 1'000'000U); }

TEST(Log, KeepsAsManyMessagesAsItsLimit) {
  TLog log({}, 2);
  Write(log, {"a", "b"});
  EXPECT_THAT(log.GetEntries(), ElementsAre(Debug("a"), Debug("b")));
}

TEST(Log, EndsWithHowManyMessagesWereLeftOut) {
  TLog log({}, 2);
  Write(log, {"a", "b", "c"});
  EXPECT_THAT(log.GetEntries(), ElementsAre(Debug("a"), Debug("b"), LeftOut(1)));
  Write(log, {"d", "e"});
  EXPECT_THAT(log.GetEntries(), ElementsAre(Debug("a"), Debug("b"), LeftOut(3)));
}

TEST(Log, TellsItsListenerOnceThatNothingMoreIsKept) {
  std::vector<TLogEntry> heard;
  TLog log([&](const TLogEntry& entry) { heard.push_back(entry); }, 1);
  Write(log, {"a", "b", "c"});
  EXPECT_THAT(heard, ElementsAre(Debug("a"), TLogEntry{ILogger::kWarning, "all further log messages are left out"}));
}

TEST(Log, HasTheMessagesSinceAMark) {
  TLog log;
  Write(log, {"a"});
  const TLog::TMark mark = log.GetMark();
  EXPECT_THAT(log.GetEntriesSince(mark), IsEmpty());
  Write(log, {"b", "c"});
  EXPECT_THAT(log.GetEntriesSince(mark), ElementsAre(Debug("b"), Debug("c")));
}

TEST(Log, TellsHowManyMessagesSinceAMarkWereLeftOut) {
  TLog log({}, 2);
  Write(log, {"a"});
  const TLog::TMark kept = log.GetMark();
  Write(log, {"b", "c"});
  const TLog::TMark full = log.GetMark();
  EXPECT_THAT(log.GetEntriesSince(full), IsEmpty());
  Write(log, {"d", "e"});
  EXPECT_THAT(log.GetEntriesSince(kept), ElementsAre(Debug("b"), LeftOut(3)));
  EXPECT_THAT(log.GetEntriesSince(full), ElementsAre(LeftOut(2)));
}

TEST(Log, IsEmptyOnceItsEntriesWereTaken) {
  TLog log({}, 1);
  Write(log, {"a", "b"});
  EXPECT_THAT(log.TakeEntries(), ElementsAre(Debug("a"), LeftOut(1)));
  EXPECT_THAT(log.GetEntries(), IsEmpty());
  Write(log, {"c", "d"});
  EXPECT_THAT(log.GetEntries(), ElementsAre(Debug("c"), LeftOut(1)));
}
