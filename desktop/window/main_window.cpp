#include "desktop/window/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QColorDialog>
#include <QDockWidget>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QSettings>
#include <QStatusBar>

#include "desktop/base/qt_text.h"
#include "desktop/grid/grid_view.h"
#include "desktop/pages/number_boxes.h"
#include "desktop/pages/page_widget.h"
#include "desktop/pictures/picture_page.h"
#include "desktop/views/result_view_page.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

QString geometryKey() { return QStringLiteral("window/geometry"); }
QString stateKey() { return QStringLiteral("window/state"); }

}  // namespace

MainWindow::MainWindow(Workbench& workbench)
    : workbench_(workbench),
      guard_(workbench.host().framework(), *this),
      progress_(new ProgressIndicator(this)),
      commands_(workbench, guard_, *progress_, *this),
      pictures_(workbench.host(), guard_, *this) {
  setAcceptDrops(true);
  makeDocks();
  makeFileMenu();
  makeEditMenu();
  makeAnalysisMenu();
  makeTableMenu();
  makeViewMenu();
  makeHelpMenu();
  makeToolBar();
  summary_ = new QLabel(this);
  statusBar()->addPermanentWidget(summary_);
  statusBar()->addPermanentWidget(progress_);
  connections_.push_back(
      commands_.Told.connect([this](const QString& line) { statusBar()->showMessage(line, kMessageTime); }));
  connections_.push_back(commands_.RenameWanted.connect([this](const auto& analysis) {
    guard_.run([&] { workbench_.host().service().RenameAFLP(analysis); });
  }));
  workbench_.setRecoveryFront(&recovery_);
  connectHost();
  connectExplorer();
  connectPages();
  if (const QScreen* screen = QApplication::primaryScreen()) resize(screen->availableSize() * 4 / 5);
  const QSettings settings;
  restoreGeometry(settings.value(geometryKey()).toByteArray());
  restoreState(settings.value(stateKey()).toByteArray());
  errorDock_->hide();
  studyChanged();
}

MainWindow::~MainWindow() {
  qApp->disconnect(this);
  explorer_->disconnect(this);
  // While the widgets still stand: pages take leave of them.
  try {
    workbench_.close();
  } catch (const std::exception&) {
    // It is in the list of failures, which goes with the window.
  }
  workbench_.setRecoveryFront(nullptr);
  connections_.clear();
  front_.reset();
  // Before the registry, in which they are.
  delete pages_;
}

void MainWindow::openFiles(const QStringList& files) {
  commands_.openFiles(files);
  updateState();
}

void MainWindow::connectExplorer() {
  explorer_->guarded = [this](const auto& work) {
    guard_.run(work);
    updateState();
  };
  connect(explorer_, &ExplorerPanel::commandChosen, this, &MainWindow::runCommand);
  connect(explorer_, &ExplorerPanel::newAnalysisChosen, this, &MainWindow::newAnalysis);
  connect(explorer_, &ExplorerPanel::importChosen, this, [this] { commands_.import(); });
  connect(explorer_, &ExplorerPanel::showResultChosen, this, &MainWindow::showResult);
  connect(explorer_, &ExplorerPanel::deleteResultChosen, this, &MainWindow::deleteResult);
  connect(explorer_, &ExplorerPanel::excludeResultChosen, this, [this](std::int32_t id, bool excluded) {
    guard_.run([&] { workbench_.host().study().setResultExcluded(id, excluded); });
  });
  connect(explorer_, &ExplorerPanel::dyeColourChosen, this, &MainWindow::chooseDyeColour);
  connect(explorer_, &ExplorerPanel::dyeVisibleChosen, this, [this](std::int32_t dye, bool isVisible) {
    guard_.run([&] { workbench_.host().study().setDyeVisible(dye, isVisible); });
  });
}

void MainWindow::connectPages() {
  pages_->guarded = [this](const auto& work) { return guard_.run(work); };
  connect(pages_, &PageArea::closeChosen, this, &MainWindow::closePage);
  connect(pages_, &PageArea::reopenChosen, this, &MainWindow::reopenPage);
  connect(pages_, &PageArea::pageChanged, this, &MainWindow::updateState);
  connect(quality_, &QualityPanel::binChosen, this, [this](std::int32_t row) { pointAt(Axis::Rows, row); });
  connect(quality_, &QualityPanel::sampleChosen, this,
          [this](std::int32_t col) { pointAt(Axis::Columns, col); });
}

// Which of the two the user works in decides which analysis the commands mean. Menus take the focus, too, but
// they are neither.
void MainWindow::followFocus(const QWidget* focus) {
  if (focus == nullptr) return;
  const bool isExplorer = explorer_->isAncestorOf(focus) || focus == explorer_;
  if (!isExplorer && !pages_->isAncestorOf(focus)) return;
  isExplorerMeant_ = isExplorer;
  updateAnalysisCommands();
}

