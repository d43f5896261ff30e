// Steps in a file of their own beside a study: the states that a user passes through, each written once and
// only with what is new in it. A step is in the file when append returns, and on the disk a second later: it
// outlives the end of the program at once, and that of the machine soon.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/history/study_state.h"

namespace banddesk::host {

struct Step {
  std::string label;      // what the user did; empty for a state that nothing led to
  std::int64_t time = 0;  // seconds since 1970
  StudyState state;       // after it
};

class FileSync;

class StepLog final {
 public:
  // Makes the file with one step, whole or not at all; it takes the place of an earlier one. The steps' last
  // one counts as that of `position`, which is kept too.
  StepLog(std::string file, const std::vector<Step>& steps, std::size_t position = 0);
  StepLog(const StepLog&) = delete;
  StepLog& operator=(const StepLog&) = delete;
  ~StepLog();

  // An error leaves the file as it was.
  void append(const Step& step);
  // What the study's own file holds is about to change; the next step tells to what.
  void announce();

 private:
  std::string frameOf(const Step& step);
  void write(const std::string& frame);

  std::string file_;
  std::unordered_map<Part, std::uint64_t> written_;  // by their numbers, from 1
  int descriptor_ = -1;
  std::int64_t length_ = 0;  // bytes
  std::unique_ptr<FileSync> sync_;
};

struct StepLogContent {
  std::vector<Step> steps;
  std::size_t position = 0;
  bool isAnnounced = false;  // a change of the study's own file was announced last
};

// What was being written when the program ended is left out. Error 5 for a file that is damaged or none of
// ours, error 76 where there is none.
StepLogContent readStepLog(const std::string& file);

// Takes a log out of the way, under a name with the present time; gives the name.
std::string setAside(const std::string& file);

}  // namespace banddesk::host
