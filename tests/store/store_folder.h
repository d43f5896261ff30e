// A folder for the study files of a test, and what the tests of stores put into and
// read out of a study.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/store/store.h"
#include "tests/support/temp_folder.h"

namespace banddesk::host {

// Open to a process that has dropped its rights.
class StoreFolder : public test::TempFolder {
 public:
  StoreFolder() { std::filesystem::permissions(path(), std::filesystem::perms::all); }
  // The names of all files in it, in order.
  std::vector<std::string> names() const;
};

std::string bytesOf(const std::string& file);
void writeBytes(const std::string& file, std::string_view bytes);

// All that a store holds, as a value to compare.
struct StoredStudy {
  StudyRecord study;
  std::vector<SampleFragments> fragments;
  std::vector<ImportRecord> imports;
  std::vector<AnalysisSnapshot> analyses;
  std::vector<std::string> runs;  // all of each, traces included, in words
  friend bool operator==(const StoredStudy&, const StoredStudy&) = default;
};
StoredStudy stateOf(Store& store);

// Step n of an endless sequence of imports, saves of analyses and changes of marks, each one write of the
// store and different from all others.
void takeStep(Store& store, int step);
// How many steps a store has taken.
int stepsTaken(Store& store);

// A record of everything that an analysis can hold, different for each number.
AnalysisSnapshot someAnalysis(std::int32_t id, int number, const StudyRecord& study);

// What an action says when it fails, or nothing.
std::string messageOf(const std::function<void()>& action);
// The same in a process of its own, after `prepare` (which may drop rights) has run there. An answer that
// begins with "cannot prepare" says that the machine does not let the test have its conditions.
std::string messageInProcess(const std::function<bool()>& prepare, const std::function<void()>& action);
// Conditions for the above.
bool becomeNobody();

}  // namespace banddesk::host
