#include "command/collection/output_keys.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <set>

using testing::EndsWith;
using testing::HasSubstr;

TEST(OutputKeys, AreExplainedInTheDocumentation) {
  std::ifstream file(DOCS_FOLDER "/json.md");
  const std::string text(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(text, HasSubstr("\n\n" + MakeKeyTable() + "\n"));
}

TEST(OutputKeys, HaveANameOfTheirOwnAndASentence) {
  std::set<std::string> names;
  for (const TKeyGroup& group : GetKeyGroups()) {
    for (const TOutputKey* const key : group.keys) {
      EXPECT_TRUE(names.insert(std::string(group.name) + "." + key->name).second) << key->name;
      EXPECT_THAT(key->meaning, EndsWith(".")) << key->name;
    }
  }
}

TEST(OutputKeys, OfOneObjectAreTogether) {
  std::set<std::string> names;
  for (const TKeyGroup& group : GetKeyGroups()) {
    const bool isNew = *group.name == '\0' || names.insert(group.name).second;
    EXPECT_TRUE(isNew) << group.name;
  }
}

TEST(OutputKeys, OfAnEmptyOutputAreTheUnitAndTheDeviceId) {
  std::vector<std::string> names;
  for (const TKeyGroup& group : GetKeyGroups()) {
    for (const TOutputKey* const key : group.keys) {
      const bool hasValue = group.count == nullptr && key->get(TOutput(), 0).index() != 0;
      if (hasValue || IsAlwaysThere(*key)) names.emplace_back(key->name);
    }
  }
  EXPECT_THAT(names, testing::ElementsAre("unit", "deviceID"));
}
