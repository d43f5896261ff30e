// The tree of the study's objects: one folder with its items, their labels and the edit of a label. A view
// shows the tree and is told of each change; the items themselves are the plug-in's.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/framework/pages.h"
#include "host/study/fault_injector.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

class HostExplorerItemBase final : public ExplorerItemBase, public LivingOwner {
 public:
  explicit HostExplorerItemBase(FaultInjector& faults) : faults_(faults) {}

  void SetText(const std::string& text) override;
  // Error 91 before the item is in the tree.
  const ExplorerItemDefinition& Definition() const override;

  const std::string& text() const { return text_; }
  // The label: what the item answers when asked, at first its text.
  std::string displayName();

  // Where the item stands now; the definition outlives it there.
  void place(const ExplorerItemDefinition* definition, std::function<void()> onChange);

 private:
  FaultInjector& faults_;
  std::string text_;
  const ExplorerItemDefinition* definition_ = nullptr;
  std::function<void()> onChange_;
};

class HostExplorerTree final : public ExplorerTree {
 public:
  struct Node {
    std::shared_ptr<IExplorerItemAccess> item;
    std::shared_ptr<HostExplorerItemBase> base;
    std::optional<std::string> edited;  // the text that the edit in place began with
  };

  // The definition is that of the items, and outlives the tree.
  HostExplorerTree(FaultInjector& faults, const ExplorerItemDefinition& definition)
      : faults_(faults), definition_(definition) {}

  void setFolder(const std::shared_ptr<IExplorerItemAccess>& folder);
  // Asks the folder for its label and children anew.
  void initialize();
  // Takes the children out, and with `withFolder` the folder too.
  void clear(bool withFolder = false);

  void AddItem(const std::shared_ptr<IExplorerItemAccess>& item, const std::string& type,
               IExplorerItemAccess& parent) override;
  void RemoveItem(const std::shared_ptr<IExplorerItemAccess>& item) override;
  void BeginRename(const std::shared_ptr<IExplorerItemAccess>& item) override;

  // The user ends the edit in place, with a new text or by giving it up. Error 5 if none is under way, and
  // for a name that is empty or another item's: two of one name could not be told apart in a save. The label
  // is then as before; what else a name may be, the item judges.
  void endRename(const std::shared_ptr<IExplorerItemAccess>& item, const std::string& text);
  void cancelRename(const std::shared_ptr<IExplorerItemAccess>& item);

  const std::optional<Node>& folder() const { return folder_; }
  const std::vector<Node>& children() const { return children_; }

  Event<> Changed;  // children, labels or an edit
  Event<> Renamed;  // an item has another name

 private:
  Node makeNode(const std::shared_ptr<IExplorerItemAccess>& item);
  std::vector<Node>::iterator find(const std::shared_ptr<IExplorerItemAccess>& item);
  void requireFreeName(const std::vector<Node>::iterator& node, const std::string& text) const;
  void takeEdit(const std::shared_ptr<IExplorerItemAccess>& item);

  FaultInjector& faults_;
  const ExplorerItemDefinition& definition_;
  std::optional<Node> folder_;
  std::vector<Node> children_;
};

class HostExplorer final : public Explorer {
 public:
  HostExplorer(FaultInjector& faults, const ExplorerItemDefinition& definition)
      : faults_(faults), tree_(faults, definition) {}
  ExplorerTree& Tree() override;
  HostExplorerTree& tree() { return tree_; }

 private:
  FaultInjector& faults_;
  HostExplorerTree tree_;
};

}  // namespace banddesk::host
