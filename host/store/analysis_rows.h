// An analysis as rows of a study file. The transaction around them is the caller's.
#pragma once

#include <cstdint>

#include "host/store/snapshot.h"
#include "host/store/sqlite.h"

namespace banddesk::host {

// Error 5 if there is none.
AnalysisSnapshot readAnalysisRows(sqlite::Database& database, std::int32_t id);
// Takes the place of an earlier one of the same id, and its place in their order.
void writeAnalysisRows(sqlite::Database& database, const AnalysisSnapshot& snapshot);
void removeAnalysisRows(sqlite::Database& database, std::int32_t id);

}  // namespace banddesk::host
