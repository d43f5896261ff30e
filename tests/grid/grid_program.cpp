#include "tests/grid/grid_program.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <tuple>
#include <vector>

namespace banddesk::test {
namespace {

constexpr int kSpan = 9;  // operations touch lines 0..8

void require(bool holds, const char* otherwise) {
  if (!holds) throw std::logic_error(otherwise);
}

std::map<std::string, int> lookOf(const StyleAttributes& style) {
  std::map<std::string, int> look;
  if (style.baseStyle) look["base"] = *style.baseStyle;
  if (style.textColor) look["colour"] = static_cast<int>(*style.textColor);
  if (style.places) look["places"] = *style.places;
  return look;
}

}  // namespace

void GridModel::renumber(int axis, bool withHidden, const std::function<int(int)>& numberOf) {
  std::map<Place, ModelCell> moved;
  for (const auto& [place, cell] : cells) {
    const int line = numberOf(axis == 0 ? place.first : place.second);
    if (line >= 0) moved[axis == 0 ? Place{line, place.second} : Place{place.first, line}] = cell;
  }
  cells = moved;
  if (!withHidden) return;
  std::set<int> stay;
  for (const int line : hidden[axis]) {
    if (numberOf(line) >= 0) stay.insert(numberOf(line));
  }
  hidden[axis] = stay;
}

void GridModel::setCount(int axis, int n) {
  if (n <= count[axis]) renumber(axis, true, [n](int line) { return line > n ? -1 : line; });
  count[axis] = n;
}

void GridModel::insertRows(int start, int n) {
  start = std::max(start, 1);
  renumber(0, true, [=](int line) { return line >= start ? line + n : line; });
  count[0] += n;
}

void GridModel::remove(int axis, int from, int to) {
  from = std::max(from, 1);
  if (to < from) return;
  const int gone = to - from + 1;
  renumber(axis, true, [=](int line) { return line < from ? line : line <= to ? -1 : line - gone; });
  count[axis] -= std::max(0, std::min(to, count[axis]) - from + 1);
}

void GridModel::move(int axis, int first, int last, int target) {
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

ModelCell GridModel::at(int row, int col) const {
  const auto found = cells.find({row, col});
  return found == cells.end() ? ModelCell{} : found->second;
}

void GridModel::sort(int axis, int first, int last, int key, bool descending) {
  std::vector<int> order;
  for (int line = first; line <= last; ++line) order.push_back(line);
  const auto rank = [&](int line) {
    const std::string text = axis == 0 ? at(line, key).value : at(key, line).value;
    if (text.empty() || text == "Beta" || text == "alpha")
      return std::tuple(1, 0.0, text == "Beta" ? "beta" : text);
    return std::tuple(0, std::stod(text), std::string());
  };
  std::ranges::stable_sort(order,
                           [&](int a, int b) { return descending ? rank(b) < rank(a) : rank(a) < rank(b); });
  renumber(axis, false, [&](int line) {
    const auto found = std::ranges::find(order, line);
    return found == order.end() ? line : first + static_cast<int>(found - order.begin());
  });
}

void GridModel::exchange() {
  std::map<Place, ModelCell> turned;
  for (const auto& [place, cell] : cells) turned[{place.second, place.first}] = cell;
  cells = turned;
  std::swap(hidden[0], hidden[1]);
  std::swap(count[0], count[1]);
}

GridStyle GridProgram::style(std::map<std::string, int>& look) const {
  GridStyle style;
  if (upTo_(1) == 1) style.SetBaseStyle(look["base"] = upTo_(3));
  if (upTo_(1) == 1) style.SetTextColor(static_cast<Colour>(look["colour"] = upTo_(3)));
  if (upTo_(2) == 1) style.SetPlaces(look["places"] = upTo_(2));
  return style;
}

std::string GridProgram::text() const {
  constexpr std::array kTexts{"", "0", "7", "-12", "2147483647", "1.50", "007", "alpha", "Beta"};
  return kTexts[static_cast<std::size_t>(upTo_(static_cast<int>(kTexts.size()) - 1))];
}

void GridProgram::styleRange() {
  std::map<std::string, int> look;
  GridStyle style = this->style(look);
  constexpr std::array kModes{StyleMode::Override, StyleMode::Copy, StyleMode::Remove};
  const StyleMode mode = kModes[static_cast<std::size_t>(upTo_(2))];
  std::optional<std::string> value, attribute, tip;
  if (upTo_(2) == 0) style.SetValue(*(value = text()));
  if (upTo_(3) == 0) style.attributes().userAttribute = attribute = "key";
  if (upTo_(3) == 0) style.attributes().toolTip = tip = "tip";
  const int top = upTo_(kSpan), left = upTo_(kSpan), bottom = upTo_(kSpan), right = upTo_(kSpan);
  GridRange range;
  range.InitRange(left, top, right, bottom);
  grid_.SetStyleRange(range, style, mode);
  for (int row = top; row <= bottom; ++row) {
    for (int col = left; col <= right; ++col) {
      ModelCell& cell = model_.cells[{row, col}];
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

void GridProgram::writeCell() {
  const int row = upTo_(kSpan), col = upTo_(kSpan);
  ModelCell& cell = model_.cells[{row, col}];
  switch (upTo_(3)) {
    case 0:
      grid_.SetUserAttribute(row, col, cell.attribute = text());
      break;
    case 1:
      grid_.SetToolTip(row, col, cell.toolTip = text());
      break;
    case 2: {
      const LineCell given{row, upTo_(50), upTo_(2) - 1};
      LineStep step{};
      grid_.StoreLine(Axis::Columns, col, {&given, 1}, step);
      cell.value = std::to_string(given.value);
      if (given.baseStyle >= 0) cell.look["base"] = given.baseStyle;
      break;
    }
    default:
      grid_.SetValueRange(row, col, cell.value = text(), 4);
  }
}

void GridProgram::changeLines() {
  const int axis = upTo_(1), from = upTo_(kSpan), to = upTo_(kSpan);
  switch (upTo_(3)) {
    case 0: {
      const bool hide = upTo_(1) == 1;
      axis == 0 ? grid_.HideRows(from, to, hide) : grid_.HideCols(from, to, hide);
      for (int line = from; line <= to; ++line) {
        hide ? void(model_.hidden[axis].insert(line)) : void(model_.hidden[axis].erase(line));
      }
      break;
    }
    case 1:
      axis == 0 ? grid_.RemoveRows(from, to) : grid_.RemoveCols(from, to);
      model_.remove(axis, from, to);
      break;
    case 2:
      axis == 0 ? grid_.SetRowCount(from) : grid_.SetColCount(from);
      model_.setCount(axis, from);
      break;
    default:
      grid_.InsertRows(from, 2);
      model_.insertRows(from, 2);
  }
}

void GridProgram::sort() {
  const int axis = upTo_(1), first = upTo_(kSpan - 1) + 1, last = upTo_(kSpan - 1) + 1;
  SortInfo key = grid_.NewSortInfo();
  key.nRC = upTo_(kSpan);
  key.SortOrder = upTo_(1);
  GridRange range;
  range.InitRange(first, first, last, last);
  axis == 0 ? grid_.SortRows(range, 1, {&key, 1}, 2.0) : grid_.SortColumns(range, 1, {&key, 1}, 2.0);
  model_.sort(axis, first, last, key.nRC, key.SortOrder == 1);
}

void GridProgram::drag() {
  const int axis = upTo_(1), first = upTo_(kSpan - 1) + 1, last = upTo_(kSpan - 1) + 1;
  const int target = upTo_(kSpan) + 1;
  grid_.Redraw(2.0);  // lines that went out of sight since the last one would leave the selection
  axis == 0 ? grid_.user().selectRows(first, last) : grid_.user().selectCols(first, last);
  const bool moved =
      axis == 0 ? grid_.user().dragRows(first, last, target) : grid_.user().dragColumns(first, last, target);
  const bool mayMove = first <= last && last <= model_.count[axis] && target <= model_.count[axis] + 1 &&
                       model_.count[1 - axis] > 0;
  require(moved == mayMove, "a drag is allowed otherwise");
  if (moved) model_.move(axis, first, last, target);
}

void GridProgram::compare() {
  require(grid_.RowCount() == model_.count[0] && grid_.ColCount() == model_.count[1], "another count");
  for (int row = 0; row <= kSpan + 4; ++row) {
    require(grid_.IsRowHidden(row) == model_.hidden[0].contains(row), "a row is hidden otherwise");
    require(grid_.IsColHidden(row) == model_.hidden[1].contains(row), "a column is hidden otherwise");
    for (int col = 0; col <= kSpan + 4; ++col) {
      GridStyle style;
      grid_.GridParam().GetData().GetStyleRowCol(row, col, style, StyleMode::Copy, 1);
      const ModelCell cell{style.attributes().value.value_or(""),
                           style.attributes().userAttribute.value_or(""),
                           style.attributes().toolTip.value_or(""), lookOf(style.attributes())};
      require(cell == model_.at(row, col), "another cell");
    }
  }
}

GridProgram::GridProgram(UpTo upTo) : upTo_(std::move(upTo)) {
  grid_.SetAllowDragCols(true);
  grid_.SetAllowDragRows(true);
}

void GridProgram::step() {
  switch (upTo_(6)) {
    case 0:
      return styleRange();
    case 1:
      return changeLines();
    case 2:
      return sort();
    case 3:
      return drag();
    case 4:
      grid_.exchangeAxes();
      return model_.exchange();
    default:
      return writeCell();
  }
}

void GridProgram::clear() {
  grid_.exchangeAxes();
  grid_.exchangeAxes();
  compare();
  grid_.SetRowCount(0);
  grid_.SetColCount(0);
  grid_.SetValueRange(0, 0, "", 4);
  grid_.SetUserAttribute(0, 0, "");
  grid_.SetToolTip(0, 0, "");
  require(grid_.store().texts().textCount() == 0U, "a text stayed in the pool");
}

}  // namespace banddesk::test
