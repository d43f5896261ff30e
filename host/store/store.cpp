#include "host/store/store.h"

#include "plugin/base/error.h"

namespace banddesk::host {

void Store::copyTo(const std::string& file) const {
  raise(ErrorNumber::InvalidArgument, "Store",
        file + ": this study lies in no file and cannot be copied to one");
}

void Store::write(const StudyRecord& record, const std::vector<std::int32_t>& removed,
                  const std::vector<AnalysisSnapshot>& written) {
  writeStudy(record);
  for (const std::int32_t id : removed) removeAnalysis(id);
  for (const AnalysisSnapshot& snapshot : written) writeAnalysis(snapshot);
}

void Store::saveAs(const std::string& file) {
  raise(ErrorNumber::InvalidArgument, "Store",
        file + ": this study lies in no file and cannot be copied to one");
}

}  // namespace banddesk::host
