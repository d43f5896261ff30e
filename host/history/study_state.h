// A study with its analyses at one moment, as values: what a step of the user is undone to. It is packed into
// parts that never change. A state shares with another one each part that is equal, so that a step costs what
// it changed. Fragments are not part of it: results keep them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/store/snapshot.h"
#include "host/study/study.h"

namespace banddesk::host {

using Part = std::shared_ptr<const std::string>;  // null: there is none

// A part of these bytes; the other one if it has the same.
Part sharedPart(std::string bytes, const Part& like);
bool haveSameBytes(const Part& a, const Part& b);

struct AnalysisState {
  // Fields, results, decisions, scoring, and of each of the four layouts its texts and its numbers: what seldom changes
  // apart from what often does.
  static constexpr std::size_t kParts = 12;

  std::int32_t id = 0;
  std::array<Part, kParts> stored;  // all that a study file keeps of an analysis
  Part look;  // how its table stands on its page beyond that; null where that is not known

  bool holdsSameAs(const AnalysisState& other) const;  // but for the look
};

struct StudyState {
  Part record;
  std::vector<AnalysisState> analyses;  // in the study's order

  const AnalysisState* find(std::int32_t id) const;  // null if there is none
};

bool haveSameAnalyses(const StudyState& a, const StudyState& b);  // but for their looks
// A look that is not known on one side is no difference.
bool areEqual(const StudyState& a, const StudyState& b);

// `like` may be null; the look stays out.
AnalysisState packed(const AnalysisSnapshot& snapshot, const AnalysisState* like);
Part packed(const StudyRecord& record, const Part& like);
// Error 51 for parts that were not made here.
AnalysisSnapshot unpacked(const AnalysisState& state);
StudyRecord unpackedRecord(const Part& record);

// The bytes of all parts that the states hold, each counted once.
std::size_t bytesOf(const std::vector<const StudyState*>& states);

}  // namespace banddesk::host
