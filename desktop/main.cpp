// The desktop program.
#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <clocale>

#include "desktop/base/appearance.h"
#include "desktop/base/qt_text.h"
#include "desktop/window/grid_ports.h"
#include "desktop/window/main_window.h"

namespace {

int run(QApplication& application) {
  using namespace banddesk::desktop;
  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("AFLP tables from the fragments of many samples."));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument(QStringLiteral("files"), QStringLiteral("A study, or peak tables to import."),
                               QStringLiteral("[files...]"));
  parser.process(application);
  Workbench workbench(desktopGridPorts());
  MainWindow window(workbench);
  window.show();
  const QStringList files = parser.positionalArguments();
  if (!files.isEmpty())
    QMetaObject::invokeMethod(
        &window, [&window, files] { window.openFiles(files); }, Qt::QueuedConnection);
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  // The toolkit takes over the locale of the environment; numbers in files keep their point.
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setOrganizationName(QStringLiteral("Banddesk"));
  QApplication::setApplicationName(QStringLiteral("Banddesk"));
  QApplication::setApplicationVersion(QStringLiteral(BANDDESK_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("banddesk"));
  banddesk::desktop::rememberSystemAppearance();
  banddesk::desktop::apply(banddesk::desktop::chosenAppearance());
  try {
    return run(application);
  } catch (const std::exception& error) {
    QMessageBox::critical(nullptr, QStringLiteral("Banddesk"), banddesk::desktop::toQString(error.what()));
    return 2;
  }
}
