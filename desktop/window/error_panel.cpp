#include "desktop/window/error_panel.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QPushButton>
#include <QTime>
#include <QTimer>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {

ErrorPanel::ErrorPanel(QWidget* parent) : QWidget(parent), list_(new QTreeWidget(this)) {
  list_->setHeaderLabels({QStringLiteral("Time"), QStringLiteral("Failure"), QStringLiteral("Number")});
  list_->setAccessibleName(QStringLiteral("Failures"));
  list_->header()->setSectionResizeMode(1, QHeaderView::Stretch);
  list_->header()->setStretchLastSection(false);
  auto* copyButton = new QPushButton(QStringLiteral("Copy"), this);
  auto* clearButton = new QPushButton(QStringLiteral("Clear"), this);
  connect(copyButton, &QPushButton::clicked, this, [this] { copy(); });
  connect(clearButton, &QPushButton::clicked, this, [this] { clear(); });
  auto* buttons = new QVBoxLayout;
  buttons->addWidget(copyButton);
  buttons->addWidget(clearButton);
  buttons->addStretch();
  auto* row = new QHBoxLayout(this);
  row->addWidget(list_, 1);
  row->addLayout(buttons);
}

void ErrorPanel::add(const host::FailureReport& report) {
  const QString place = toQString(report.module) + QLatin1Char('.') + toQString(report.procedure);
  QTreeWidgetItem* failure = nullptr;
  if (isChainOpen_ && report.error == last_ && count() > 0) {
    failure = list_->topLevelItem(0);
  } else {
    failure = new QTreeWidgetItem({QTime::currentTime().toString(QStringLiteral("HH:mm:ss")),
                                   toQString(report.error.description()),
                                   QString::number(static_cast<std::int32_t>(report.error.number()))});
    failure->setToolTip(1, toQString(report.error.description()).toHtmlEscaped());
    list_->insertTopLevelItem(0, failure);
  }
  auto* level = new QTreeWidgetItem(failure, {QString(), place});
  level->setToolTip(1, place);
  last_ = report.error;
  if (!isChainOpen_) {
    isChainOpen_ = true;
    // The chain is over when the call that failed has returned to the event loop.
    QTimer::singleShot(0, this, [this] { isChainOpen_ = false; });
  }
  Q_EMIT countChanged();
}

void ErrorPanel::clear() {
  list_->clear();
  Q_EMIT countChanged();
}

void ErrorPanel::copy() const {
  QString text;
  for (int i = 0; i < list_->topLevelItemCount(); ++i) {
    const QTreeWidgetItem& failure = *list_->topLevelItem(i);
    text += failure.text(0) + QLatin1Char('\t') + failure.text(2) + QLatin1Char('\t') + failure.text(1) +
            QLatin1Char('\n');
    for (int level = 0; level < failure.childCount(); ++level)
      text += QStringLiteral("\tin ") + failure.child(level)->text(1) + QLatin1Char('\n');
  }
  QApplication::clipboard()->setText(text);
}

}  // namespace banddesk::desktop
