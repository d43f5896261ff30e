// The registered styles of the table: made from the columns of the analysis, and where the cells use them.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

const Script kScript{{0, {{100, {1, 0, 2}}, {200, {0, 1, 0}}}}, {1, {{300, {0, 5, 1}}}}};

// Opens an analysis anew after a change of its columns.
std::unique_ptr<Desk> openedWith(const std::function<void(AFLP&)>& change) {
  auto desk = std::make_unique<Desk>(kScript);
  desk->newAnalysis();
  const auto analysis = desk->host.study().Study()->AFLPs.Item(1);
  desk->host.pages().endAll();
  change(*analysis);
  desk->reopen(analysis);
  return desk;
}

std::int32_t identifierOf(Desk& desk, const std::string& name) {
  const host::Looks& looks = desk.grid().looks();
  for (std::int32_t i = 1; i <= looks.registeredCount(); ++i) {
    if (looks.registeredName(i) == name) return i;
  }
  return 0;
}

const StyleAttributes& styleNamed(Desk& desk, const std::string& name) {
  return desk.grid().looks().registeredStyle(identifierOf(desk, name)).attributes();
}

void dress(GridColumn& column) {
  column.InteriorPattern = 3;
  column.InteriorColor = 0x111111;
  column.InteriorBkColor = 0x222222;
  column.ReadOnly = false;
  column.WrapText = true;
  column.HorizontalAlignment = 2;
  column.VerticalAlignment = 1;
  column.TextColor = 0x333333;
  column.Format = 1;
  column.Places = 4;
  column.Draw3dFrame = true;
  column.StyleToolTip = "a tip";
}

TEST(Styles, TakeEveryAttributeOfTheirColumn) {
  const auto definition = std::make_shared<GridColumnDefinition>();
  definition->HasOwnStyle = true;
  const auto desk = openedWith([&](AFLP& analysis) {
    dress(*analysis.StyleGrid->Columns.Item(2));
    dress(*analysis.DyeGrid->Columns.Item("1"));
    dress(*analysis.BinGrid->Columns.Item("9"));
    analysis.BinGrid->Columns.Item("9")->Definition = definition;
  });
  StyleAttributes dressed;
  dressed.interior = GridBrush();
  dressed.interior->SetPattern(3);
  dressed.interior->SetColor(0x111111);
  dressed.interior->SetBkColor(0x222222);
  dressed.readOnly = false;
  dressed.wrapText = true;
  dressed.horizontalAlignment = 2;
  dressed.verticalAlignment = 1;
  dressed.textColor = 0x333333;
  dressed.format = 1;
  dressed.places = 4;
  dressed.draw3dFrame = true;
  dressed.styleToolTip = "a tip";
  const auto& columns = desk->analysis().StyleGrid->Columns;
  for (const std::string& name : {columns.Item(2)->ToolTip.get(), std::string("D2"),
                                  desk->analysis().BinGrid->Columns.Item("9")->Header.get()}) {
    EXPECT_EQ(styleNamed(*desk, name + " Style"), dressed) << name;
  }
}

// The style that each cell of the table has of its own, by the name under which it is registered.
std::string styleAt(Desk& desk, std::int32_t row, std::int32_t col) {
  GridStyle style;
  desk.grid().GridParam().GetData().GetStyleRowCol(row, col, style, StyleMode::Copy, 1);
  const std::int32_t base = style.attributes().baseStyle.value_or(0);
  return base == 0 ? "" : desk.grid().looks().registeredName(base);
}

TEST(Styles, StandWhereTheTableUsesThem) {
  const auto own = std::make_shared<GridColumnDefinition>();
  own->HasOwnStyle = true;
  const auto desk = openedWith([&](AFLP& analysis) {
    for (const auto& column : analysis.BinGrid->Columns)
      column->Definition = std::make_shared<GridColumnDefinition>();
    for (const char* key : {"7", "8", "9"}) analysis.BinGrid->Columns.Item(key)->Definition = own;
    analysis.BinGrid->Columns.Item("8")->IsVisible = false;
  });
  EXPECT_EQ(identifierOf(*desk, "Bin Style"), 0) << "without a style of its own";
  const auto name = [&](const char* key) {
    return desk->analysis().BinGrid->Columns.Item(key)->Header.get() + " Style";
  };
  EXPECT_NE(identifierOf(*desk, name("8")), 0);
  for (std::int32_t row = 1; row <= 3; ++row) {
    EXPECT_EQ(styleAt(*desk, row, 1), "");
    EXPECT_EQ(styleAt(*desk, row, 2), row == 3 ? "D2 Style" : "D1 Style")
        << "a dye's column has the dye's style";
    EXPECT_EQ(styleAt(*desk, row, 3), "") << "a column that is not visible";
    EXPECT_EQ(styleAt(*desk, row, 5), name("9"));
  }
  const auto cell = [&](std::int32_t order) {
    for (const auto& entry : desk->analysis().StyleGrid->Columns) {
      if (entry->ColumnOrder == order) return entry->ToolTip.get() + " Style";
    }
    return std::string("none");
  };
  EXPECT_EQ(styleAt(*desk, 1, 10), cell(1));
  EXPECT_EQ(styleAt(*desk, 1, 12), cell(2)) << "exactly two fragments";
  EXPECT_EQ(styleAt(*desk, 3, 11), cell(2));
  EXPECT_EQ(styleAt(*desk, 1, 11), cell(3));
}

TEST(Styles, OfADyeAreReplacedUnderTheirNumberWhenItChanges) {
  Desk desk(kScript);
  desk.newAnalysis();
  const std::int32_t before = desk.grid().looks().registeredCount();
  const std::int32_t identifier = identifierOf(desk, "D1 Style");
  desk.host.study().setDyeColor(0, 0x123456);
  EXPECT_EQ(desk.grid().looks().registeredCount(), before);
  EXPECT_EQ(desk.grid().looks().registeredStyle(identifier).attributes().interior->bkColor, 0x123456U);
  EXPECT_EQ(desk.grid().look(1, 2).interior->bkColor, 0x123456U) << "cells that use it";
}

// Entries that are no dye leave boxes and styles alone; samples begin behind the last bin column, visible or
// not.
TEST(Styles, AreMadeForTheFourDyesAndSamplesBeginBehindAllBinColumns) {
  std::int32_t dyes = 0;
  const auto desk = openedWith([&](AFLP& analysis) {
    for (const char* key : {"4", "-1", "x"}) {
      const auto column = std::make_shared<GridColumn>();
      column->Key = key;
      column->Header = std::string("strange") + key;
      analysis.DyeGrid->Columns.Add(column);
    }
    analysis.BinGrid->Columns.Item("85")->IsVisible = false;
    dyes = analysis.DyeGrid->Columns.Count();
  });
  EXPECT_EQ(dyes, 7);
  for (const char* key : {"4", "-1", "x"})
    EXPECT_EQ(identifierOf(*desk, std::string("strange") + key + " Style"), 0);
  EXPECT_EQ(desk->page().Key(10), "-1");
  EXPECT_THAT(desk->host.framework().reports(), ::testing::IsEmpty());
}

TEST(Styles, WithAPlaceThatDoesNotExistAreAnError) {
  for (const std::int32_t order : {4, -1}) {
    EXPECT_THROW(
        openedWith([&](AFLP& analysis) { analysis.StyleGrid->Columns.Item(1)->ColumnOrder = order; }), Error);
  }
}

}  // namespace
}  // namespace banddesk::test
