// Random programs of operations, run on the grid and on the plainest model that could be right: a map from
// places to cells.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <rapidcheck/gtest.h>
#include <set>
#include <tuple>

#include "host/grid/grid_control.h"

namespace banddesk::host {
namespace {

using Place = std::pair<int, int>;

struct ModelCell {
  std::string value, attribute, toolTip;
  std::map<std::string, int> look;
  bool operator==(const ModelCell&) const = default;
};

// Lines are moved by renumbering every place.
struct Model {
  std::map<Place, ModelCell> cells;
  std::set<int> hidden[2];
  int count[2] = {0, 0};

  template <class Renumber>
  void renumber(int axis, bool withHidden, Renumber renumber) {
    std::map<Place, ModelCell> moved;
    for (const auto& [place, cell] : cells) {
      const int line = renumber(axis == 0 ? place.first : place.second);
      if (line >= 0) moved[axis == 0 ? Place{line, place.second} : Place{place.first, line}] = cell;
    }
    cells = moved;
    if (!withHidden) return;
    std::set<int> stay;
    for (const int line : hidden[axis]) {
      if (renumber(line) >= 0) stay.insert(renumber(line));
    }
    hidden[axis] = stay;
  }
  void setCount(int axis, int n) {
    if (n <= count[axis]) renumber(axis, true, [n](int line) { return line > n ? -1 : line; });
    count[axis] = n;
  }
  void insertRows(int start, int n) {
    start = std::max(start, 1);
    renumber(0, true, [=](int line) { return line >= start ? line + n : line; });
    count[0] += n;
  }
  void remove(int axis, int from, int to) {
    from = std::max(from, 1);
    if (to < from) return;
    const int gone = to - from + 1;
    renumber(axis, true, [=](int line) { return line < from ? line : line <= to ? -1 : line - gone; });
    count[axis] -= std::max(0, std::min(to, count[axis]) - from + 1);
  }
  void move(int axis, int first, int last, int target) {
    const int length = last - first + 1;
    renumber(axis, true, [=](int line) {
      if (target > last + 1) {
        if (line >= first && line <= last) return line + target - last - 1;
        return line > last && line < target ? line - length : line;
      }
      if (target >= first) return line;
      if (line >= first && line <= last) return line + target - first;
      return line >= target && line < first ? line + length : line;
    });
  }
  ModelCell at(int row, int col) const {
    const auto found = cells.find({row, col});
    return found == cells.end() ? ModelCell{} : found->second;
  }
  void sort(int axis, int first, int last, int key, bool descending) {
    std::vector<int> order;
    for (int line = first; line <= last; ++line) order.push_back(line);
    const auto rank = [&](int line) {
      const std::string text = axis == 0 ? at(line, key).value : at(key, line).value;
      if (text.empty() || text == "Beta" || text == "alpha")
        return std::tuple(1, 0.0, text == "Beta" ? "beta" : text);
      return std::tuple(0, std::stod(text), std::string());
    };
    std::ranges::stable_sort(
        order, [&](int a, int b) { return descending ? rank(b) < rank(a) : rank(a) < rank(b); });
    renumber(axis, false, [&](int line) {
      const auto found = std::ranges::find(order, line);
      return found == order.end() ? line : first + static_cast<int>(found - order.begin());
    });
  }
  void exchange() {
    std::map<Place, ModelCell> turned;
    for (const auto& [place, cell] : cells) turned[{place.second, place.first}] = cell;
    cells = turned;
    std::swap(hidden[0], hidden[1]);
    std::swap(count[0], count[1]);
  }
};

constexpr int kSpan = 9;  // operations touch lines 0..8

int upTo(int most) { return *rc::gen::inRange(0, most + 1); }

GridStyle randomStyle(std::map<std::string, int>& look) {
  GridStyle style;
  if (upTo(1) == 1) style.SetBaseStyle(look["base"] = upTo(3));
  if (upTo(1) == 1) style.SetTextColor(static_cast<Colour>(look["colour"] = upTo(3)));
  if (upTo(2) == 1) style.SetPlaces(look["places"] = upTo(2));
  return style;
}

std::map<std::string, int> lookOf(const StyleAttributes& style) {
  std::map<std::string, int> look;
  if (style.baseStyle) look["base"] = *style.baseStyle;
  if (style.textColor) look["colour"] = static_cast<int>(*style.textColor);
  if (style.places) look["places"] = *style.places;
  return look;
}

std::string randomText() {
  return *rc::gen::elementOf(
      std::vector<std::string>{"", "0", "7", "-12", "2147483647", "1.50", "007", "alpha", "Beta"});
}

void styleRange(GridControl& grid, Model& model) {
  std::map<std::string, int> look;
  GridStyle style = randomStyle(look);
  const auto mode =
      *rc::gen::element(StyleMode::Override, StyleMode::Copy, StyleMode::Remove, StyleMode::Registered);
  std::optional<std::string> value, attribute, tip;
  if (upTo(2) == 0) style.SetValue(*(value = randomText()));
  if (upTo(3) == 0) style.attributes().userAttribute = attribute = "key";
  if (upTo(3) == 0) style.attributes().toolTip = tip = "tip";
  const int top = upTo(kSpan), left = upTo(kSpan), bottom = upTo(kSpan), right = upTo(kSpan);
  GridRange range;
  range.InitRange(left, top, right, bottom);
  grid.SetStyleRange(range, style, mode);
  if (mode == StyleMode::Registered) return;
  for (int row = top; row <= bottom; ++row) {
    for (int col = left; col <= right; ++col) {
      ModelCell& cell = model.cells[{row, col}];
      const auto change = [mode](std::string& own, const std::optional<std::string>& given) {
        if (mode == StyleMode::Copy) own = given.value_or("");
        if (mode == StyleMode::Override && given) own = *given;
        if (mode == StyleMode::Remove && given) own.clear();
      };
      change(cell.value, value);
      change(cell.attribute, attribute);
      change(cell.toolTip, tip);
      if (mode == StyleMode::Copy) cell.look = look;
      for (const auto& [name, number] : look) {
        if (mode == StyleMode::Override) cell.look[name] = number;
        if (mode == StyleMode::Remove) cell.look.erase(name);
      }
    }
  }
}

void writeCell(GridControl& grid, Model& model) {
  const int row = upTo(kSpan), col = upTo(kSpan);
  ModelCell& cell = model.cells[{row, col}];
  switch (upTo(3)) {
    case 0:
      grid.SetUserAttribute(row, col, cell.attribute = randomText());
      break;
    case 1:
      grid.SetToolTip(row, col, cell.toolTip = randomText());
      break;
    case 2: {
      const LineCell given{row, upTo(50), upTo(2) - 1};
      grid.StoreLine(Axis::Columns, col, {&given, 1});
      cell.value = std::to_string(given.value);
      if (given.baseStyle >= 0) cell.look["base"] = given.baseStyle;
      break;
    }
    default:
      grid.SetValueRange(row, col, cell.value = randomText(), 4);
  }
}

void changeLines(GridControl& grid, Model& model) {
  const int axis = upTo(1), from = upTo(kSpan), to = upTo(kSpan);
  switch (upTo(3)) {
    case 0: {
      const bool hide = upTo(1) == 1;
      axis == 0 ? grid.HideRows(from, to, hide) : grid.HideCols(from, to, hide);
      for (int line = from; line <= to; ++line) {
        hide ? void(model.hidden[axis].insert(line)) : void(model.hidden[axis].erase(line));
      }
      break;
    }
    case 1:
      axis == 0 ? grid.RemoveRows(from, to) : grid.RemoveCols(from, to);
      model.remove(axis, from, to);
      break;
    case 2:
      axis == 0 ? grid.SetRowCount(from) : grid.SetColCount(from);
      model.setCount(axis, from);
      break;
    default:
      grid.InsertRows(from, 2);
      model.insertRows(from, 2);
  }
}

void sortOrDrag(GridControl& grid, Model& model) {
  const int axis = upTo(1), first = upTo(kSpan - 1) + 1, last = upTo(kSpan - 1) + 1;
  if (upTo(1) == 0) {
    SortInfo key = grid.NewSortInfo();
    key.nRC = upTo(kSpan);
    key.SortOrder = upTo(1);
    GridRange range;
    range.InitRange(first, first, last, last);
    axis == 0 ? grid.SortRows(range, 1, {&key, 1}, 2.0) : grid.SortColumns(range, 1, {&key, 1}, 2.0);
    model.sort(axis, first, last, key.nRC, key.SortOrder == 1);
    return;
  }
  const int target = upTo(kSpan) + 1;
  axis == 0 ? grid.selectRows(first, last) : grid.selectCols(first, last);
  const bool moved = axis == 0 ? grid.dragRows(first, last, target) : grid.dragColumns(first, last, target);
  const bool mayMove = first <= last && last <= model.count[axis] && target <= model.count[axis] + 1 &&
                       model.count[1 - axis] > 0;
  RC_ASSERT(moved == mayMove);
  if (moved) model.move(axis, first, last, target);
}

void compare(GridControl& grid, const Model& model) {
  RC_ASSERT(grid.RowCount() == model.count[0]);
  RC_ASSERT(grid.ColCount() == model.count[1]);
  for (int row = 0; row <= kSpan + 4; ++row) {
    RC_ASSERT(grid.IsRowHidden(row) == model.hidden[0].contains(row));
    RC_ASSERT(grid.IsColHidden(row) == model.hidden[1].contains(row));
    for (int col = 0; col <= kSpan + 4; ++col) {
      GridStyle style;
      grid.GridParam().GetData().GetStyleRowCol(row, col, style, StyleMode::Copy, 1);
      const ModelCell cell{style.attributes().value.value_or(""),
                           style.attributes().userAttribute.value_or(""),
                           style.attributes().toolTip.value_or(""), lookOf(style.attributes())};
      RC_ASSERT(cell == model.at(row, col));
    }
  }
}

RC_GTEST_PROP(GridModel, AnyProgramOfOperationsLeavesWhatAPlainMapOfCellsHolds, ()) {
  GridControl grid("grid");
  Model model;
  grid.SetAllowDragCols(true);
  grid.SetAllowDragRows(true);
  const int steps = *rc::gen::inRange(1, 60);
  for (int step = 0; step < steps; ++step) {
    switch (upTo(5)) {
      case 0:
        styleRange(grid, model);
        break;
      case 1:
        changeLines(grid, model);
        break;
      case 2:
        sortOrDrag(grid, model);
        break;
      case 3:
        grid.ExchangeAxes();
        model.exchange();
        break;
      default:
        writeCell(grid, model);
    }
  }
  compare(grid, model);
  grid.ExchangeAxes();
  grid.ExchangeAxes();
  compare(grid, model);
  grid.SetRowCount(0);
  grid.SetColCount(0);
  grid.SetValueRange(0, 0, "", 4);
  grid.SetUserAttribute(0, 0, "");
  grid.SetToolTip(0, 0, "");
  RC_ASSERT(grid.store().texts().textCount() == 0U);
}

}  // namespace
}  // namespace banddesk::host
