// One study on its way through the program: its table, its file, its analysis on an open results page. All is
// done through the host and the pages, as the command line and the desktop do it. What is timed is decided
// elsewhere.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "bench/bench_study.h"
#include "bench/references.h"
#include "host/framework/host.h"
#include "host/grid/grid_control.h"

namespace banddesk::bench {

/// What is seen from between the page and its calculators.
struct CalculatorWatch {
  double started = 0;                  // the processor's second at which the latest analysis began
  std::function<void()> onCalculated;  // after the bins of the last dye
};

class Road {
 public:
  /// Writes the study's table into the folder.
  Road(StudySize size, const std::filesystem::path& folder);
  Road(const Road&) = delete;
  Road& operator=(const Road&) = delete;
  ~Road();

  const StudySize& size() const { return size_; }
  const std::filesystem::path& folder() const { return folder_; }
  const std::filesystem::path& table() const { return table_; }
  const std::filesystem::path& file() const { return file_; }

  /// Reads the table: the results as they wait to be added, and the pairs of the reference.
  void read();
  std::size_t fragments() const { return fragments_; }
  const Pairs& pairs() const { return pairs_; }

  /// A study file without results, open.
  void newStudy();
  void addResults();
  /// Lets go of what was read; it is in the study.
  void forgetTable() { results_ = {}; }
  /// The parameters page, OK, save.
  void makeAnalysis();
  void openStudy();
  void openAnalysis();
  void closeAnalysis() { host_->pages().endAll(); }

  host::Host& host() { return *host_; }
  CalculatorWatch& watch() { return *watch_; }
  std::shared_ptr<AFLP> analysis();
  IAFLPResultsPage& page();
  /// The fragment counts of the open table, a line for each bin.
  std::vector<std::int32_t> counts();
  host::GridControl& grid() { return control<host::GridControl>("grdAFLP"); }

  template <class Wanted>
  Wanted& control(const std::string& name) {
    Wanted* found = page().Controls().find<Wanted>(name);
    if (found == nullptr) throw std::logic_error("no control " + name);
    return *found;
  }

  /// What the user does.
  void fill(const char* box, const std::string& text) { control<ui::TextBox>(box).Text = text; }
  void wait() { host_->pages().fireTimers(); }
  void excludeBin(std::int32_t row);

 private:
  void startHost();

  StudySize size_;
  std::filesystem::path folder_, table_, file_;
  std::vector<host::NewResult> results_;
  std::size_t fragments_ = 0;
  Pairs pairs_;
  std::shared_ptr<CalculatorWatch> watch_ = std::make_shared<CalculatorWatch>();
  std::unique_ptr<host::Host> host_;
};

}  // namespace banddesk::bench
