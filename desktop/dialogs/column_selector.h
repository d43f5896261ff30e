// The dialog in which the user chooses which columns of a set show, and in what order.
#pragma once

#include <QDialog>
#include <QLabel>
#include <array>

#include "desktop/dialogs/column_list_model.h"
#include "desktop/dialogs/filtered_list.h"

namespace banddesk::desktop {

using ShowHelp = std::function<void(const std::string& topic)>;

class ColumnSelector final : public QDialog {
  Q_OBJECT

 public:
  ColumnSelector(const host::ColumnSelection& draft, const ShowHelp& showHelp, QWidget* parent);

  const ColumnListModel& model() const { return *model_; }

 private:
  enum class Step { Top, Up, Down, Bottom };
  struct Move;
  static const std::array<Move, 4> kMoves;

  QLayout* makeMoveButtons();
  QLayout* makeCheckButtons();
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool switchSelected();
  void move(Step step);
  void moveOneLine(std::vector<int> rows, Step step);
  void showCount();

  ColumnListModel* model_;
  FilteredList* list_;
  QLabel* count_;
};

// Modal over the parent. True if the user accepted; the draft is untouched otherwise.
bool selectColumns(host::ColumnSelection& draft, const ShowHelp& showHelp, QWidget* parent);

}  // namespace banddesk::desktop
