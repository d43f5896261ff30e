#include "desktop/pictures/picture_context.h"

#include "host/import/pair_file.h"
#include "host/statistics/groups.h"

namespace banddesk::desktop {

void StudySelection::set(std::set<std::int32_t> results, std::optional<BinPlace> bin) {
  if (results == results_ && bin == bin_) return;
  results_ = std::move(results);
  bin_ = bin;
  Changed.raise();
}

void GroupSource::applyTo(host::statistics::BandMatrix& bands) const {
  if (kind == Kind::File)
    host::statistics::takeGroups(bands, host::import::readPairs(text, "a sample's name and its group"), text);
  if (kind == Kind::Pattern) host::statistics::takeGroupsByPattern(bands, text);
}

void PictureContext::setGroups(GroupSource source) {
  groups_ = std::move(source);
  GroupsChanged.raise();
}

}  // namespace banddesk::desktop
