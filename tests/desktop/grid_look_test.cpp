// How cells look: colours that can be read, columns that fit their texts.
#include <QApplication>
#include <gtest/gtest.h>

#include "desktop/base/qt_text.h"
#include "desktop/grid/cell_colours.h"
#include "desktop/grid/grid_painter.h"
#include "desktop/grid/qt_text_measure.h"

namespace banddesk::desktop {
namespace {

TEST(CellColours, AreOwnOrThePalettesAndAlwaysReadable) {
  QPalette dark;
  dark.setColor(QPalette::Base, QColor(25, 25, 28));
  dark.setColor(QPalette::Text, QColor(230, 230, 230));
  dark.setColor(QPalette::Highlight, QColor(40, 90, 200));
  for (const QPalette& palette : {QPalette(Qt::white), dark}) {
    StyleAttributes look;
    look.interior = GridBrush{};
    look.textColor = ui::kWindowText;
    EXPECT_EQ(cellColours(look, palette, false).ground, palette.base().color());
    for (const ui::Colour ground : {0xFFFFFFU, 0x000000U, 0xCDEBC8U, 0x0000FFU, 0x808080U, ui::kButtonFace}) {
      for (const ui::Colour text : {0x000000U, 0xFFFFFFU, 0x1E4614U, 0xA0A0A0U}) {
        look.interior = GridBrush{0, ground, ground};
        look.textColor = text;
        for (const bool isSelected : {false, true}) {
          const CellColours colours = cellColours(look, palette, isSelected);
          EXPECT_GE(contrast(colours.ground, colours.text), 2.2) << ground << ' ' << text;
        }
      }
    }
    look.interior = GridBrush{0, 0xCDEBC8, 0xCDEBC8};
    look.textColor = 0x1E4614;
    EXPECT_EQ(toColour(cellColours(look, palette, false).ground), 0xCDEBC8U) << "own colours stay";
    EXPECT_EQ(toColour(cellColours(look, palette, false).text), 0x1E4614U);
  }
}

TEST(QtTextMeasure, AFittedColumnShowsItsTextsWhole) {
  host::GridPorts ports;
  ports.measure = std::make_shared<QtTextMeasure>();
  host::GridControl grid("grid", ports);
  grid.SetRowCount(4);
  grid.SetColCount(1);
  const char* texts[] = {"Size Variance", "1234567.25", "\xC3\x84thyl \xCE\xB2-Actin", "VAWAToTeLTAY"};
  CellFonts fonts;
  fonts.setBase(QApplication::font());
  for (const double size : {8.0, 14.0}) {
    for (const char* text : texts) {
      grid.SetValueRange(1, 1, text, 4);
      GridStyle style;
      style.SetFont({size}, 0);
      GridRange range;
      range.InitRange(1, 1, 1, 1);
      grid.SetStyleRange(range, style, StyleMode::Override);
      grid.ResizeToFit(range);
      EXPECT_FALSE(GridPainter::isCut(grid, {1, 1, 1, 1}, {0, 0, grid.colWidth(1), 20}, fonts)) << text;
    }
  }
}

}  // namespace
}  // namespace banddesk::desktop
