#include "tests/layering/layering.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <vector>

namespace banddesk::layering {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Layering, EveryIncludeOfTheTreeRunsDownTheModules) {
  const Tree tree = readTree(BANDDESK_SOURCE_DIR);
  ASSERT_TRUE(tree.contains("tests/layering/layering_test.cpp")) << "read nothing of " BANDDESK_SOURCE_DIR;
  for (const std::string& line : violations(tree)) ADD_FAILURE() << line;
}

TEST(Layering, PrintsTheArrowsBetweenModulesOfWhichNoneRunsInACircle) {
  const Arrows arrows = moduleArrows(readTree(BANDDESK_SOURCE_DIR));
  for (const auto& [from, targets] : arrows) {
    std::cout << from << " ->";
    for (const std::string& to : targets) std::cout << ' ' << to << (to == *targets.rbegin() ? "\n" : ",");
  }
  EXPECT_THAT(modulesInCircles(arrows), IsEmpty());
  EXPECT_THAT(modulesInCircles({{"a", {"b"}}, {"b", {"c", "d"}}, {"c", {"a"}}}), ElementsAre("a", "b", "c"));
}

TEST(Layering, NamesEachIncludeThatBreaksARule) {
  struct Case {
    std::string file, include, complaint;
  };
  const std::vector<Case> cases = {
      {"plugin/base/a.h", "\"plugin/ui/menu.h\"", "base may not include ui"},
      {"plugin/shell/persistent.cpp", "\"plugin/shell/save.h\"", "contracts may not include shell"},
      {"plugin/results/page.cpp", "\"host/grid/grid.h\"", "page may not include grid"},
      {"plugin/results/page.cpp", "\"page.h\"", "not a path from the repository root"},
      {"plugin/results/page.cpp", "<unistd.h>", "not a standard header"},
      {"plugin/results/page.cpp", "<fmt/core.h>", "not a standard header"},
      {"plugin/table/fill.cpp", "\"plugin/analysis/run.h\"", "table may not include analysis"},
      {"plugin/params/page.cpp", "\"plugin/analysis/run.h\"", "params may not include analysis"},
      {"desktop/dialogs/box.cpp", "\"desktop/help/help.h\"", "dialogs may not include help"},
      {"host/grid/grid.h", "\"plugin/results/page.h\"", "grid may not include page"},
      {"desktop/views/v.cpp", "\"plugin/table/page_controls.h\"", "views may not include table"},
      {"host/grid/grid.h", "<host/import/reader.h>", "grid may not include import"},
      {"host/framework/f.h", "<tests/base/fake.h>", "nothing includes tests"},
      {"host/other/f.h", "<vector>", "no place in the list of modules"},
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