ExplorerPanel::Item MainWindow::analysisInFront() const {
  const Page page = tableInFront();
  const auto analysis = page ? std::dynamic_pointer_cast<AFLP>(page->bound()) : nullptr;
  const auto& folder = workbench_.host().folder();
  if (!analysis || !folder) return nullptr;
  const auto& items = folder->AFLPExplorerItems();
  const std::string key = analysis->collectionKey();
  return items.holdsKey(key) ? items.Item(key) : nullptr;
}

ExplorerPanel::Item MainWindow::meantAnalysis() const {
  return isExplorerMeant_ || !pages_->currentPage() ? explorer_->currentAnalysis() : analysisInFront();
}

QWidget* MainWindow::makePageContent(host::HostPage& page, QWidget* parent) {
  if (!page.control()) {
    QWidget* picture = makePicturePage(workbench_.host(), page, pictures_.context(), parent);
    return picture != nullptr ? picture : makeViewPage(workbench_.host(), page, parent);
  }
  const std::weak_ptr<host::HostPage> weak = page.weak_from_this();
  PageActions actions;
  actions.accept = [this, weak] { acceptPage(weak.lock()); };
  actions.cancel = [this, weak] { closePage(weak.lock()); };
  actions.showError = [this](const Error& error) { guard_.tell(toQString(error.description())); };
  actions.makeGrid = [this, userAction = actionOn(page), menuCell = menuCellOf(page)](
                         host::GridControl& grid, QWidget* frame) -> QWidget* {
    auto* view = new GridView(grid, frame);
    view->menuCell = menuCell;
    view->setAccessibleName(QStringLiteral("AFLP table"));
    view->userAction = userAction;
    view->onError = [this](const Error& error) { guard_.tell(toQString(error.description())); };
    return view;
  };
  return makePageWidget(workbench_.host(), page, registry_, actions, parent);
}

UserAction MainWindow::actionOn(const host::HostPage& page) {
  return userActionOn(workbench_.host(), page,
                      [this](const Error& error) { guard_.tell(toQString(error.description())); });
}

void MainWindow::showHelp(const std::string& topic) { help_.show(topic); }

void MainWindow::newAnalysis() {
  guard_.run([&] { workbench_.host().runNewAnalysis(); });
  updateState();
}

void MainWindow::runCommand(const ExplorerPanel::Item& item, const std::string& command) {
  if (command == "DeleteAFLP") {
    deleteAnalysis(item);
  } else {
    if (command == "RenameAFLP") explorerDock_->show();  // the name is typed there
    guard_.run([&] { workbench_.host().runCommand(item, command); });
  }
  updateState();
}

void MainWindow::deleteAnalysis(const ExplorerPanel::Item& item) {
  host::Host& host = workbench_.host();
  const QString name = toQString(cast<IAFLPExplorerItem>(item, "AFLPExplorerItem")->Name());
  QMessageBox box(
      QMessageBox::Question, QStringLiteral("Delete"),
      QStringLiteral("Delete the analysis \"%1\"? It leaves the study's file at the next save.").arg(name),
      QMessageBox::Yes | QMessageBox::No, this);
  box.setTextFormat(Qt::PlainText);
  if (box.exec() != QMessageBox::Yes) return;
  guard_.run([&] {
    host.runCommand(item, "DeleteAFLP");
    // Its page would go on with an analysis that nobody can reach any more.
    const auto open = host.pages().openPages();
    for (const auto& page : open) {
      const auto analysis = std::dynamic_pointer_cast<AFLP>(page->bound());
      if (analysis && page->DefinitionName() == names::kResultsPage &&
          !workbench_.study()->AFLPs.holdsKey(analysis->collectionKey()))
        host.pages().end(page, false);
    }
  });
}

void MainWindow::showResult(std::int32_t resultId) {
  guard_.run([&] {
    const auto result = workbench_.study()->Results.Item(integerText(resultId));
    const auto shown = std::make_shared<Collection<ObjectRef>>();
    shown->Add(result, "Result");
    shown->Add(result->Sample->Data().Record(), "SampleData");
    const auto page = workbench_.host().pages().OpenPage("SingleSample", shown, nullptr, true, true, true,
                                                         true, true, true, nullptr, true, 0);
    page->SetCaption(page->Caption() + " - " + result->Sample->Name.get());
    // As the table's menu opens it: index 0 is the list of fragments without a plot.
    page->SetViewIndex(static_cast<std::int16_t>(workbench_.host().study().DisplayViewIndex() + 1));
    page->Show();
  });
}

void MainWindow::chooseDyeColour(std::int32_t dye) {
  const QColor now = toQColor(workbench_.study()->Dyes.Item(integerText(dye))->Color);
  const QColor chosen = QColorDialog::getColor(now, this, QStringLiteral("Colour of D%1").arg(dye + 1));
  if (chosen.isValid()) guard_.run([&] { workbench_.host().study().setDyeColor(dye, toColour(chosen)); });
}

