// Has the rules of an analysis exclude bins and samples of its table, by the page's own manual exclusion, as
// the hand would: so they are grey, stored and exported like the hand's. It acts whenever a table stands
// anew, and after each procedure of a page that changes what the rules look at (another run, other dyes,
// other samples). With the analysis it keeps which marks are a rule's and why; what the hand excluded before
// stays the hand's, and what the hand brought back no rule takes again. It goes by what a page offers in
// public, the grid, and the host's calculators.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/framework/page_manager.h"
#include "host/framework/study_service.h"
#include "host/grid/grid_control.h"
#include "host/quality/replicates.h"
#include "host/study/analysis.h"

namespace banddesk::host {

// What a rule takes of a table as it stands, those that others take too included.
struct RuleCount {
  scoring::Rule rule;
  std::size_t taken = 0;  // bins, or samples
  std::size_t of = 0;
};

class RuleKeeper final {
 public:
  // All outlive the keeper. It takes the hooks of pages and platform.
  RuleKeeper(HostPageManager& pages, HostPlatform& platform, HostStudyService& study);
  ~RuleKeeper();
  RuleKeeper(const RuleKeeper&) = delete;
  RuleKeeper& operator=(const RuleKeeper&) = delete;

  // Nothing is changed by it. Error 91 with another calculator than the host's.
  std::vector<RuleCount> preview(HostPage& page, const std::vector<scoring::Rule>& rules) const;
  // Has the rules of the page's analysis act where anything that they look at has changed.
  void update(HostPage& page);

  // By the order of the analysis' results.
  std::vector<bool> blanksOf(const AFLP& analysis) const;

  // One line for the user.
  mutable Event<const std::string&> Told;

 private:
  struct Table;
  // What the rules looked at when they acted last, and whether the hand has decided about bins.
  struct Seen {
    std::int64_t run = 0;
    std::vector<bool> dyes;
    std::vector<bool> excludedSamples;
    std::vector<scoring::Rule> rules;
    bool hasHand = false;
  };

  void learn(const Table& table, scoring::AnalysisScoring& scoring, bool isSameTable) const;
  void excludeSamples(Table& table, scoring::AnalysisScoring& scoring) const;
  void excludeBins(Table& table, scoring::AnalysisScoring& scoring) const;
  Table read(HostPage& page) const;
  void fill(Table& table) const;
  std::vector<ReplicatePair> replicatesOf(const AFLP& analysis) const;
  bool answer(ui::Form& form) const;

  HostPageManager& pages_;
  HostPlatform& platform_;
  HostStudyService& study_;
  std::map<const HostPage*, Seen> seen_;  // of open pages
};

}  // namespace banddesk::host
