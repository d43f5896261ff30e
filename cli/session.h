// One study, in memory or in a file, and its analysis, driven over the same road that a user of the pages
// takes: the service's command, the parameters page with its controls, OK, the results page, its export. No
// rule of the analysis lives here.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cli/analysis_request.h"
#include "host/framework/host.h"
#include "host/grid/grid_control.h"

namespace banddesk::cli {

// Answers for a command: what it was told before, else carefully. It keeps what it was asked.
class SessionFront final : public host::CarefulFront {
 public:
  ui::BoxAnswer showMessage(const host::MessageShown& message) override;
  std::optional<host::SaveAnswer> askWhereToSave(ui::SaveDialog&) override {
    return std::exchange(file, std::nullopt);
  }
  void runForm(ui::Form& form) override;
  host::StaleAnalysis decideStale(std::shared_ptr<AFLP>&) override { return stale; }
  void showReport(const host::ReportRequest&, const std::function<std::string()>& makePage) override {
    report = makePage();
  }

  std::optional<host::SaveAnswer> file;  // for the next save dialog
  host::StaleAnalysis stale = host::StaleAnalysis::OpenAsStored;
  std::string report;  // the last one, as an HTML page
  int messages = 0;
  int forms = 0;  // each was closed without a choice
};

class Session {
 public:
  // `onProgress` is told how far the work is, from 0 to 1.
  explicit Session(std::function<void(double)> onProgress = {});

  void openStudy(const std::string& name, std::vector<host::NewResult> results);
  void openStudy(std::shared_ptr<host::Store> store);
  // Makes a new analysis. Raises an Error when the pages refuse a value or the work fails.
  void analyze(const AnalysisRequest& request);

  // Opens an analysis of the study again. `stale` says what to do where the results have changed since.
  void reopen(const std::shared_ptr<AFLP>& analysis, host::StaleAnalysis stale);
  // Changes what the user gave: the options of `request` by their names, and its decisions.
  void change(const AnalysisRequest& request, const std::set<std::string>& given);
  void showExcluded(bool show);

  // What is decided on the results page, each by the page's own operation. Error 5 names what there is not.
  void excludeSample(const std::string& name);
  void excludeBin(const std::string& key);
  void sortBy(const std::string& column);

  // What each rule of the request would take of the table as it stands; the rules do not act.
  std::string preview(const AnalysisRequest& request);

  // The study's save, with all that is unsaved.
  void save();

  // Each writes one file; a failure may leave a part of it. The spreadsheet rebuilds the table, and decisions
  // about bins go with that: it comes last, after a save.
  void exportCsv(const std::filesystem::path& path);
  void exportNts(const std::filesystem::path& path);
  void exportXlsx(const std::filesystem::path& path);
  // The report of the analysis as an HTML page.
  std::string report();

  IAFLPResultsPage& page() const { return *page_; }
  AFLP& analysis() const { return *analysis_; }
  host::GridControl& grid() const;
  host::Host& host() { return host_; }
  const host::Host& host() const { return host_; }
  Study& study() const { return *study_; }

 private:
  std::shared_ptr<host::HostPage> openPage(const char* definition);
  void fillParameters(const ui::ControlSet& controls, const AnalysisRequest& request) const;
  void chooseView(const AnalysisRequest& request);
  void decide(const AnalysisRequest& request);
  void takePage();
  void score(const AnalysisRequest& request);
  void fillBox(const char* box, const std::string& text, const AnalysisRequest& request);
  [[noreturn]] static void raiseRefused(const AnalysisRequest& request);
  std::int32_t columnNamed(const std::string& name) const;
  void act(const std::function<void()>& action);
  // Of the page, without being an act of the user.
  void procedure(const std::function<void()>& work);
  void tellReopened();
  void chooseFromMenu(std::int32_t row, std::int32_t col, const char* item);
  void exportBy(const std::filesystem::path& path, std::int32_t filterIndex);

  host::Host host_;
  SessionFront front_;
  std::shared_ptr<Study> study_;
  std::shared_ptr<AFLP> analysis_;
  std::shared_ptr<IAFLPResultsPage> page_;
  std::shared_ptr<host::HostPage> hostPage_;
  std::string reopened_;  // what is to be said of a page that was opened anew, if the command goes on
  Connections connections_;
};

// A control of a page by its name; a missing one is an Error.
template <class Wanted>
Wanted& control(const ui::ControlSet& controls, std::string_view name) {
  return required(controls.find<Wanted>(name), "Control");
}

}  // namespace banddesk::cli
