#include "desktop/window/picture_commands.h"

#include "desktop/base/qt_text.h"
#include "desktop/pictures/format_dialog.h"
#include "host/framework/plain_table.h"

namespace banddesk::desktop {
namespace {

struct Picture {
  const char* page;
  const char* text;
};

constexpr Picture kPictures[] = {{"PrincipalCoordinates", "&Principal Coordinates"},
                                 {"Dendrogram", "&Dendrogram"},
                                 {"HeatMap", "&Heat Map"},
                                 {"PseudoGel", "Pseudo-&Gel"},
                                 {"Histograms", "H&istograms"},
                                 {"Plates", "P&lates"}};

}  // namespace

PictureCommands::PictureCommands(host::Host& host, const Guard& guard, QWidget& window)
    : host_(host),
      guard_(guard),
      window_(window),
      pictures_(QStringLiteral("P&ictures")),
      export_(QStringLiteral("&Files for Other Programs...")) {
  for (const Picture& picture : kPictures)
    QObject::connect(pictures_.addAction(QString::fromLatin1(picture.text)), &QAction::triggered, &pictures_,
                     [this, page = picture.page] { open(page); });
  QObject::connect(&export_, &QAction::triggered, &export_, [this] { exportFiles(); });
  setTable(nullptr);
}

void PictureCommands::addTo(QMenu& menu) {
  menu.addMenu(&pictures_);
  menu.addAction(&export_);
}

void PictureCommands::setTable(const std::shared_ptr<host::HostPage>& page) {
  table_ = page;
  pictures_.setEnabled(page != nullptr);
  export_.setEnabled(page != nullptr);
}

void PictureCommands::open(const char* page) {
  const auto table = table_.lock();
  if (!table) return;
  guard_.run([&] {
    const auto analysis = cast<AFLP>(table->bound(), "AFLP");
    const auto opened =
        host_.pages().OpenPage(page, analysis, nullptr, true, true, true, true, true, true, nullptr, true, 0);
    opened->SetCaption(opened->Caption() + " - " + analysis->Name.get());
    opened->Show();
  });
}

void PictureCommands::exportFiles() {
  const auto table = table_.lock();
  if (!table || !table->control()) return;
  guard_.run([&] {
    const auto analysis = cast<AFLP>(table->bound(), "AFLP");
    auto values = std::make_shared<const host::PlainTable>(
        host::plainTable(*analysis, *cast<IAFLPResultsPage>(table->control(), "AFLPResultsPage")));
    requireSound(values->bands);
    FormatDialog(std::move(values), context_, toQString(analysis->Name.get()), &window_).exec();
  });
}

}  // namespace banddesk::desktop
