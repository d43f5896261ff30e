// The window's docks, menus and tool bar. The letters of the menus keep clear of those that the pages'
// controls have.
#include <QActionGroup>
#include <QApplication>
#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>

#include "desktop/base/appearance.h"
#include "desktop/base/help_topic.h"
#include "desktop/base/qt_text.h"
#include "desktop/controls/text_box_widget.h"
#include "desktop/window/main_window.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

QString warningKey() { return QStringLiteral("warnBeforeDecisionsAreLost"); }

}  // namespace

void MainWindow::makeDocks() {
  explorer_ = new ExplorerPanel(workbench_, this);
  explorerDock_ = new QDockWidget(QStringLiteral("Explorer"), this);
  explorerDock_->setObjectName(QStringLiteral("explorer"));
  explorerDock_->setWidget(explorer_);
  addDockWidget(Qt::LeftDockWidgetArea, explorerDock_);
  resizeDocks({explorerDock_}, {fontMetrics().averageCharWidth() * 30}, Qt::Horizontal);

  errors_ = new ErrorPanel(this);
  errorDock_ = new QDockWidget(QStringLiteral("Failures"), this);
  errorDock_->setObjectName(QStringLiteral("failures"));
  errorDock_->setWidget(errors_);
  addDockWidget(Qt::BottomDockWidgetArea, errorDock_);
  auto* showErrors = new QPushButton(this);
  showErrors->setFlat(true);
  showErrors->hide();
  connect(showErrors, &QPushButton::clicked, this, [this] {
    errorDock_->show();
    errorDock_->raise();
  });
  statusBar()->addPermanentWidget(showErrors);
  connect(errors_, &ErrorPanel::countChanged, showErrors, [this, showErrors] {
    showErrors->setText(QStringLiteral("Failures: %1").arg(errors_->count()));
    showErrors->setVisible(errors_->count() > 0);
  });

  quality_ = new QualityPanel(this);
  qualityDock_ = new QDockWidget(QStringLiteral("Quality"), this);
  qualityDock_->setObjectName(QStringLiteral("quality"));
  qualityDock_->setWidget(quality_);
  addDockWidget(Qt::RightDockWidgetArea, qualityDock_);
  qualityDock_->hide();

  pages_ = new PageArea(
      workbench_.host(),
      [this](host::HostPage& page, QWidget* parent) { return makePageContent(page, parent); }, this);
  setCentralWidget(pages_);
}

QAction* MainWindow::addCommand(QMenu& menu, const QString& text, const QKeySequence& keys,
                                std::function<void()> work) {
  QAction* action = menu.addAction(text);
  action->setShortcut(keys);
  connect(action, &QAction::triggered, this, [this, work = std::move(work)] {
    if (!leaveFocusedBox()) return;
    work();
    updateState();
  });
  return action;
}

void MainWindow::makeFileMenu() {
  QMenu& menu = *menuBar()->addMenu(QStringLiteral("F&ile"));
  const auto icon = [this](QAction* action, QStyle::StandardPixmap picture) {
    action->setIcon(style()->standardIcon(picture));
    return action;
  };
  icon(addCommand(menu, QStringLiteral("&New Study..."), QKeySequence::New,
                  [this] { commands_.createAsked(); }),
       QStyle::SP_FileIcon);
  icon(addCommand(menu, QStringLiteral("&Open Study..."), QKeySequence::Open,
                  [this] { commands_.openAsked(); }),
       QStyle::SP_DialogOpenButton);
  recentMenu_ = menu.addMenu(QStringLiteral("&Recent Studies"));
  connect(recentMenu_, &QMenu::aboutToShow, this, [this] { fillRecent(); });
  menu.addSeparator();
  icon(addCommand(menu, QStringLiteral("&Import Peak Tables..."), QKeySequence(Qt::CTRL | Qt::Key_I),
                  [this] { commands_.import(); }),
       QStyle::SP_ArrowDown);
  menu.addSeparator();
  saveAction_ =
      icon(addCommand(menu, QStringLiteral("&Save..."), QKeySequence::Save, [this] { commands_.save(); }),
           QStyle::SP_DialogSaveButton);
  needStudy_.push_back(
      addCommand(menu, QStringLiteral("Save &As..."), QKeySequence::SaveAs, [this] { commands_.saveAs(); }));
  needStudy_.push_back(
      addCommand(menu, QStringLiteral("Save a Cop&y..."), {}, [this] { commands_.saveCopy(); }));
  needStudy_.push_back(addCommand(menu, QStringLiteral("&Close Study"),
                                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W),
                                  [this] { commands_.close(); }));
  menu.addSeparator();
  // Queued: the window must not go while its menu runs.
  QAction* quit = menu.addAction(QStringLiteral("&Quit"));
  quit->setShortcut(QKeySequence::Quit);
  connect(quit, &QAction::triggered, this, &QWidget::close, Qt::QueuedConnection);
}

