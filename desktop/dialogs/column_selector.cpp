#include "desktop/dialogs/column_selector.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "desktop/dialogs/dialog_parts.h"

namespace banddesk::desktop {

struct ColumnSelector::Move {
  Step step;
  const char* text;
  Qt::Key key;  // with Alt
};

const std::array<ColumnSelector::Move, 4> ColumnSelector::kMoves = {
    {{Step::Top, "To &Top", Qt::Key_Home},
     {Step::Up, "Move &Up", Qt::Key_Up},
     {Step::Down, "Move &Down", Qt::Key_Down},
     {Step::Bottom, "To &Bottom", Qt::Key_End}}};

ColumnSelector::ColumnSelector(const host::ColumnSelection& draft, const ShowHelp& showHelp, QWidget* parent)
    : QDialog(parent),
      model_(new ColumnListModel(draft.entries, this)),
      list_(new FilteredList(*model_, QStringLiteral("Columns"), this)),
      count_(new QLabel(this)) {
  setWindowTitle(QStringLiteral("Select Columns"));
  QListView& view = list_->view();
  view.setDragDropMode(QAbstractItemView::InternalMove);
  view.setDefaultDropAction(Qt::MoveAction);
  view.installEventFilter(this);

  auto* middle = new QHBoxLayout;
  middle->addWidget(list_, 1);
  auto* side = new QVBoxLayout;
  side->addLayout(makeMoveButtons());
  side->addStretch();
  side->addLayout(makeCheckButtons());
  middle->addLayout(side);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(middle, 1);
  layout->addWidget(count_);
  layout->addWidget(makeButtons(*this, "ColumnSelector", showHelp));
  resize(sizeInText(*this, 90, 30));

  connect(model_, &QAbstractItemModel::dataChanged, this, [this] { showCount(); });
  connect(&list_->filter(), &QLineEdit::textChanged, this, [this] { showCount(); });
  showCount();
  view.setFocus();
}

QLayout* ColumnSelector::makeMoveButtons() {
  auto* layout = new QVBoxLayout;
  for (const Move& each : kMoves) {
    const Step step = each.step;
    auto* button = addButton(*layout, QLatin1String(each.text), [this, step] { move(step); });
    const QKeySequence keys(Qt::ALT | each.key);
    button->setToolTip(keys.toString(QKeySequence::NativeText));
  }
  return layout;
}

// They spare the rows that do not show, so that a found group is switched at once.
QLayout* ColumnSelector::makeCheckButtons() {
  auto* layout = new QVBoxLayout;
  const auto add = [&](const QString& text, bool (*rule)(bool)) {
    addButton(*layout, text, [this, rule] { model_->setChecked(list_->shownRows(), rule); });
  };
  add(QStringLiteral("&All"), [](bool) { return true; });
  add(QStringLiteral("&None"), [](bool) { return false; });
  add(QStringLiteral("&Invert"), [](bool wasChecked) { return !wasChecked; });
  return layout;
}

bool ColumnSelector::eventFilter(QObject* watched, QEvent* event) {
  if (watched != &list_->view() || event->type() != QEvent::KeyPress) return false;
  const auto* key = static_cast<const QKeyEvent*>(event);
  if ((key->modifiers() & ~Qt::KeypadModifier) == Qt::AltModifier) {
    const auto known = std::ranges::find(kMoves, key->key(), [](const Move& each) { return int{each.key}; });
    if (known == kMoves.end()) return false;
    move(known->step);
    return true;
  }
  return key->key() == Qt::Key_Space && key->modifiers() == Qt::NoModifier && switchSelected();
}

// All selected columns become what the current one becomes.
bool ColumnSelector::switchSelected() {
  const std::vector<int> rows = list_->selectedRows();
  if (rows.size() < 2) return false;
  const int current = list_->view().currentIndex().row();
  const int leading = std::ranges::binary_search(rows, current) ? current : rows.front();
  const bool isChecked = !model_->entries()[static_cast<std::size_t>(leading)].isVisible;
  model_->setChecked(rows, [isChecked](bool) { return isChecked; });
  return true;
}

void ColumnSelector::move(Step step) {
  const std::vector<int> rows = list_->selectedRows();
  if (rows.empty()) return;
  if (step == Step::Top) {
    list_->select(model_->moveInFrontOf(rows, 0));
  } else if (step == Step::Bottom) {
    list_->select(model_->moveInFrontOf(rows, model_->rowCount()));
  } else {
    moveOneLine(rows, step);
  }
}

// Past the next row that shows; a row at the end stays, and holds up those that follow it.
void ColumnSelector::moveOneLine(std::vector<int> rows, Step step) {
  std::vector<int> shown = list_->shownRows();
  const bool isUp = step == Step::Up;
  if (!isUp) {
    std::ranges::reverse(rows);
    std::ranges::reverse(shown);
  }
  // The shown rows in the direction of the move: each selected one exchanges with an unselected one before
  // it.
  std::vector<int> places;
  std::size_t at = 0;
  int free = -1;  // the row that may be passed
  for (const int row : shown) {
    const bool isSelected = at < rows.size() && rows[at] == row;
    if (!isSelected) {
      free = row;
      continue;
    }
    ++at;
    if (free < 0) {
      places.push_back(row);
      continue;
    }
    model_->moveRow({}, row, {}, isUp ? free : free + 1);
    places.push_back(free);
    free = isUp ? free + 1 : free - 1;  // what was passed stands there now
  }
  list_->select(places);
}

void ColumnSelector::showCount() {
  QString text =
      QStringLiteral("%1 of %2 columns checked").arg(model_->checkedCount()).arg(model_->rowCount());
  if (!list_->filter().text().trimmed().isEmpty()) {
    text += QStringLiteral("; %1 found").arg(list_->shownRows().size());
  }
  count_->setText(text);
}

bool selectColumns(host::ColumnSelection& draft, const ShowHelp& showHelp, QWidget* parent) {
  ColumnSelector dialog(draft, showHelp, parent);
  if (dialog.exec() != QDialog::Accepted) return false;
  draft.entries = dialog.model().entries();
  return true;
}

}  // namespace banddesk::desktop
