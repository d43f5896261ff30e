#include "tests/layering/layering.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace banddesk::layering {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(Layering, EveryIncludeOfTheTreeRunsDownTheHouse) {
  const Tree tree = readTree(BANDDESK_SOURCE_DIR);
  ASSERT_TRUE(tree.contains("tests/layering/layering_test.cpp")) << "read nothing of " BANDDESK_SOURCE_DIR;
  for (const std::string& line : violations(tree)) ADD_FAILURE() << line;
}

TEST(Layering, NamesEachIncludeThatBreaksARule) {
  struct Case {
    std::string file, include, complaint;
  };
  const std::vector<Case> cases = {
      {"plugin/base/a.h", "\"plugin/ui/menu.h\"", "base may not include ui"},
      {"plugin/shell/persistent.cpp", "\"plugin/shell/save.h\"", "contracts may not include plugin"},
      {"plugin/results/page.cpp", "\"host/grid/grid.h\"", "plugin may not include grid"},
      {"plugin/results/page.cpp", "\"page.h\"", "not a path from the repository root"},
      {"plugin/results/page.cpp", "<unistd.h>", "not a standard header"},
      {"plugin/results/page.cpp", "<fmt/core.h>", "not a standard header"},
      {"host/grid/grid.h", "\"plugin/results/page.h\"", "grid may not include plugin"},
      {"host/grid/grid.h", "<host/import/reader.h>", "grid may not include import"},
      {"host/framework/f.h", "<tests/base/fake.h>", "nothing includes tests"},
      {"host/other/f.h", "<vector>", "no place in the list of rooms"},
      {"cli/main.cpp", "<QtCore/QString>", "only desktop/ sees Qt"},
      {"tests/grid/x_test.cpp", "<qstring.h>", "only desktop/ sees Qt"},
  };
  for (const Case& one : cases) {
    EXPECT_THAT(violations({{one.file, "#pragma once\n # include " + one.include + "\n"}}),
                ElementsAre(testing::AllOf(HasSubstr(one.file + ":2: "), HasSubstr(one.complaint))));
  }
}

TEST(Layering, NamesTheWholeCircleOnce) {
  const Tree tree = {{"plugin/results/a.h", "#include \"plugin/results/b.h\"\n"},
                     {"plugin/results/b.h", "#include \"plugin/results/c.h\"\n"},
                     {"plugin/results/c.h", "#include \"plugin/results/a.h\"\n"},
                     {"plugin/results/d.h", "#include \"plugin/results/b.h\"\n"}};
  EXPECT_THAT(violations(tree),
              ElementsAre("includes in a circle: plugin/results/a.h -> plugin/results/b.h -> "
                          "plugin/results/c.h -> plugin/results/a.h"));
}

}  // namespace
}  // namespace banddesk::layering
