#include "desktop/grid/grid_editor.h"

#include <QKeyEvent>

#include "desktop/base/qt_text.h"
#include "desktop/grid/grid_view.h"

namespace banddesk::desktop {

bool GridEditor::begin(const QString& typed) {
  host::GridControl& grid = view_.grid();
  const CellPlace cell{grid.currentRow(), grid.currentCol()};
  if (line_ || cell.row > grid.RowCount() || cell.col > grid.ColCount()) return false;
  {
    const GridView::KeepScroll keep(view_);
    if (!grid.user().beginEdit(cell.row, cell.col)) return false;
  }
  cell_ = cell;
  view_.showCell(cell);
  line_ = new QLineEdit(view_.viewport());
  line_->setAccessibleName(view_.currentText());
  line_->setFrame(false);
  const std::int32_t alignment = grid.look(cell.row, cell.col).horizontalAlignment.value_or(0);
  line_->setAlignment(alignment == 1 ? Qt::AlignRight : alignment == 2 ? Qt::AlignHCenter : Qt::AlignLeft);
  line_->setText(toQString(grid.GetValue(cell.row, cell.col)));
  line_->selectAll();
  connect(line_, &QLineEdit::textChanged, this,
          [&grid](const QString& text) { grid.user().type(toText(text)); });
  if (!typed.isEmpty()) line_->setText(typed);
  line_->installEventFilter(this);
  QWidget::setTabOrder(&view_, line_);
  place();
  line_->show();
  line_->setFocus(Qt::OtherFocusReason);
  return true;
}

void GridEditor::place() {
  if (!line_) return;
  if (!view_.grid().user().isEditing()) return close();
  const QRect rect = view_.cellRect(cell_.row, cell_.col);
  // Out of sight it must not be hidden: it would lose the focus and with it the typing.
  line_->setGeometry(rect.isEmpty() ? QRect(-2, -2, 1, 1) : rect.adjusted(0, 0, -1, -1));
}

void GridEditor::close() {
  QLineEdit* const line = line_;
  line_ = nullptr;
  const bool hadFocus = line->hasFocus();
  line->removeEventFilter(this);
  line->hide();
  line->deleteLater();
  if (hadFocus) view_.setFocus(Qt::OtherFocusReason);
  view_.refresh();
}

void GridEditor::end(bool keep) {
  if (!line_) return;
  host::GridControl& grid = view_.grid();
  const bool isChanged = grid.user().isEditing() &&
                         grid.GetCurrentCellText(cell_.row, cell_.col) != grid.GetValue(cell_.row, cell_.col);
  close();
  if (keep && isChanged) {
    view_.perform([&grid] { grid.user().endEdit(true); });
  } else {
    grid.user().endEdit(false);
  }
}

bool GridEditor::eventFilter(QObject* object, QEvent* event) {
  if (event->type() == QEvent::FocusOut &&
      static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
    end(true);
    return false;
  }
  if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) {
    return QObject::eventFilter(object, event);
  }
  const int key = static_cast<QKeyEvent*>(event)->key();
  const bool isEnter = key == Qt::Key_Return || key == Qt::Key_Enter;
  if (!isEnter && key != Qt::Key_Escape) return false;
  event->accept();
  if (event->type() == QEvent::KeyPress) end(isEnter);
  return true;
}

}  // namespace banddesk::desktop
