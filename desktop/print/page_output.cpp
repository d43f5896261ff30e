#include "desktop/print/page_output.h"

#include <QGuiApplication>
#include <QLocale>
#include <QPdfWriter>
#include <QSaveFile>
#include <QScreen>
#include <algorithm>
#include <numeric>

#include "desktop/base/qt_text.h"
#include "desktop/print/page_painter.h"

namespace banddesk::desktop {
namespace {

constexpr double kPointsPerInch = 72;
constexpr double kMarginMillimetres = 12;
constexpr double kSmallestScale = 0.1;

// Widths of columns are in pixels of the screen that their texts were measured for.
double pointsPerPixel() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen == nullptr ? 0.75 : kPointsPerInch / screen->logicalDotsPerInchX();
}

double tableWidth(const host::PrintJob& job) {
  return std::accumulate(job.columnWidths.begin(), job.columnWidths.end(), 0.0) * pointsPerPixel();
}

double scaleOf(const host::PrintJob& job, const PaperChoice& choice) {
  if (choice.scale > 0) return choice.scale;
  const double room = choice.page.paintRect(QPageLayout::Point).width();
  return std::clamp(room / std::max(tableWidth(job), 1.0), kSmallestScale, 1.0);
}

PageRoom roomOf(const PaperChoice& choice, double scale) {
  const QRectF rect = choice.page.paintRect(QPageLayout::Point);
  return {rect.width() / scale, rect.height() / scale, pointsPerPixel()};
}

}  // namespace

PaperLayout::PaperLayout(const host::PrintJob& job, const PaperChoice& choice)
    : scale(scaleOf(job, choice)), layout(job, roomOf(choice, scale)) {}

PaperChoice usualPaper(const host::PrintJob& job) {
  const bool isMetric = QLocale::system().measurementSystem() == QLocale::MetricSystem;
  const QMarginsF margins(kMarginMillimetres, kMarginMillimetres, kMarginMillimetres, kMarginMillimetres);
  PaperChoice choice{QPageLayout(QPageSize(isMetric ? QPageSize::A4 : QPageSize::Letter),
                                 QPageLayout::Portrait, margins, QPageLayout::Millimeter)};
  if (tableWidth(job) > choice.page.paintRect(QPageLayout::Point).width()) {
    choice.page.setOrientation(QPageLayout::Landscape);
  }
  return choice;
}

OutputEnd writePages(QPagedPaintDevice& device, const PaperLayout& paper, std::size_t first, std::size_t last,
                     const PageProgress& progress) {
  QPainter painter;
  if (!painter.begin(&device)) return OutputEnd::Failed;
  painter.scale(device.logicalDpiX() / kPointsPerInch * paper.scale,
                device.logicalDpiY() / kPointsPerInch * paper.scale);
  PagePainter pages(paper.layout);
  for (std::size_t page = first; page <= last; ++page) {
    if (page > first && !device.newPage()) return OutputEnd::Failed;
    pages.paint(painter, page);
    if (progress && !progress(page - first + 1)) return OutputEnd::Stopped;
  }
  return painter.end() ? OutputEnd::Done : OutputEnd::Failed;
}

OutputEnd writePdf(const QString& path, const host::PrintJob& job, const PaperChoice& choice,
                   const PageProgress& progress, QString& error) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) {
    error = file.errorString();
    return OutputEnd::Failed;
  }
  const PaperLayout paper(job, choice);
  OutputEnd end = OutputEnd::Failed;
  {
    QPdfWriter writer(&file);
    writer.setPageLayout(choice.page);
    writer.setCreator(QStringLiteral("Banddesk"));
    if (!job.header.empty())
      writer.setTitle(toQString(job.header.front().style.value.value_or(std::string())));
    end = writePages(writer, paper, 0, paper.layout.pageCount() - 1, progress);
  }
  if (end == OutputEnd::Done && file.commit()) return end;
  error = file.errorString();
  file.cancelWriting();
  return end == OutputEnd::Done ? OutputEnd::Failed : end;
}

}  // namespace banddesk::desktop
