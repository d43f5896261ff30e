// A host with the real component, a study and analyses whose bins are scripted: what the tests of the plug-in
// drive. No binning rule plays a part here.
#pragma once

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/framework/finished_table.h"
#include "host/framework/host.h"
#include "host/grid/grid_control.h"
#include "host/store/memory_store.h"
#include "plugin/banddesk.h"
#include "tests/support/test_front.h"

namespace banddesk::test {

// One bin as a calculator would find it: its statistics, and per result the fragments and the largest height.
struct ScriptedBin {
  double mean = 0;
  std::vector<std::int32_t> counts = {};
  std::vector<double> heights = {};  // absent: 100 RFU for each count that is not 0
};

using Script = std::map<int, std::vector<ScriptedBin>>;  // by dye

struct CalculatorCall {
  int dye;
  std::int32_t result;
  std::vector<double> sizes;
};

// What the calculators of one desk are to answer, and what they were told.
struct CalculatorDesk {
  Script script;
  std::optional<std::int32_t> claimedBins;  // what BinCount answers instead
  bool omitsLastResult = false;
  std::vector<CalculatorCall> added;
  std::vector<std::pair<double, double>> calculated;  // width and threshold of each Calculate
};

class Desk {
 public:
  explicit Desk(Script script = {}, const std::vector<std::string>& samples = {"a", "b", "c"});
  // With the host's own calculators and results that have fragments of their own.
  explicit Desk(std::vector<host::NewResult> results);

  // Opens the study; every sample has one fragment of 100 nt in each dye.
  void openStudy();
  // The command, the parameters page as it stands, OK: the results page.
  IAFLPResultsPage& newAnalysis();
  // The same with the parameters page in hand.
  std::shared_ptr<host::HostPage> parametersPage();
  IAFLPResultsPage& accept(const std::shared_ptr<host::HostPage>& parameters);
  // The results page of an analysis that is opened again.
  IAFLPResultsPage& reopen(const std::shared_ptr<AFLP>& analysis);

  std::shared_ptr<host::HostPage> pageNamed(const std::string& definition);
  IAFLPResultsPage& page();
  AFLP& analysis();
  host::GridControl& grid();
  host::FinishedTable finished() { return {analysis(), page()}; }

  template <class Wanted>
  static Wanted& control(IPageControl& page, const std::string& name) {
    Wanted* found = page.Controls().find<Wanted>(name);
    if (found == nullptr) throw std::logic_error("no control " + name);
    return *found;
  }
  template <class Wanted>
  Wanted& control(const std::string& name) {
    return control<Wanted>(page(), name);
  }
  void choose(const std::string& menuItem) { control<ui::MenuItem>(menuItem).choose(); }
  // The same after a right click on a cell of the logical table, whichever way it lies.
  void chooseAt(std::int32_t row, std::int32_t col, const std::string& menuItem);
  // Half a second passes.
  bool wait() { return host.pages().fireTimers(); }

  // The visible table as text, a line a row, cells separated by blanks; "*" behind a grey cell.
  std::string visibleTable();

  // Lets go of all that was reported and recorded so far.
  void forget();
  // From now on the grids of new pages fail where the host's operations do.
  void guardGrids() { *guards_ = &host.faults(); }

  std::shared_ptr<CalculatorDesk> calculators = std::make_shared<CalculatorDesk>();
  std::shared_ptr<host::MemoryStore> store;

 private:
  std::shared_ptr<host::FaultInjector*> guards_ = std::make_shared<host::FaultInjector*>(nullptr);

 public:
  host::Host host;
  TestFront front{host.platform(), host.seat()};
};

// The component under test; tools/mutants puts a broken one in its place.
std::string componentFile();
// The whole of a text file.
std::string fileText(const std::string& path);
// A path in the folder of this test; no file is there.
std::string scratch(const std::string& name);

}  // namespace banddesk::test
