// A study's fragments and samples as the search of parameters takes them, without a page.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/scoring/search.h"
#include "host/store/store.h"

namespace banddesk::host {

class SearchedStudy {
 public:
  // The samples of an analysis with its settings, dyes and decisions about samples; without a name those that
  // a new analysis would have. `replicates` is a pattern in the place of what the analysis or the study says.
  // Error 5 where there is no such analysis; throws std::invalid_argument where the replicates cannot be told.
  SearchedStudy(Store& store, const std::optional<std::string>& analysis,
                const std::optional<std::string>& replicates);

  // Valid as long as this lives.
  const scoring::SearchData& data() const { return data_; }

 private:
  scoring::SearchData data_;
  std::vector<std::shared_ptr<const SampleFragments>> fragments_;
};

}  // namespace banddesk::host