void MainWindow::makeEditMenu() {
  QMenu& menu = *menuBar()->addMenu(QStringLiteral("E&dit"));
  undo_ = std::make_unique<UndoCommands>(workbench_, guard_, *this, menu, [this] { updateState(); });
}

void MainWindow::makeAnalysisMenu() {
  QMenu& menu = *menuBar()->addMenu(QStringLiteral("A&nalysis"));
  newAnalysisAction_ = addCommand(menu, QStringLiteral("&New AFLP Analysis"),
                                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N), [this] { newAnalysis(); });
  newAnalysisAction_->setIcon(style()->standardIcon(QStyle::SP_FileDialogNewFolder));
  reportMenu_ = menu.addMenu(QStringLiteral("New Re&port"));
  connect(reportMenu_, &QMenu::aboutToShow, this, [this] { fillReports(); });
  menu.addSeparator();
  const auto onChosen = [this](const char* command) {
    return [this, command] {
      if (const auto item = meantAnalysis()) runCommand(item, command);
    };
  };
  openAnalysis_ = addCommand(menu, QStringLiteral("&Open"), {}, onChosen("OpenAFLP"));
  renameAnalysis_ = addCommand(menu, QStringLiteral("&Rename"), {}, onChosen("RenameAFLP"));
  deleteAnalysis_ = addCommand(menu, QStringLiteral("&Delete..."), {}, onChosen("DeleteAFLP"));
  menu.addSeparator();
  makeWarningOption(menu);
  menu.addSeparator();
  closePage_ = addCommand(menu, QStringLiteral("&Close Page"), QKeySequence(Qt::CTRL | Qt::Key_W),
                          [this] { closePage(pages_->currentPage()); });
  connect(&menu, &QMenu::aboutToShow, this, [this] { updateAnalysisCommands(); });
  connect(explorer_, &QTreeWidget::currentItemChanged, this, [this] { updateAnalysisCommands(); });
  connect(qApp, &QApplication::focusChanged, this,
          [this](QWidget*, const QWidget* now) { followFocus(now); });
}

// The page's warning offers to show itself no more; here it comes back. It is the user's choice for all
// studies.
void MainWindow::makeWarningOption(QMenu& menu) {
  host::HostOptions& options = workbench_.host().study().options();
  options.load(QSettings().value(warningKey(), true).toBool());
  connections_.push_back(options.Changed.connect([](const host::HostOptions& changed) {
    QSettings().setValue(warningKey(), changed.ShowInclusionWarning());
  }));
  QAction* warns = menu.addAction(QStringLiteral("&Warn before Decisions Are Lost"));
  warns->setCheckable(true);
  connect(warns, &QAction::triggered, this, [&options](bool on) { options.SetShowInclusionWarning(on); });
  connect(&menu, &QMenu::aboutToShow, warns,
          [warns, &options] { warns->setChecked(options.ShowInclusionWarning()); });
}

void MainWindow::makeTableMenu() {
  review_ = new QAction(QStringLiteral("Review &Bins"), this);
  review_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_B));
  review_->setToolTip(
      QStringLiteral("The bin of the chosen row, in an overlay of the chosen samples (Ctrl+B)"));
  review_->setIcon(style()->standardIcon(QStyle::SP_FileDialogContentsView));
  connect(review_, &QAction::triggered, this, [this] { reviewBin(); });
  addAction(review_);
  needTable_.push_back(review_);
  tableMenu_ = menuBar()->addMenu(QStringLiteral("&Table"));
  connect(tableMenu_, &QMenu::aboutToShow, this, [this] { fillTable(); });
}

