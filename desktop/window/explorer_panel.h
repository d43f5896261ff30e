// The explorer: the study with its results and dyes, and the folder of its analyses. It shows the host's tree and
// edits names in place; what a command does is its owner's business.
#pragma once

#include <QTreeWidget>
#include <functional>
#include <map>
#include <memory>

#include "desktop/app/workbench.h"

namespace banddesk::desktop {

// Grey or gone as the command is.
void follow(QAction& action, const Command& command);

class ExplorerPanel final : public QTreeWidget {
  Q_OBJECT
 public:
  ExplorerPanel(Workbench& workbench, QWidget* parent);

  using Item = std::shared_ptr<IExplorerItemAccess>;

  // A failure in the tree's own events: the end of an edit.
  std::function<void(const std::function<void()>&)> guarded = [](const auto& work) { work(); };

  // The analysis that is chosen; null where none is.
  Item currentAnalysis() const;
  // The study or its results have changed.
  void refreshStudy();

 Q_SIGNALS:
  // What the user wants. Of an analysis: "OpenAFLP" and the other commands that the host knows.
  void commandChosen(const Item& item, const std::string& command);
  void newAnalysisChosen();
  void importChosen();
  void excludeResultChosen(std::int32_t resultId, bool excluded);
  void deleteResultChosen(std::int32_t resultId);
  void showResultChosen(std::int32_t resultId);
  void dyeColourChosen(std::int32_t dye);
  void dyeVisibleChosen(std::int32_t dye, bool isVisible);

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  friend class NameEditor;

  void activate(QTreeWidgetItem* item);
  void refreshAnalyses();
  void fillResults();
  void fillDyes();
  void showDye(const Dye& dye);
  void beginEdit(const host::HostExplorerTree::Node& node, QTreeWidgetItem& item);
  void endEdit(const QString& text);
  void cancelEdit();
  void fillMenu(class QMenu& menu, QTreeWidgetItem* item);
  void fillResultMenu(QMenu& menu, const QTreeWidgetItem& item);
  void fillDyeMenu(QMenu& menu, const QTreeWidgetItem& item);
  QTreeWidgetItem* makeGroup(const QString& name, QStyle::StandardPixmap icon);

  Workbench& workbench_;
  QTreeWidgetItem* root_ = nullptr;
  QTreeWidgetItem* results_ = nullptr;
  QTreeWidgetItem* folder_ = nullptr;
  QTreeWidgetItem* dyes_ = nullptr;
  std::map<QTreeWidgetItem*, Item> analyses_;
  Item edited_;
  bool isRefreshWaiting_ = false;
  Connection treeChanges_;
  Connection dyeChanges_;
};

}  // namespace banddesk::desktop
