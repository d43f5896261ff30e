// Plots as files and pictures, on white whatever the window's colours. A file is whole or not there.
#pragma once

#include <QImage>
#include <QPainter>
#include <QSize>
#include <QString>
#include <functional>

namespace banddesk::desktop {

// One or more panels of equal size, one beneath the other.
struct Figure {
  int panels = 1;
  QSize panel;  // units of 1/96 inch
  QString title;
  std::function<void(QPainter& painter, const QRectF& place, int panel, double columnsPerUnit)> paint;
};

QImage figureImage(const Figure& figure);

// As PNG, SVG or PDF, as the name's end says (PDF: landscape A4 sheets, as many panels on each as are
// readable). Error 5 for another ending, no panels or too large a picture, 70 where the file cannot be
// written.
void writeFigure(const Figure& figure, const QString& fileName);

}  // namespace banddesk::desktop
