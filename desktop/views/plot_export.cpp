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
constexpr double kMillimetresPerInch = 25.4;
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

// Units of the file for a unit of the figure.
double scaleOf(const Figure& figure, const FigureSize& size, double perInch) {
  return size.millimetres / kMillimetresPerInch * perInch / std::max(figure.panel.width(), 1);
}

void paintSvg(const Figure& figure, const FigureSize& size, QIODevice& device) {
  const double scale = size.millimetres > 0 ? scaleOf(figure, size, kUnitsPerInch) : 1;
  QSvgGenerator generator;
  generator.setOutputDevice(&device);
  generator.setSize((QSizeF(wholeSize(figure)) * scale).toSize());
  generator.setViewBox(QRect({0, 0}, wholeSize(figure)));
  generator.setResolution(static_cast<int>(kUnitsPerInch));
  generator.setTitle(figure.title);
  QPainter painter(&generator);
  paintPanels(painter, figure, kVectorColumns);
}

// One page of the figure's own size.
void paintPdfPage(const Figure& figure, const FigureSize& size, QIODevice& device) {
  const QSizeF whole(wholeSize(figure));
  QPdfWriter writer(&device);
  writer.setResolution(kPdfResolution);
  writer.setPageMargins({});
  writer.setPageSize(QPageSize(whole * (size.millimetres / whole.width()), QPageSize::Millimeter, {},
                               QPageSize::ExactMatch));
  writer.setTitle(figure.title);
  QPainter painter(&writer);
  const double scale = scaleOf(figure, size, kPdfResolution);
  painter.scale(scale, scale);
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

}  // namespace

void raiseUnwritable(const QFileDevice& file) {
  raise(ErrorNumber::PermissionDenied, "Export",
        fmt::format("{}: {}", toText(file.fileName()), toText(file.errorString())));
}

QString FigureSize::filter() const {
  if (ending == QLatin1String(".svg")) return QStringLiteral("SVG drawings (*.svg)");
  if (ending == QLatin1String(".pdf")) return QStringLiteral("PDF documents (*.pdf)");
  return QStringLiteral("PNG pictures (*.png)");
}

QImage figureImage(const Figure& figure, const FigureSize& size) {
  requirePanels(figure);
  const double scale = size.millimetres > 0 ? scaleOf(figure, size, size.dpi) : kPictureScale;
  const QSize pixels = (QSizeF(wholeSize(figure)) * scale).toSize();
  if (std::max(pixels.width(), pixels.height()) > kLongestPicture) {
    raise(ErrorNumber::InvalidArgument, "Export",
          fmt::format("A picture of {} by {} pixels would be too large; make it smaller, or choose PDF.",
                      pixels.width(), pixels.height()));
  }
  QImage image(pixels, QImage::Format_RGB32);
  if (size.millimetres > 0) {
    image.setDotsPerMeterX(static_cast<int>(size.dpi * 1000 / kMillimetresPerInch));
    image.setDotsPerMeterY(image.dotsPerMeterX());
  }
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.scale(scale, scale);
  paintPanels(painter, figure, scale);
  painter.end();
  if (size.millimetres <= 0) image.setDevicePixelRatio(kPictureScale);
  return image;
}

void writeFigure(const Figure& figure, const QString& fileName, const FigureSize& size) {
  requirePanels(figure);
  const QString ending = fileName.section(QLatin1Char('.'), -1).toLower();
  const bool isPicture = ending == QLatin1String("png");
  if (!isPicture && ending != QLatin1String("svg") && ending != QLatin1String("pdf")) {
    raise(ErrorNumber::InvalidArgument, "Export",
          fmt::format("{}: a plot is written as .png, .svg or .pdf", toText(fileName)));
  }
  const QImage image = isPicture ? figureImage(figure, size) : QImage();
  QSaveFile file(fileName);
  if (!file.open(QIODevice::WriteOnly)) raiseUnwritable(file);
  bool isWritten = true;
  if (isPicture)
    isWritten = image.save(&file, "PNG");
  else if (ending == QLatin1String("svg"))
    paintSvg(figure, size, file);
  else
    size.millimetres > 0 && figure.panels == 1 ? paintPdfPage(figure, size, file) : paintPdf(figure, file);
  if (!isWritten || !file.commit()) raiseUnwritable(file);
}

}  // namespace banddesk::desktop
