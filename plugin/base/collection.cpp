#include "plugin/base/collection.h"

#include "plugin/base/numbers.h"
#include "plugin/base/text.h"

namespace banddesk::detail {

std::string ignoringCase(std::string_view key) { return foldCase(key); }

void raiseMissingKey(std::string_view key) {
  raise(ErrorNumber::InvalidArgument, "Collection",
        "There is no item with the key \"" + std::string(key) + "\".");
}

void raiseMissingIndex(std::int32_t index) {
  raise(ErrorNumber::InvalidArgument, "Collection", "There is no item " + integerText(index) + ".");
}

void raiseDuplicateKey(std::string_view key) {
  raise(ErrorNumber::DuplicateKey, "Collection",
        "The key \"" + std::string(key) + "\" is already that of another item.");
}

}  // namespace banddesk::detail
