#include "desktop/window/undo_commands.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QStatusBar>

#include "desktop/base/qt_text.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

constexpr int kMessageTime = 8000;  // ms

QString named(const QString& command, const host::Step* step) {
  QString label = step != nullptr ? toQString(step->label) : QString();
  return label.isEmpty() ? command
                         : command + QLatin1Char(' ') + label.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

// A box takes the keys of undo for its own text. Where it has nothing to undo, they are the window's.
class UndoKeys final : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::ShortcutOverride) return false;
    const auto* box = qobject_cast<QLineEdit*>(watched);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (box == nullptr || !(key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)))
      return false;
    if (key->matches(QKeySequence::Undo) ? box->isUndoAvailable() : box->isRedoAvailable()) return false;
    event->ignore();
    return true;
  }
};

}  // namespace

UndoCommands::UndoCommands(Workbench& workbench, const Guard& guard, QMainWindow& window, QMenu& menu,
                           std::function<void()> onDone)
    : workbench_(workbench),
      guard_(guard),
      window_(window),
      onDone_(std::move(onDone)),
      undo_(menu.addAction(QStringLiteral("&Undo"))),
      redo_(menu.addAction(QStringLiteral("&Redo"))),
      dock_(new QDockWidget(QStringLiteral("Steps"), &window)),
      panel_(new HistoryPanel(workbench.history(), dock_)),
      lost_(new QLabel(&window)) {
  undo_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
  redo_->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
  // What was typed last may have become a step only now.
  connect(undo_, &QAction::triggered, this, [this] {
    workbench_.history().note(false);
    goTo(workbench_.history().position() - 1);
  });
  connect(redo_, &QAction::triggered, this, [this] {
    workbench_.history().note(false);
    goTo(workbench_.history().position() + 1);
  });
  qApp->installEventFilter(new UndoKeys(this));
  menu.addSeparator();
  dock_->setObjectName(QStringLiteral("steps"));
  dock_->setWidget(panel_);
  window.addDockWidget(Qt::RightDockWidgetArea, dock_);
  dock_->hide();
  menu.addAction(dock_->toggleViewAction());
  panel_->onGoTo = [this](std::size_t position) { goTo(position); };
  connect(dock_, &QDockWidget::visibilityChanged, this, [this] { refresh(); });
  lost_->setObjectName(QStringLiteral("lostDecisions"));
  lost_->hide();
  window.statusBar()->addPermanentWidget(lost_);
  connect(lost_, &QLabel::linkActivated, this, [this](const QString& link) {
    link == QLatin1String("undo") ? goTo(workbench_.history().position() - 1) : applyLost();
  });
  changes_ = workbench.history().Changed.connect([this] { refresh(); });
  refresh();
}

void UndoCommands::goTo(std::size_t position) {
  host::StudyHistory& history = workbench_.history();
  if (position >= history.steps().size() || position == history.position()) return;
  const host::StudyState before = history.steps()[history.position()].state;
  const QString label = toQString(history.steps()[std::max(position, history.position())].label);
  const bool isBack = position < history.position();
  if (guard_.run([&] { history.goTo(position); })) {
    guard_.run([&] { showChanged(before); });
    window_.statusBar()->showMessage(
        (isBack ? QStringLiteral("Undone: ") : QStringLiteral("Done again: ")) + label, kMessageTime);
  }
  onDone_();
}

// The page of what was undone comes to the front.
void UndoCommands::showChanged(const host::StudyState& before) {
  const host::StudyHistory& history = workbench_.history();
  for (const auto& analysis : workbench_.study()->AFLPs) {
    const host::AnalysisState* const was = before.find(analysis->ID());
    const host::AnalysisState* const is = history.steps()[history.position()].state.find(analysis->ID());
    if (was == nullptr || is == nullptr || was->holdsSameAs(*is)) continue;
    if (const auto page = workbench_.host().pages().find(names::kResultsPage, analysis)) page->Show();
  }
}

void UndoCommands::applyLost() {
  const std::size_t count = workbench_.history().lostDecisions();
  std::vector<std::string> homeless;
  const bool done = guard_.run([&] { homeless = workbench_.host().applyLostDecisions(); });
  onDone_();
  if (!done) return;
  window_.statusBar()->showMessage(
      QStringLiteral("%1 of %2 decisions taken to the new bins").arg(count - homeless.size()).arg(count),
      kMessageTime);
  if (homeless.empty()) return;
  QString names;
  for (const std::string& key : homeless) names += toQString(key) + QLatin1Char('\n');
  QMessageBox box(
      QMessageBox::Information, QStringLiteral("Decisions"),
      QStringLiteral("%1 decisions found no bin: none holds a fragment of theirs.").arg(homeless.size()),
      QMessageBox::Ok, &window_);
  box.setTextFormat(Qt::PlainText);
  box.setDetailedText(names);
  box.exec();
}

void UndoCommands::refresh() {
  const host::StudyHistory& history = workbench_.history();
  const auto stepAt = [&](std::size_t position) {
    return position < history.steps().size() ? &history.steps()[position] : nullptr;
  };
  undo_->setEnabled(history.canUndo());
  redo_->setEnabled(history.canRedo());
  undo_->setText(named(QStringLiteral("&Undo"), history.canUndo() ? stepAt(history.position()) : nullptr));
  redo_->setText(named(QStringLiteral("&Redo"), stepAt(history.position() + 1)));
  if (dock_->isVisible()) panel_->refresh();
  lost_->setVisible(history.lostDecisions() > 0);
  lost_->setText(QStringLiteral("%1 by hand no longer apply: <a href=\"undo\">Undo</a> | "
                                "<a href=\"apply\">Apply to the new bins</a>")
                     .arg(history.lostDecisions() == 1
                              ? QStringLiteral("1 decision")
                              : QStringLiteral("%1 decisions").arg(history.lostDecisions())));
  if (std::exchange(trouble_, history.logTrouble()) != history.logTrouble() && !trouble_.empty())
    window_.statusBar()->showMessage(
        QStringLiteral("What is not saved cannot be written down for recovery: ") + toQString(trouble_));
}

}  // namespace banddesk::desktop
