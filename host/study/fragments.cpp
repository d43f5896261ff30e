#include "host/study/fragments.h"

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {

DyeFragments SampleFragments::OfDye(std::int16_t dye) const {
  if (dye < 0 || static_cast<std::size_t>(dye) >= kDyeCount) {
    raise(ErrorNumber::SubscriptOutOfRange, "Fragments", "There is no dye " + integerText(dye) + ".");
  }
  const Dye& wanted = dyes[static_cast<std::size_t>(dye)];
  return {wanted.sizes, wanted.heights};
}

void FragmentSource::holds(const FragmentHolder& holder) {
  holders_.push_back(&holder);
  if (holders_.size() <= kMostHolders) return;
  const FragmentHolder& oldest = *holders_.front();
  holders_.pop_front();
  oldest.letGo();
}

void FragmentSource::holdsNoMore(const FragmentHolder& holder) { std::erase(holders_, &holder); }

}  // namespace banddesk::host