void MainWindow::makeViewMenu() {
  viewMenu_ = menuBar()->addMenu(QStringLiteral("&View"));
  viewMenu_->addAction(explorerDock_->toggleViewAction());
  viewMenu_->addAction(qualityDock_->toggleViewAction());
  viewMenu_->addAction(errorDock_->toggleViewAction());
  QMenu& colours = *viewMenu_->addMenu(QStringLiteral("&Colours"));
  auto* group = new QActionGroup(this);
  const auto add = [&](const QString& text, Appearance appearance) {
    QAction* action = colours.addAction(text);
    action->setCheckable(true);
    action->setChecked(chosenAppearance() == appearance);
    group->addAction(action);
    connect(action, &QAction::triggered, this, [appearance] { choose(appearance); });
  };
  add(QStringLiteral("As the &system"), Appearance::System);
  add(QStringLiteral("&Light"), Appearance::Light);
  add(QStringLiteral("&Dark"), Appearance::Dark);
  QAction* full = viewMenu_->addAction(QStringLiteral("&Full Screen"));
  full->setShortcut(QKeySequence(Qt::Key_F11));
  full->setCheckable(true);
  connect(full, &QAction::toggled, this, [this](bool on) { on ? showFullScreen() : showNormal(); });
}

void MainWindow::makeHelpMenu() {
  QMenu& menu = *menuBar()->addMenu(QStringLiteral("He&lp"));
  addCommand(menu, QStringLiteral("&Guide"), QKeySequence::HelpContents, [this] {
    const Page page = pages_->currentPage();
    const std::string topic = helpTopicAt(QApplication::focusWidget());
    showHelp(topic.empty() && page ? page->DefinitionName() : topic);
  });
  addCommand(menu, QStringLiteral("&About Banddesk"), {}, [this] {
    QMessageBox::about(
        this, QStringLiteral("Banddesk"),
        QStringLiteral("<b>Banddesk %1</b><p>From the fragments of many samples to an AFLP table.")
            .arg(QApplication::applicationVersion()));
  });
}

void MainWindow::makeToolBar() {
  QToolBar& bar = *addToolBar(QStringLiteral("Tools"));
  bar.setObjectName(QStringLiteral("tools"));
  bar.setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  for (QAction* action : menuBar()->actions().constFirst()->menu()->actions()) {
    if (!action->icon().isNull()) bar.addAction(action);
  }
  bar.addSeparator();
  bar.addAction(newAnalysisAction_);
  bar.addSeparator();
  const auto add = [&](const QString& text, QStyle::StandardPixmap picture, const char* item) {
    QAction* action = bar.addAction(style()->standardIcon(picture), text);
    connect(action, &QAction::triggered, this, [this, item] { chooseOnPage(item); });
    needTable_.push_back(action);
  };
  bar.addAction(review_);
  add(QStringLiteral("Transpose"), QStyle::SP_BrowserReload, names::kTransposeCell);
  add(QStringLiteral("Copy"), QStyle::SP_FileDialogDetailedView, names::kCopy);
  add(QStringLiteral("Export"), QStyle::SP_ArrowForward, names::kExport);
  add(QStringLiteral("Print"), QStyle::SP_FileDialogContentsView, names::kPrintColor);
  viewMenu_->addAction(bar.toggleViewAction());
}

void MainWindow::fillRecent() {
  recentMenu_->clear();
  const QStringList paths = commands_.recent().paths();
  for (const QString& path : paths) {
    QString text = path;
    recentMenu_->addAction(text.replace(QLatin1Char('&'), QStringLiteral("&&")), this, [this, path] {
      commands_.open(path);
      updateState();
    });
  }
  if (paths.isEmpty()) {
    recentMenu_->addAction(QStringLiteral("None yet"))->setEnabled(false);
  } else {
    recentMenu_->addSeparator();
    recentMenu_->addAction(QStringLiteral("&Clear the List"), this, [this] { commands_.forgetRecent(); });
  }
}

void MainWindow::fillReports() {
  reportMenu_->clear();
  std::vector<host::ReportRequest> contexts;
  if (workbench_.isOpen()) guard_.run([&] { contexts = workbench_.host().reportContexts(); });
  for (const host::ReportRequest& context : contexts) {
    QString text = toQString(context.contextName);
    reportMenu_->addAction(text.replace(QLatin1Char('&'), QStringLiteral("&&")), this, [this, context] {
      guard_.run([&] {
        workbench_.host().reports().NewReport(context.contextName, context.context, context.contextType);
      });
    });
  }
  if (contexts.empty()) reportMenu_->addAction(QStringLiteral("No analysis"))->setEnabled(false);
}

}  // namespace banddesk::desktop
