// An analysis as it stands, object by object, to be put back exactly after a page has stored itself into it:
// fields, labels, decisions with their identity, and what is new or changed. It is not for another analysis,
// nor for one whose columns have come or gone.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/store/snapshot.h"

namespace banddesk::host {

class AnalysisMarks {
 public:
  explicit AnalysisMarks(AFLP& analysis);
  AnalysisMarks(const AnalysisMarks&) = delete;
  AnalysisMarks& operator=(const AnalysisMarks&) = delete;
  ~AnalysisMarks() = default;

  void putBack();

 private:
  struct Decision {
    std::shared_ptr<AFLPBin> bin;
    BinSnapshot fields;
    bool saved;
  };

  bool holdsSameDecisions() const;
  void putDecisionsBack();

  AFLP& analysis_;
  AnalysisSnapshot fields_;
  std::vector<std::string> sampleHeaders_;
  std::vector<Decision> decisions_;
  std::vector<std::shared_ptr<AFLPBin>> deleted_;
  std::vector<std::pair<PersistentObject*, PersistentState>> states_;
};

}  // namespace banddesk::host
