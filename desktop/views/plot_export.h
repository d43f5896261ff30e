// Plots as files and pictures, on white whatever the window's colours. A file is whole or not there.
#pragma once

#include <QFileDevice>
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

// How large a file's picture is. Text grows and shrinks with it.
struct FigureSize {
  QString ending = QStringLiteral(".png");
  double millimetres = 0;  // its width; 0: as on the screen, PDF as wide as a sheet
  int dpi = 300;           // of PNG, where the width is given

  QString filter() const;  // of a file dialog
};

QImage figureImage(const Figure& figure, const FigureSize& size = {});

// As PNG, SVG or PDF, as the name's end says. PDF of several panels, or without a width, has landscape A4
// sheets with as many panels on each as are readable; else a page as large as the figure. Error 5 for another ending, no panels or
// too large a picture, 70 where the file cannot be written.
void writeFigure(const Figure& figure, const QString& fileName, const FigureSize& size = {});

[[noreturn]] void raiseUnwritable(const QFileDevice& file);

}  // namespace banddesk::desktop
