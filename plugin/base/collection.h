// Keyed collections. Collection: ordered, 1-based, keys optional and ignoring case. Dictionary: every entry
// has a key, compared exactly. Both refuse a second equal key with error 457 and raise error 5 for a key they
// do not hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "plugin/base/error.h"
#include "plugin/base/object.h"

namespace banddesk {

// What a collection of any element type answers about its keys without raising an error.
class KeyedLookup : public Object {
 public:
  virtual bool holdsKey(std::string_view key) const = 0;
  virtual std::int32_t Count() const = 0;
};

// Sees every access to a collection before it happens (and may refuse it by an error) and every change after
// it.
class CollectionObserver {
 public:
  virtual void beforeAccess(const char* operation) = 0;
  virtual void afterChange() = 0;

 protected:
  ~CollectionObserver() = default;
};

namespace detail {
std::string ignoringCase(std::string_view key);
[[noreturn]] void raiseMissingKey(std::string_view key);
[[noreturn]] void raiseMissingIndex(std::int32_t index);
[[noreturn]] void raiseDuplicateKey(std::string_view key);
}  // namespace detail

// The items of a collection and all that is read of them. Who may change them is the derived class's to say.
template <class T>
class ItemList : public KeyedLookup {
 public:
  const T& Item(std::string_view key) const {
    before("Item");
    const auto found = byKey_.find(detail::ignoringCase(key));
    if (found == byKey_.end()) detail::raiseMissingKey(key);
    return found->second->item;
  }
  const T& Item(const char* key) const { return Item(std::string_view(key)); }
  const T& Item(std::int32_t index) const {
    before("Item");
    return entries_[position(index)]->item;
  }

  std::int32_t Count() const override { return static_cast<std::int32_t>(entries_.size()); }
  bool holdsKey(std::string_view key) const override { return byKey_.contains(detail::ignoringCase(key)); }

  class const_iterator {
   public:
    const_iterator(const ItemList* list, std::size_t at) : list_(list), at_(at) {}
    const T& operator*() const { return list_->entries_[at_]->item; }
    const_iterator& operator++() {
      ++at_;
      return *this;
    }
    // An item removed while walking shortens the walk; it never runs past the end.
    bool operator!=(const const_iterator&) const { return at_ < list_->entries_.size(); }

   private:
    const ItemList* list_;
    std::size_t at_;
  };
  const_iterator begin() const { return {this, 0}; }
  const_iterator end() const { return {this, entries_.size()}; }

 protected:
  ItemList() = default;

  // The observer outlives the collection; none by default.
  void observe(CollectionObserver* observer) { observer_ = observer; }

  void Add(T item) {
    before("Add");
    entries_.push_back(std::make_unique<Entry>(Entry{std::move(item), {}, false}));
    after();
  }

  void Add(T item, std::string_view key) {
    before("Add");
    std::string folded = detail::ignoringCase(key);
    if (byKey_.contains(folded)) detail::raiseDuplicateKey(key);
    auto entry = std::make_unique<Entry>(Entry{std::move(item), folded, true});
    byKey_.emplace(std::move(folded), entry.get());
    entries_.push_back(std::move(entry));
    after();
  }

  void Remove(std::string_view key) {
    before("Remove");
    const auto found = byKey_.find(detail::ignoringCase(key));
    if (found == byKey_.end()) detail::raiseMissingKey(key);
    const Entry* const wanted = found->second;
    std::size_t at = 0;
    while (entries_[at].get() != wanted) ++at;
    erase(at);
    after();
  }
  void Remove(const char* key) { Remove(std::string_view(key)); }
  void Remove(std::int32_t index) {
    before("Remove");
    erase(position(index));
    after();
  }

 private:
  struct Entry {
    T item;
    std::string key;  // folded
    bool keyed;
  };

  void before(const char* operation) const {
    if (observer_ != nullptr) observer_->beforeAccess(operation);
  }
  void after() {
    if (observer_ != nullptr) observer_->afterChange();
  }
  std::size_t position(std::int32_t index) const {
    if (index < 1 || index > Count()) detail::raiseMissingIndex(index);
    return static_cast<std::size_t>(index - 1);
  }
  void erase(std::size_t at) {
    if (entries_[at]->keyed) byKey_.erase(entries_[at]->key);
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(at));
  }

  std::vector<std::unique_ptr<Entry>> entries_;
  std::unordered_map<std::string, Entry*> byKey_;
  CollectionObserver* observer_ = nullptr;
};

// A plain collection: whoever holds it may change it.
template <class T>
class Collection : public ItemList<T> {
 public:
  Collection() = default;

  using ItemList<T>::observe;
  using ItemList<T>::Add;
  using ItemList<T>::Remove;
};

template <class T>
class Dictionary : public KeyedLookup {
 public:
  void Add(std::string key, T item) {
    if (!byKey_.emplace(key, entries_.size()).second) detail::raiseDuplicateKey(key);
    entries_.emplace_back(std::move(key), std::move(item));
  }
  const T& Item(std::string_view key) const { return entries_[position(key)].second; }
  void Remove(std::string_view key) {
    const std::size_t at = position(key);
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(at));
    byKey_.erase(std::string(key));
    for (auto& [name, place] : byKey_) place -= place > at ? 1 : 0;
  }
  std::int32_t Count() const override { return static_cast<std::int32_t>(entries_.size()); }
  bool holdsKey(std::string_view key) const override { return byKey_.contains(std::string(key)); }

  auto begin() const { return entries_.begin(); }
  auto end() const { return entries_.end(); }

 private:
  std::size_t position(std::string_view key) const {
    const auto found = byKey_.find(std::string(key));
    if (found == byKey_.end()) detail::raiseMissingKey(key);
    return found->second;
  }

  std::vector<std::pair<std::string, T>> entries_;  // in the order of their adding
  std::unordered_map<std::string, std::size_t> byKey_;
};

}  // namespace banddesk
