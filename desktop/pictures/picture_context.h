// What the pictures of a study have in common: the samples that are selected, and the samples' groups.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "host/statistics/band_matrix.h"
#include "plugin/base/event.h"

namespace banddesk::desktop {

// By the ids of their results, so that it holds in every table and picture of the study.
class StudySelection {
 public:
  const std::set<std::int32_t>& results() const { return results_; }
  // The bin that was clicked with them, by its number in the analysis it belongs to.
  struct BinPlace {
    const void* analysis = nullptr;
    std::int32_t bin = 0;
    friend bool operator==(const BinPlace&, const BinPlace&) = default;
  };
  const std::optional<BinPlace>& bin() const { return bin_; }
  void set(std::set<std::int32_t> results, std::optional<BinPlace> bin);

  Event<> Changed;

 private:
  std::set<std::int32_t> results_;
  std::optional<BinPlace> bin_;
};

// Where the samples' groups come from.
struct GroupSource {
  enum class Kind { None, File, Pattern };
  Kind kind = Kind::None;
  std::string text;  // the file's path, or the expression

  // Raises an Error where the source does not fit the table.
  void applyTo(host::statistics::BandMatrix& bands) const;
};

class PictureContext {
 public:
  StudySelection& selection() { return selection_; }
  const GroupSource& groups() const { return groups_; }
  void setGroups(GroupSource source);
  Event<> GroupsChanged;

 private:
  StudySelection selection_;
  GroupSource groups_;
};

}  // namespace banddesk::desktop
