#include "desktop/window/history_panel.h"

#include <QDateTime>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {

HistoryPanel::HistoryPanel(const host::StudyHistory& history, QWidget* parent)
    : QListWidget(parent), history_(history) {
  setAccessibleName(QStringLiteral("Steps"));
  setUniformItemSizes(true);
  connect(this, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
    if (onGoTo) onGoTo(static_cast<std::size_t>(row(item)));
  });
}

// What is undone stays in the list, in grey, as long as it can be done again.
void HistoryPanel::refresh() {
  clear();
  std::size_t position = 0;
  for (const host::Step& step : history_.steps()) {
    auto* item = new QListWidgetItem(
        position == 0 ? QStringLiteral("The study as it was opened") : toQString(step.label), this);
    item->setToolTip(
        QDateTime::fromSecsSinceEpoch(step.time).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
    QFont font = item->font();
    font.setBold(position == history_.position());
    item->setFont(font);
    if (position > history_.position())
      item->setForeground(palette().brush(QPalette::Disabled, QPalette::Text));
    ++position;
  }
  if (!history_.steps().empty()) setCurrentRow(static_cast<int>(history_.position()));
}

}  // namespace banddesk::desktop
