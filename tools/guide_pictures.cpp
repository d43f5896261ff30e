// Takes the pictures of the guide: guide_pictures EXAMPLE FOLDER, where EXAMPLE is what `banddesk example`
// made; a third word "dark" takes them in dark colours. The real window is brought into each state by the program's own commands, at a fixed size and in
// light colours, so that two runs give the same pictures. tools/guide-pictures sets up the rest.
#include <QApplication>
#include <QDeadlineTimer>
#include <QDockWidget>
#include <QImageWriter>
#include <QLineEdit>
#include <QPainter>
#include <QTimer>
#include <clocale>
#include <iostream>

#include "desktop/base/appearance.h"
#include "desktop/base/qt_text.h"
#include "desktop/dialogs/popup_menu.h"
#include "desktop/pictures/format_dialog.h"
#include "desktop/pictures/picture_page.h"
#include "desktop/views/result_views.h"
#include "desktop/window/grid_ports.h"
#include "desktop/window/import_dialog.h"
#include "desktop/window/main_window.h"

namespace banddesk::desktop {
namespace {

constexpr QSize kWindow{800, 560};
constexpr const char* kResults = "AFLP";

void settle() {
  for (int i = 0; i < 3; ++i) {
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

// Sixteen steps a channel, black and white among them: nobody sees the difference, and files are half as
// large.
QImage withFewColours(const QImage& picture) {
  QImage few = picture;
  const auto step = [](int value) { return (value + 8) / 17 * 17; };
  for (int y = 0; y < few.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(few.scanLine(y));
    for (int x = 0; x < few.width(); ++x)
      line[x] = qRgb(step(qRed(line[x])), step(qGreen(line[x])), step(qBlue(line[x])));
  }
  // With 256 colours or fewer this is exact.
  return few.convertToFormat(QImage::Format_Indexed8, Qt::AvoidDither | Qt::ThresholdDither);
}

// Some of the page's work waits for a timer.
void until(const std::function<bool()>& holds) {
  const QDeadlineTimer patience(std::chrono::seconds(20));
  while (!holds()) {
    if (patience.hasExpired()) throw std::runtime_error("waited in vain");
    QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
  }
}

class Photographer {
 public:
  Photographer(QString example, QString folder) : example_(std::move(example)), folder_(std::move(folder)) {
    window_.setFixedSize(kWindow);
    window_.resizeDocks({explorer_}, {150}, Qt::Horizontal);
    window_.show();
    window_.openFiles({example_ + QStringLiteral("/example.study")});
    settle();
  }

  void takeAll() {
    takeImport();
    takeParameters();
    takeResults();
    takeColumns();
    takePrint();
    takeQuality();
    takeStack();
    takeReview();
    takePictures();
    takeFormats();
  }

 private:
  void takeImport() {
    ImportDialog dialog(workbench_.host().study(), {example_ + QStringLiteral("/peaks.txt")}, &window_);
    dialog.resize(760, 420);
    dialog.show();
    take(dialog, "import");
  }

  void takeParameters() {
    host().runNewAnalysis();
    take(window_, "parameters");
    host().pages().end(host().pages().openPages().front(), false);
  }

  void takeResults() {
    host().service().OpenAFLP(host().study().Study()->AFLPs.Item(1));
    settle();
    const auto& grid = control<host::GridControl>("grdAFLP");
    std::int32_t full = 1;
    while (!grid.IsRowHidden(full)) ++full;
    control<ui::CheckBox>("chkShowExcluded").click();
    until([&] { return !grid.IsRowHidden(full); });
    take(window_, "results");
    control<ui::CheckBox>("chkShowExcluded").click();
    until([&] { return grid.IsRowHidden(full); });
    explorer_->hide();
  }

  void takeColumns() { takeDialog("columns", "mnuSelectColumns"); }
  void takePrint() { takeDialog("print", "mnuPrintColor1"); }

  void takeQuality() {
    auto& panel = *window_.findChild<QualityPanel*>();
    panel.findChild<QLineEdit*>()->setText(QStringLiteral("b"));
    auto* dock = window_.findChild<QDockWidget*>(QStringLiteral("quality"));
    dock->show();
    window_.resizeDocks({dock}, {390}, Qt::Horizontal);
    take(window_, "quality");
    dock->hide();
  }

  void takeStack() {
    openView("mnuEgramCell", 6);
    window_.findChild<StackedView*>()->axis().show({150, 215});
    take(window_, "stack");
    host().pages().end(host().pages().openPages().back(), false);
  }

  void takeReview() {
    openView("mnuOverlayCell", 12);
    auto& review = *window_.findChild<BinReview*>();
    for (int i = 0; i < 14; ++i) review.next();
    settle();
    take(window_, "review");
  }

  // Some samples are selected, which each picture shows.
  void takePictures() {
    selectSamples(3);
    takePicture("PrincipalCoordinates", "pcoa");
    takePicture("Dendrogram", "dendrogram");
    takePicture("HeatMap", "heat-map");
    takePicture("PseudoGel", "gel");
    takePicture("Histograms", "histogram");
    takePicture("Plates", "plate");
  }

  void takePicture(const char* page, const char* name) {
    auto& analysis = host().study().Study()->AFLPs;
    const auto opened = host().pages().OpenPage(page, analysis.Item(1), nullptr, true, true, true, true, true,
                                                true, nullptr, true, 0);
    opened->SetCaption(opened->Caption() + " - " + analysis.Item(1)->Name.get());
    opened->Show();
    settle();
    PicturePage* picture = nullptr;
    until([&] {
      picture = window_.findChild<PicturePage*>();
      return picture != nullptr && !picture->work().isRunning() && !picture->isOutOfDate();
    });
    take(window_, name);
    host().pages().end(host().pages().openPages().back(), false);
    settle();
  }

  void takeFormats() {
    host::PlainTable table = host::plainTable(*host().study().Study()->AFLPs.Item(1), resultsPage());
    PictureContext context;
    FormatDialog dialog(std::make_shared<const host::PlainTable>(std::move(table)), context,
                        QStringLiteral("First"), &window_);
    dialog.chooseFormat("structure");
    dialog.resize(800, 460);
    dialog.show();
    take(dialog, "formats");
  }

  IAFLPResultsPage& resultsPage() {
    for (const auto& page : host().pages().openPages()) {
      if (page->DefinitionName() == kResults)
        return *cast<IAFLPResultsPage>(page->control(), "AFLPResultsPage");
    }
    throw std::logic_error("no table is open");
  }

  // The first samples are selected by their headers, then the item of the table's menu is chosen.
  void openView(const char* menuItem, std::int32_t samples) {
    selectSamples(samples);
    chooseItem(menuItem);
    settle();
  }

  void selectSamples(std::int32_t count) {
    auto& grid = control<host::GridControl>("grdAFLP");
    std::int32_t first = 1;
    while (grid.GetValue(0, first) != "1") ++first;
    grid.user().selectCols(first, first + count - 1);
  }

  void takeDialog(const char* name, const char* menuItem) {
    QTimer::singleShot(0, &window_, [this, name] {
      QWidget* dialog = QApplication::activeModalWidget();
      if (dialog == nullptr) throw std::logic_error("no dialog opened");
      dialog->resize(dialog->size().boundedTo(QSize(760, 560)));
      take(*dialog, name);
      dialog->close();
    });
    chooseItem(menuItem);
    settle();
  }

  void chooseItem(const char* name) {
    choose(control<ui::MenuItem>(name), [](const auto& work) { work(); });
  }

  template <class Control>
  Control& control(const char* name) {
    for (const auto& page : host().pages().openPages()) {
      if (page->DefinitionName() == kResults)
        return required(page->control()->Controls().find<Control>(name), name);
    }
    throw std::logic_error("no table is open");
  }

  void take(QWidget& widget, const char* name) {
    settle();
    QImage picture = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    QPainter frame(&picture);
    frame.setPen(widget.palette().color(QPalette::Mid));
    frame.drawRect(picture.rect().adjusted(0, 0, -1, -1));
    frame.end();
    QImageWriter writer(folder_ + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png"));
    writer.setCompression(100);
    if (!writer.write(withFewColours(picture))) throw std::runtime_error(toText(writer.errorString()));
  }

  host::Host& host() { return workbench_.host(); }

  QString example_;
  QString folder_;
  Workbench workbench_{desktopGridPorts()};
  MainWindow window_{workbench_};
  QDockWidget* explorer_ = window_.findChild<QDockWidget*>(QStringLiteral("explorer"));
};

}  // namespace
}  // namespace banddesk::desktop

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setOrganizationName(QStringLiteral("Banddesk"));
  QApplication::setApplicationName(QStringLiteral("Banddesk"));
  if (argc < 3) {
    std::cerr << "guide_pictures EXAMPLE FOLDER [dark]\n";
    return 2;
  }
  banddesk::desktop::rememberSystemAppearance();
  using banddesk::desktop::Appearance;
  banddesk::desktop::apply(argc > 3 ? Appearance::Dark : Appearance::Light);
  try {
    banddesk::desktop::Photographer(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]))
        .takeAll();
  } catch (const std::exception& error) {
    std::cerr << "guide_pictures: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
