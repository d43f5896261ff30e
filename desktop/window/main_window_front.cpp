// What the window answers and does for the host: its questions, and what it tells.
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>

#include "desktop/base/qt_text.h"
#include "desktop/grid/grid_view.h"
#include "desktop/pages/form_dialog.h"
#include "desktop/window/main_window.h"
#include "desktop/window/report_window.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {

class MainWindow::Front final : public PlatformFront {
 public:
  explicit Front(MainWindow& window)
      : PlatformFront(window.workbench_.host().platform(), window.workbench_.host().seat(), &window,
                      window.registry_),
        window_(window) {}

  void runForm(ui::Form& form) override { desktop::runForm(form, &window_); }
  host::StaleAnalysis decideStale(std::shared_ptr<AFLP>& analysis) override;
  void showReport(const host::ReportRequest& request, const std::function<std::string()>& makePage) override;

 protected:
  void act(const std::function<void()>& work) override;
  void showHelp(const std::string& topic) override { window_.showHelp(topic); }
  QPoint popupPosition() const override;
  bool mayChoose(const ui::MenuItem& item) override { return window_.mayChoose(item); }

 private:
  MainWindow& window_;
};

host::StaleAnalysis MainWindow::Front::decideStale(std::shared_ptr<AFLP>& analysis) {
  QMessageBox box(QMessageBox::Question, QStringLiteral("AFLP Analysis"),
                  QStringLiteral("The results of the study have changed since the analysis \"%1\" was made.")
                      .arg(toQString(analysis->Name.get())),
                  QMessageBox::Cancel, &window_);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(QStringLiteral(
      "Analyse again takes the present results, and new ones with them. Open as it was keeps to the "
      "results that the analysis had."));
  const QAbstractButton* again = box.addButton(QStringLiteral("&Analyse again"), QMessageBox::AcceptRole);
  const QAbstractButton* asStored = box.addButton(QStringLiteral("&Open as it was"), QMessageBox::NoRole);
  box.exec();
  if (box.clickedButton() == again) return host::StaleAnalysis::Redo;
  return box.clickedButton() == asStored ? host::StaleAnalysis::OpenAsStored : host::StaleAnalysis::DoNotOpen;
}

void MainWindow::Front::showReport(const host::ReportRequest& request,
                                   const std::function<std::string()>& makePage) {
  (new ReportWindow(toQString(request.contextName), toQString(makePage()), &window_))->show();
}

void MainWindow::Front::act(const std::function<void()>& work) {
  const Page page = window_.pages_->currentPage();
  page ? window_.actionOn (*page)(work) : work();
}

QPoint MainWindow::Front::popupPosition() const {
  const Page page = window_.pages_->currentPage();
  const auto* content = page ? window_.pages_->contentOf(*page) : nullptr;
  const auto* table = content != nullptr ? content->findChild<GridView*>() : nullptr;
  return table != nullptr ? table->menuPosition() : PlatformFront::popupPosition();
}

void MainWindow::connectHost() {
  host::Host& host = workbench_.host();
  front_ = std::make_unique<Front>(*this);
  progress_->follow(host.progress());
  connections_.push_back(
      host.framework().Reported.connect([this](const host::FailureReport& report) { noteFailure(report); }));
  connections_.push_back(workbench_.keeper().Reopened.connect([this](const auto&, const std::string& line) {
    statusBar()->showMessage(toQString(line), kMessageTime);
  }));
  connections_.push_back(host.rules().Told.connect(
      [this](const std::string& line) { statusBar()->showMessage(toQString(line), kMessageTime); }));
  connections_.push_back(workbench_.keeper().LeftHalfMade.connect(
      [this](const auto& page, const std::string& line) { pages_->showFailure(page, toQString(line)); }));
  connections_.push_back(workbench_.Changed.connect([this] { studyChanged(); }));
}

void MainWindow::noteFailure(const host::FailureReport& report) {
  errors_->add(report);
  // Of what a page does, its keeper tells.
  if (report.module == names::kResultsModule && !workbench_.keeper().isAtWork())
    pages_->showFailure(toQString(report.error.description()));
}

}  // namespace banddesk::desktop
