// Draws the pages of a print layout, alike on paper, in a PDF and in the preview: dark text on white paper,
// whatever the palette of the screen.
#pragma once

#include <QFont>
#include <QHash>
#include <QPainter>
#include <map>

#include "desktop/print/print_layout.h"

namespace banddesk::desktop {

class PagePainter final {
 public:
  // The layout outlives the painter.
  explicit PagePainter(const PrintLayout& layout);

  // The painter's origin is the corner of the page's room, its unit a point.
  void paint(QPainter& painter, std::size_t page);

 private:
  struct TextFont {
    QFont font;
    double ascent = 0;
    double height = 0;
    QHash<QString, double> widths;  // of short texts, which come again and again
  };

  void paintGrounds(QPainter& painter, std::size_t page) const;
  void paintLines(QPainter& painter, std::size_t page) const;
  void paintCells(QPainter& painter, std::size_t page);
  void paintCell(QPainter& painter, const PlacedCell& placed);
  void paintText(QPainter& painter, const QString& text, const StyleAttributes& style,
                 const PaperRect& place);
  void paintBlock(QPainter& painter, const std::vector<host::PrintBlockCell>& block, double top);
  void paintPageNumber(QPainter& painter, std::size_t page);
  QColor groundOf(const StyleAttributes& look) const;
  QColor inkOf(const StyleAttributes& look) const;
  TextFont& fontOf(double points);
  static double widthOf(TextFont& font, const QString& text);

  const PrintLayout& layout_;
  std::map<double, TextFont> fonts_;  // by points
};

}  // namespace banddesk::desktop
