// An analysis as the host makes it, with the layouts that a new one starts with. What it does beyond holding
// its fields, opening its pages, is handed in.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "host/scoring/analysis_scoring.h"
#include "plugin/shell/persistent.h"

namespace banddesk::host {

struct AnalysisHooks {
  std::function<ObjectRef(const std::shared_ptr<AFLP>&, bool& show)> open;
};

class HostAFLP final : public AFLP, public std::enable_shared_from_this<HostAFLP> {
 public:
  // The layouts are empty; the hooks outlive the analysis.
  HostAFLP(std::int32_t id, const AnalysisHooks& hooks) : id_(id), hooks_(hooks) {}

  std::int32_t ID() const override { return id_; }
  const scoring::AnalysisScoring& scoring() const { return scoring_; }
  // Another value is a change of the analysis.
  void setScoring(scoring::AnalysisScoring scoring);
  ObjectRef Open(bool& show) override;
  void ReportFinished() override;

  // The study holds its analyses and they hold the study: whoever drops the study calls this for each of
  // them.
  void leaveStudy();

 private:
  std::int32_t id_;
  const AnalysisHooks& hooks_;
  scoring::AnalysisScoring scoring_;
};

// The host's own side of an analysis; error 13 for one that the host has not made.
HostAFLP& hostSide(AFLP& analysis);
const HostAFLP& hostSide(const AFLP& analysis);

// Fills the layouts of a new analysis: the nine columns of bin information, and the styles of cells with one
// fragment, with several and with none.
void fillNewLayouts(AFLP& analysis);

// The texts of the column's cells stand in their middle, as those of the table's other short texts.
void centre(GridColumn& column);

// What a column of bin information is by its key; a plain definition for any other key.
std::shared_ptr<const GridColumnDefinition> binColumnDefinition(std::string_view key);

// Visits the analysis and every persistent object that belongs to it alone.
void visitOwned(AFLP& analysis, const std::function<void(PersistentObject&)>& visit);

}  // namespace banddesk::host
