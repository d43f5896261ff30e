#include "host/framework/explorer.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

#include "host/framework/services.h"
#include "plugin/base/text.h"

namespace banddesk::host {

void HostExplorerItemBase::SetText(const std::string& text) {
  faults_.check("ExplorerItemBase", "Text");
  text_ = text;
  if (onChange_) onChange_();
}

const ExplorerItemDefinition& HostExplorerItemBase::Definition() const {
  faults_.check("ExplorerItemBase", "Definition");
  return required(definition_, "Definition");
}

std::string HostExplorerItemBase::displayName() {
  std::string name = text_;
  OnDisplayName.raise(name);
  return name;
}

void HostExplorerItemBase::place(const ExplorerItemDefinition* definition, std::function<void()> onChange) {
  definition_ = definition;
  onChange_ = std::move(onChange);
}

HostExplorerTree::Node HostExplorerTree::makeNode(const std::shared_ptr<IExplorerItemAccess>& item) {
  auto base = cast<HostExplorerItemBase>(required(item, "ExplorerItem").ExplorerItem(), "ExplorerItemBase");
  base->place(&definition_, [this] { Changed.raise(); });
  return {item, std::move(base), std::nullopt};
}

void HostExplorerTree::setFolder(const std::shared_ptr<IExplorerItemAccess>& folder) {
  clear(true);
  folder_ = makeNode(folder);
  Changed.raise();
}

void HostExplorerTree::initialize() {
  if (!folder_) return;
  clear();
  const auto base = folder_->base;
  Collection<std::shared_ptr<IExplorerItemAccess>> children;
  base->Initialize.raise(children);
  for (const auto& child : children) children_.push_back(makeNode(child));
  Changed.raise();
}

void HostExplorerTree::clear(bool withFolder) {
  for (const Node& child : children_) child.base->place(nullptr, nullptr);
  children_.clear();
  if (withFolder && folder_) {
    folder_->base->place(nullptr, nullptr);
    folder_.reset();
  }
  Changed.raise();
}

void HostExplorerTree::AddItem(const std::shared_ptr<IExplorerItemAccess>& item, const std::string& type,
                               IExplorerItemAccess& parent) {
  faults_.check("ExplorerTree", "AddItem");
  if (type != kItemType || !folder_ || folder_->item.get() != &parent) {
    raise(ErrorNumber::InvalidArgument, "ExplorerTree",
          fmt::format("The tree takes no item of type {} there.", type));
  }
  children_.push_back(makeNode(item));
  Changed.raise();
}

void HostExplorerTree::RemoveItem(const std::shared_ptr<IExplorerItemAccess>& item) {
  faults_.check("ExplorerTree", "RemoveItem");
  const auto node = find(item);
  node->base->place(nullptr, nullptr);
  children_.erase(node);
  Changed.raise();
}

void HostExplorerTree::BeginRename(const std::shared_ptr<IExplorerItemAccess>& item) {
  faults_.check("ExplorerTree", "BeginRename");
  const auto base = find(item)->base;
  std::string text = base->text();
  base->OnBeforeRename.raise(text);
  find(item)->edited = std::move(text);
  Changed.raise();
}

void HostExplorerTree::takeEdit(const std::shared_ptr<IExplorerItemAccess>& item) {
  if (!std::exchange(find(item)->edited, std::nullopt)) {
    raise(ErrorNumber::InvalidArgument, "ExplorerTree", "The item is not being renamed.");
  }
}

void HostExplorerTree::endRename(const std::shared_ptr<IExplorerItemAccess>& item, const std::string& text) {
  takeEdit(item);
  Changed.raise();
  requireFreeName(find(item), text);
  const auto base = find(item)->base;
  base->OnAfterRename.raise(text);
  Changed.raise();
  Renamed.raise();
}

void HostExplorerTree::requireFreeName(const std::vector<Node>::iterator& node,
                                       const std::string& text) const {
  if (text.find_first_not_of(" \t") == std::string::npos)
    raise(ErrorNumber::InvalidArgument, "ExplorerTree", "A name cannot be empty.");
  for (const Node& other : children_) {
    if (other.item != node->item && equalsIgnoringCase(other.base->displayName(), text))
      raise(ErrorNumber::InvalidArgument, "ExplorerTree",
            fmt::format("Another analysis is named \"{}\".", other.base->displayName()));
  }
}

void HostExplorerTree::cancelRename(const std::shared_ptr<IExplorerItemAccess>& item) {
  takeEdit(item);
  Changed.raise();
}

std::vector<HostExplorerTree::Node>::iterator HostExplorerTree::find(
    const std::shared_ptr<IExplorerItemAccess>& item) {
  const auto found = std::ranges::find(children_, item, &Node::item);
  if (found == children_.end()) {
    raise(ErrorNumber::InvalidArgument, "ExplorerTree", "The item is not in the tree.");
  }
  return found;
}

ExplorerTree& HostExplorer::Tree() {
  faults_.check("Explorer", "Tree");
  return tree_;
}

}  // namespace banddesk::host
