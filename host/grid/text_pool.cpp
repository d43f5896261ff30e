#include "host/grid/text_pool.h"

namespace banddesk::host {

TextPool::Id TextPool::acquire(std::string_view text) {
  if (text.empty()) return 0;
  if (const auto known = ids_.find(text); known != ids_.end()) {
    ++entries_[known->second].holders;
    return known->second;
  }
  Id id = static_cast<Id>(entries_.size());
  if (free_.empty()) {
    entries_.emplace_back();
  } else {
    id = free_.back();
    free_.pop_back();
  }
  Entry& entry = entries_[id];
  entry.text.assign(text);
  entry.holders = 1;
  ids_.emplace(entry.text, id);
  return id;
}

void TextPool::retain(Id id, std::uint32_t times) {
  if (id != 0) entries_[id].holders += times;
}

void TextPool::release(Id id) {
  if (id == 0) return;
  Entry& entry = entries_[id];
  if (--entry.holders > 0) return;
  ids_.erase(entry.text);
  entry.text = {};
  free_.push_back(id);
}

}  // namespace banddesk::host
