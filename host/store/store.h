// The port behind which one study lies: its record, its fragments and its analyses. Each write is whole or
// not at all; when it returns, the store holds it.
#pragma once

#include <cstdint>
#include <vector>

#include "host/store/snapshot.h"
#include "host/study/fragments.h"
#include "host/study/study.h"

namespace banddesk::host {

class Store : public FragmentSource {
 public:
  virtual StudyRecord readStudy() = 0;
  // Replaces the study's own fields, its dyes and the marks of its results. The results themselves stay.
  virtual void writeStudy(const StudyRecord& record) = 0;
  // Adds results with their fragments and writes the rest of the record; gives the new results their ids.
  virtual std::vector<ResultRecord> addResults(const StudyRecord& record,
                                               const std::vector<NewResult>& results) = 0;

  // An identifier that no analysis of the study has had.
  virtual std::int32_t newAnalysisId() = 0;
  virtual std::vector<std::int32_t> analysisIds() = 0;  // in the order in which they were first written
  virtual AnalysisSnapshot readAnalysis(std::int32_t id) = 0;  // error 5 if there is none
  virtual void writeAnalysis(const AnalysisSnapshot& snapshot) = 0;
  virtual void removeAnalysis(std::int32_t id) = 0;  // nothing if there is none
};

}  // namespace banddesk::host
