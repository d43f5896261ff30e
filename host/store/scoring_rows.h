// What the host keeps of an analysis for scoring, and what is said of samples and joined tables, as rows of a
// study file.
#pragma once

#include <cstdint>

#include "host/scoring/analysis_scoring.h"
#include "host/store/sqlite.h"
#include "host/study/study.h"

namespace banddesk::host {

scoring::AnalysisScoring readScoring(const sqlite::Database& database, std::int32_t analysisId);
// Of an analysis that has no such rows.
void writeScoring(const sqlite::Database& database, std::int32_t analysisId,
                  const scoring::AnalysisScoring& scoring);
void removeScoring(const sqlite::Database& database, std::int32_t analysisId);

// Of the results that the record holds.
void readFacts(const sqlite::Database& database, StudyRecord& record);
void writeFacts(const sqlite::Database& database, const StudyRecord& record);

std::vector<JoinedTable> readJoinedTables(const sqlite::Database& database);
void writeJoinedTables(const sqlite::Database& database, const std::vector<JoinedTable>& tables);

}  // namespace banddesk::host
