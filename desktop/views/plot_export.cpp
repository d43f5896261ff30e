#include "desktop/views/plot_export.h"

#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>
#include <algorithm>
#include <fmt/format.h>

#include "desktop/base/qt_text.h"
#include "plugin/base/error.h"

namespace banddesk::desktop {
namespace {

constexpr double kUnitsPerInch = 96;
constexpr int kPictureScale = 2;
constexpr int kLongestPicture = 30000;  // device pixels
constexpr double kVectorColumns = 3;    // columns a unit: finer than print shows
constexpr int kPdfResolution = 1200;
constexpr double kLeastPanelHeight = 140;

void paintPanels(QPainter& painter, const Figure& figure, double columnsPerUnit) {
  for (int panel = 0; panel < figure.panels; ++panel) {
    const QRectF place(QPointF(0, panel * figure.panel.height()), figure.panel);
    figure.paint(painter, place, panel, columnsPerUnit);
  }
}

void requirePanels(const Figure& figure) {
  if (figure.panels < 1) raise(ErrorNumber::InvalidArgument, "Export", "No sample is chosen.");
}

QSize wholeSize(const Figure& figure) {
  return {figure.panel.width(), figure.panel.height() * figure.panels};
}

void paintSvg(const Figure& figure, QIODevice& device) {
  QSvgGenerator generator;
  generator.setOutputDevice(&device);
  generator.setSize(wholeSize(figure));
  generator.setViewBox(QRect({0, 0}, wholeSize(figure)));
  generator.setResolution(static_cast<int>(kUnitsPerInch));
  generator.setTitle(figure.title);
  QPainter painter(&generator);
  paintPanels(painter, figure, kVectorColumns);
}

// Panels keep their shape on the sheet's width, unless that makes them too low to read or higher than the
// sheet.
void paintPdf(const Figure& figure, QIODevice& device) {
  QPdfWriter writer(&device);
  writer.setResolution(kPdfResolution);
  writer.setPageSize(QPageSize(QPageSize::A4));
  writer.setPageOrientation(QPageLayout::Landscape);
  writer.setTitle(figure.title);
  QPainter painter(&writer);
  painter.scale(kPdfResolution / kUnitsPerInch, kPdfResolution / kUnitsPerInch);
  const QSizeF sheet(writer.width() * kUnitsPerInch / kPdfResolution,
                     writer.height() * kUnitsPerInch / kPdfResolution);
  const double natural = sheet.width() * figure.panel.height() / std::max(figure.panel.width(), 1);
  const double height = std::min(std::max(natural, kLeastPanelHeight), sheet.height());
  const int onSheet = std::max(static_cast<int>(sheet.height() / height), 1);
  for (int panel = 0; panel < figure.panels; ++panel) {
    if (panel > 0 && panel % onSheet == 0) writer.newPage();
    const QRectF place(0, height * (panel % onSheet), sheet.width(), height);
    figure.paint(painter, place, panel, kVectorColumns);
  }
}

[[noreturn]] void raiseUnwritable(const QSaveFile& file) {
  raise(ErrorNumber::PermissionDenied, "Export",
        fmt::format("{}: {}", toText(file.fileName()), toText(file.errorString())));
}

}  // namespace

QImage figureImage(const Figure& figure) {
  requirePanels(figure);
  const QSize size = wholeSize(figure) * kPictureScale;
  if (std::max(size.width(), size.height()) > kLongestPicture) {
    raise(ErrorNumber::InvalidArgument, "Export",
          fmt::format("A picture of {} plots would be too large; choose fewer samples, or PDF.",
                      figure.panels));
  }
  QImage image(size, QImage::Format_RGB32);
  image.setDevicePixelRatio(kPictureScale);
  image.fill(Qt::white);
  QPainter painter(&image);
  paintPanels(painter, figure, kPictureScale);
  return image;
}

void writeFigure(const Figure& figure, const QString& fileName) {
  requirePanels(figure);
  const QString ending = fileName.section(QLatin1Char('.'), -1).toLower();
  const bool isPicture = ending == QLatin1String("png");
  if (!isPicture && ending != QLatin1String("svg") && ending != QLatin1String("pdf")) {
    raise(ErrorNumber::InvalidArgument, "Export",
          fmt::format("{}: a plot is written as .png, .svg or .pdf", toText(fileName)));
  }
  const QImage image = isPicture ? figureImage(figure) : QImage();
  QSaveFile file(fileName);
  if (!file.open(QIODevice::WriteOnly)) raiseUnwritable(file);
  bool isWritten = true;
  if (isPicture)
    isWritten = image.save(&file, "PNG");
  else if (ending == QLatin1String("svg"))
    paintSvg(figure, file);
  else
    paintPdf(figure, file);
  if (!isWritten || !file.commit()) raiseUnwritable(file);
}

}  // namespace banddesk::desktop
