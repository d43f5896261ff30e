// The tables of a study file and how a file of an earlier version is brought up to date. It reads and writes
// no study.
#pragma once

#include <cstdint>
#include <span>

#include "host/store/sqlite.h"

namespace banddesk::host {

inline constexpr std::int32_t kApplicationId = 0x42646B53;  // "BdkS", in the file's header

// Step n, counted from 0, turns a file of version n into one of version n + 1; version 0 has no tables. A
// released step is never changed: later needs are later steps.
using SchemaSteps = std::span<const char* const>;
SchemaSteps studySchema();

// Error 5 when the file is none of ours or its version has no step yet; it is only read.
void requireStudy(const sqlite::Database& database, SchemaSteps steps);
// Whether steps are to be taken before the file can be used.
bool isOutdated(const sqlite::Database& database, SchemaSteps steps);
// Takes the steps that the file lacks, in one transaction.
void bringUpToDate(sqlite::Database& database, SchemaSteps steps);

}  // namespace banddesk::host