void MainWindow::deleteResult(std::int32_t resultId) {
  const QString name = toQString(workbench_.study()->Results.Item(integerText(resultId))->Sample->Name.get());
  QMessageBox box(
      QMessageBox::Question, QStringLiteral("Delete"),
      QStringLiteral("Delete the result \"%1\" from the study? This is stored at once.").arg(name),
      QMessageBox::Yes | QMessageBox::No, this);
  box.setTextFormat(Qt::PlainText);
  if (box.exec() != QMessageBox::Yes) return;
  guard_.run([&] { workbench_.host().study().deleteResult(resultId); });
}

void MainWindow::acceptPage(const Page& page) {
  if (!page) return;
  guard_.run([&] { workbench_.host().pages().end(page, true); });
  updateState();
}

// The results page hands its state to its analysis when it closes; any other page is left without accepting.
void MainWindow::closePage(const Page& page) {
  if (!page) return;
  host::HostPageManager& pages = workbench_.host().pages();
  guard_.run([&] {
    if (page->DefinitionName() != names::kResultsPage) return void(pages.end(page, false));
    const auto analysis = cast<AFLP>(page->bound(), "AFLP");
    if (!analysis->persistentState().IsDirty && !analysis->persistentState().IsNew)
      return void(pages.end(page, false));
    if (pages.end(page, true)) return;
    QMessageBox box(
        QMessageBox::Question, QStringLiteral("AFLP Analysis"),
        QStringLiteral("A value on the page is not valid. Close the page without its last changes?"),
        QMessageBox::Yes | QMessageBox::No, this);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(invalidValues(*page->control()));
    if (box.exec() == QMessageBox::Yes) pages.end(page, false);
  });
  updateState();
}

void MainWindow::reopenPage(const Page& page) {
  const auto analysis = cast<AFLP>(page->bound(), "AFLP");
  guard_.run([&] {
    workbench_.host().pages().end(page, false);
    workbench_.host().service().OpenAFLP(analysis);
  });
  updateState();
}

void MainWindow::studyChanged() {
  explorer_->refreshStudy();
  updateState();
}

void MainWindow::updateState() {
  const bool isOpen = workbench_.isOpen();
  const Page page = pages_->currentPage();
  const bool hasTable = page && page->DefinitionName() == names::kResultsPage;
  quality_->follow(page);
  pictures_.setTable(tableInFront());
  for (QAction* action : needStudy_) action->setEnabled(isOpen);
  for (QAction* action : needTable_) action->setEnabled(hasTable);
  const bool isModified = workbench_.isModified();
  saveAction_->setEnabled(isModified);
  closePage_->setEnabled(page != nullptr);
  tableMenu_->setEnabled(hasTable);
  updateAnalysisCommands();
  const bool isReadOnly = !workbench_.whyReadOnly().empty();
  setWindowTitle(isOpen ? toQString(workbench_.studyName()) + QStringLiteral("[*]") +
                              (isReadOnly ? QStringLiteral(" (read-only)") : QString()) +
                              QStringLiteral(" - Banddesk")
                        : QStringLiteral("Banddesk"));
  setWindowModified(isModified);
  summary_->setText(isOpen ? counted(workbench_.resultCount(), "result", "results") + QStringLiteral(", ") +
                                 counted(workbench_.study()->AFLPs.Count(), "analysis", "analyses")
                           : QString());
}

// Commands that would do nothing are grey; those that the plug-in or the host's configuration switches follow
// their own state.
void MainWindow::updateAnalysisCommands() {
  const ExplorerPanel::Item meant = meantAnalysis();
  openAnalysis_->setEnabled(meant && meant != analysisInFront());
  renameAnalysis_->setEnabled(meant != nullptr);
  deleteAnalysis_->setEnabled(meant != nullptr);
  follow(*newAnalysisAction_, workbench_.host().command(host::kNewAnalysisCommand));
  follow(*reportMenu_->menuAction(), workbench_.host().command(host::kNewReportCommand));
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (!commands_.mayLeave()) return event->ignore();
  QSettings settings;
  settings.setValue(geometryKey(), saveGeometry());
  settings.setValue(stateKey(), saveState());
  guard_.run([&] { workbench_.close(); });
  event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  QStringList files;
  for (const QUrl& url : event->mimeData()->urls()) {
    if (url.isLocalFile()) files.append(url.toLocalFile());
  }
  event->acceptProposedAction();
  // The program that the files come from waits for the end of the drop.
  if (!files.isEmpty())
    QMetaObject::invokeMethod(
        this, [this, files] { openFiles(files); }, Qt::QueuedConnection);
}

}  // namespace banddesk::desktop
