#include "tests/plugin/random_user.h"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>

#include "plugin/base/numbers.h"

namespace banddesk::test {
namespace {

constexpr Colour kGrey = 0xC0C0C0;

void require(bool holds, const std::string& otherwise) {
  if (!holds) throw std::logic_error(otherwise);
}

template <class Items>
const auto& one(const Items& items, const UpTo& upTo) {
  return items[static_cast<std::size_t>(upTo(static_cast<int>(items.size()) - 1))];
}

void leaves(ui::MenuItem& menu, std::vector<ui::MenuItem*>& found) {
  for (ui::MenuItem* item : menu.items()) {
    if (item == nullptr) continue;
    if (item->items().empty()) found.push_back(item);
    leaves(*item, found);
  }
}

bool answerForm(ui::Form& form, const UpTo& upTo) {
  const auto& controls = form.Controls();
  if (upTo(4) == 0) controls.find<ui::CheckBox>("chkDontShow")->click();
  const bool accepts = upTo(1) == 0;
  controls.find<ui::CommandButton>(accepts ? "btnOK" : "btnCancel")->Click.raise();
  return accepts;
}

bool arrange(host::ColumnSelection& selection, const UpTo& upTo) {
  auto& entries = selection.entries;
  for (int moves = upTo(3); moves > 0; --moves)
    std::swap(entries[static_cast<std::size_t>(upTo(static_cast<int>(entries.size()) - 1))], entries.front());
  if (upTo(1) == 0) entries.back().isVisible = !entries.back().isVisible;
  return upTo(3) != 0;
}

bool arrange(host::ColumnSorting& sorting, const UpTo& upTo) {
  sorting.keys.clear();
  for (int keys = upTo(2); keys > 0; --keys)
    sorting.keys.push_back({one(sorting.columns(), upTo).column, upTo(1) == 0});
  return upTo(3) != 0;
}

}  // namespace

std::vector<host::NewResult> smallPopulation() {
  std::vector<host::NewResult> results(7);
  for (std::size_t sample = 0; sample < results.size(); ++sample) {
    results[sample].sampleName = "S" + std::to_string(sample) + (sample == 2 ? ".A01_12345678AB" : "");
    if (sample == 5) continue;  // no fragment at all
    for (std::size_t dye = 0; dye < 3; ++dye) {
      auto& peaks = results[sample].fragments.dyes[dye];
      for (std::size_t i = 0; i < 5; ++i) {
        if (i != 1 && (sample * 7 + dye * 3 + i * 5) % 4 == 0) continue;
        peaks.sizes.push_back(60 + 37 * static_cast<double>(i) + 0.125 * static_cast<double>(sample));
        peaks.heights.push_back(40 + static_cast<double>((sample * 131 + i * 59 + dye * 17) % 900));
      }
    }
  }
  return results;
}

RandomUser::RandomUser(Desk& desk, UpTo upTo, std::string output)
    : desk_(desk), upTo_(std::move(upTo)), output_(std::move(output)) {
  auto& front = desk_.front;
  front.onRunModal = [this](ui::Form& form) {
    if (!answerForm(form, upTo_)) refused_ = true;
  };
  beeps_ = desk_.host.platform().Beeped.connect([this] { refused_ = true; });
  front.onMsgBox = [this](const host::MessageShown&) {
    refused_ = true;
    return ui::BoxAnswer::Cancel;
  };
  front.onShowSave = [this](ui::SaveDialog&) -> std::optional<host::SaveAnswer> {
    if (upTo_(4) == 0) return std::nullopt;
    return host::SaveAnswer{output_, upTo_(1) + 1};
  };
  front.onShowPopup = [this](ui::MenuItem& menu, ui::MenuItem*) {
    std::vector<ui::MenuItem*> items;
    leaves(menu, items);
    ui::MenuItem& item = *one(items, upTo_);
    said_ += " " + item.Name();
    item.choose();
  };
  front.onSelectColumns = [this](host::ColumnSelection& draft) { return arrange(draft, upTo_); };
  front.onSortColumns = [this](host::ColumnSorting& draft) { return arrange(draft, upTo_); };
}

RandomUser::~RandomUser() {
  desk_.front.onRunModal = nullptr;
  desk_.front.onMsgBox = nullptr;
  desk_.front.onShowSave = nullptr;
  desk_.front.onShowPopup = nullptr;
  desk_.front.onSelectColumns = nullptr;
  desk_.front.onSortColumns = nullptr;
}

void RandomUser::act() {
  switch (upTo_(9)) {
    case 0:
      said_ = "toggle", toggle();
      break;
    case 1:
      said_ = "number", number();
      break;
    case 2:
      said_ = "mouse", mouse();
      break;
    case 3:
    case 4:
      said_ = "menu", menu();
      break;
    case 5:
      said_ = "drag", drag();
      break;
    case 6:
      said_ = "select", select();
      break;
    case 7:
      said_ = "study", study();
      break;
    case 8:
      said_ = "page", page();
      break;
    default:
      said_ = "wait", desk_.wait();
  }
}

void RandomUser::toggle() {
  constexpr std::array kBoxes{
      "chkDye(0)",          "chkDye(1)",       "chkDye(2)",     "chkDye(3)",       "chkExcludeEmptySamples",
      "chkExcludeFullBins", "chkShowExcluded", "chkShowWellID", "chkShowTimestamp"};
  constexpr std::array kOptions{"optSampleBin(0)", "optSampleBin(1)", "optSampleBin(2)"};
  const int kind = upTo_(3);
  said_ += " " + integerText(kind);
  switch (kind) {
    case 0:
      desk_.control<ui::OptionButton>(one(kOptions, upTo_)).Value = true;
      break;
    case 1:
      desk_.control<ui::ComboBox>("cbxSampleAxis").ListIndex = upTo_(1);
      break;
    default: {
      const char* const box = one(kBoxes, upTo_);
      said_ += std::string(" ") + box;
      desk_.control<ui::CheckBox>(box).click();
    }
  }
}

void RandomUser::number() {
  constexpr std::array kTexts{"1.00", "0.5", "30", "200", "",    "no",  "-3",
                              "0",    "1e9", "5x", "0.1", "100", "1,5", "2e9"};
  const bool width = upTo_(1) == 0;
  auto& box = desk_.control<ui::TextBox>(width ? "txtMaxBinWidth" : "txtYThreshold");
  auto& spin = desk_.control<ui::UpDown>(width ? "udMaxBinWidth" : "udYThreshold");
  switch (upTo_(4)) {
    case 0:
      spin.up();
      break;
    case 1:
      spin.down();
      break;
    case 2: {
      std::int32_t key = 13;
      desk_.page().UserControl_KeyDown(key);
      break;
    }
    default:
      box.Text = one(kTexts, upTo_);
      said_ += " " + box.Text.get();
      if (upTo_(2) != 0) box.leave();
  }
}

// A line that is to be seen: nobody clicks on others. A table without one is clicked at its first.
std::int32_t RandomUser::pick(Axis axis) {
  auto& grid = desk_.grid();
  const bool rows = axis == Axis::Rows;
  std::vector<std::int32_t> seen;
  if (rows ? grid.ColHeadersVisible() : grid.RowHeadersVisible()) seen.push_back(0);
  for (std::int32_t line = 1; line <= (rows ? grid.RowCount() : grid.ColCount()); ++line) {
    if (!(rows ? grid.IsRowHidden(line) : grid.IsColHidden(line))) seen.push_back(line);
  }
  return seen.empty() ? 1 : one(seen, upTo_);
}

void RandomUser::mouse() {
  const std::int32_t r = row(), c = col();
  if (upTo_(1) == 0) return desk_.grid().user().clickCell(r, c);
  said_ += " twice at " + integerText(r) + "," + integerText(c);
  desk_.grid().user().doubleClick(r, c);
}

// Headers and the bins' own column have menus of their own, so they are hit as often as cells.
void RandomUser::menu() {
  const int where = upTo_(2);
  const bool transposed = desk_.page().Transpose();
  std::int32_t r = row(), c = col();
  if (where == 0) (transposed ? c : r) = 0;
  if (where == 1) (transposed ? r : c) = 1;
  said_ += " at " + integerText(r) + "," + integerText(c);
  desk_.grid().user().rightClick(r, c);
}

void RandomUser::drag() {
  auto& grid = desk_.grid();
  if (upTo_(2) == 0) {
    grid.user().trackColumnWidth(col(), upTo_(255) - 1);
    return;
  }
  const bool rows = upTo_(1) == 0;
  const std::int32_t first = rows ? row() : col(), last = first + upTo_(2), target = rows ? row() : col();
  rows ? grid.user().selectRows(first, last) : grid.user().selectCols(first, last);
  rows ? grid.user().dragRows(first, last, target) : grid.user().dragColumns(first, last, target);
}

void RandomUser::select() {
  auto& grid = desk_.grid();
  const bool add = upTo_(1) == 0;
  switch (upTo_(2)) {
    case 0:
      return grid.user().selectRows(row(), row(), add);
    case 1:
      return grid.user().selectCols(col(), col(), add);
    default:
      return grid.user().selectCells(row(), col(), row(), col(), add);
  }
}

// What happens to the study while the page is open.
void RandomUser::study() {
  auto& study = desk_.host.study();
  const int what = upTo_(4);
  said_ += " " + integerText(what);
  switch (what) {
    case 0:
      return study.setResultExcluded(upTo_(study.Study()->Results.Count() - 1) + 1, upTo_(1) == 0);
    case 1:
      return study.setDyeVisible(upTo_(3), upTo_(1) == 0);
    case 2:
      return study.setDyeColor(upTo_(3), static_cast<Colour>(upTo_(255)) << 12);
    case 3:
      desk_.analysis().Name = "Analysis " + std::to_string(upTo_(2));
      return;
    default:
      desk_.host.save();
  }
}

void RandomUser::page() {
  const auto analysis = desk_.host.study().Study()->AFLPs.Item(1);
  const int what = upTo_(3);
  said_ += " " + integerText(what);
  switch (what) {
    case 0:
      if (!desk_.host.pages().end(desk_.pageNamed("AFLP"), true)) return;
      break;
    case 1:
      return desk_.page().UserControl_Resize(upTo_(200), upTo_(200) * 8);
    case 2:
      analysis->IsPending = true;  // what a redo of the analysis sets
      [[fallthrough]];
    default:
      desk_.host.pages().endAll();
  }
  desk_.host.service().OpenAFLP(analysis);
  refused_ = false;
}

void RandomUser::check() {
  for (const auto& report : desk_.host.framework().reports())
    throw std::logic_error(report.procedure + " failed: " + report.error.description());
  grid_ = &desk_.grid();
  isTransposed_ = desk_.page().Transpose();
  const bool locked = grid_->LockUpdate(false);
  grid_->LockUpdate(locked);
  require(!locked, "the grid stays locked");
  require(grid_->GridEnabledRedraw(), "the grid paints no more");
  require(desk_.host.platform().MousePointer() == ui::kPointerDefault, "the pointer stays an hourglass");
  checkPlaces();
  // Marks follow half a second after what changes them.
  if (refused_ || desk_.control<ui::Timer>("ctlTimer").Enabled) return;
  checkRows();
  checkColumns();
}

// Bin information and samples each stand at places of their own, and the header says who stands there.
void RandomUser::checkPlaces() {
  IAFLPResultsPage& page = desk_.page();
  std::set<std::int32_t> taken;
  const AFLP& analysis = desk_.analysis();
  for (const auto& layout : {analysis.BinGrid, analysis.SampleGrid}) {
    for (const auto& column : layout->Columns) {
      const std::int32_t place = column->ColumnOrder;
      const std::string who = "column " + column->Key.get() + " at " + integerText(place);
      require(taken.insert(place).second, who + ": two columns at one place");
      require(page.Key(place) == column->Key.get(), who + ": its header says " + page.Key(place));
    }
  }
  require(taken.empty() || (*taken.begin() == 1 && *taken.rbegin() == static_cast<int>(taken.size())),
          "the places are not 1 to n");
  require(page.NumCols() == static_cast<int>(taken.size()), "another number of columns");
}

bool RandomUser::isGrey(std::int32_t row, std::int32_t col) {
  if (isTransposed_) std::swap(row, col);
  return grid_->look(row, col).interior->bkColor == kGrey;
}

void RandomUser::checkRows() {
  IAFLPResultsPage& page = desk_.page();
  host::FinishedTable table = desk_.finished();
  const bool showExcluded = desk_.control<ui::CheckBox>("chkShowExcluded").Value == ui::kChecked;
  require(page.NumRows() == table.binCount(), "rows and bins are not equally many");
  std::set<std::int32_t> seen;
  for (std::int32_t row = 1; row <= table.binCount(); ++row) {
    const std::int32_t bin = page.Bin(row);
    const std::string who = "row " + integerText(row) + " with bin " + integerText(bin);
    require(table.holds(bin) && seen.insert(bin).second, who + ": no bin of its own");
    const bool suppressed = isExcluded(table.markOf(row, bin));
    const auto dye = desk_.control<ui::CheckBox>("chkDye(" + integerText(table.dyeOf(bin)) + ")").Value.get();
    require(isGrey(row, 2) == suppressed, who + ": grey in one cell and not in another");
    require(page.IsRowHidden(row) || ((!suppressed || showExcluded) && dye == ui::kChecked), who + ": seen");
    // What was brought back by hand from the filter goes with a sort, and stays away when the excluded are
    // shown.
    const bool isBroughtBack = table.markOf(row, bin) == host::BinMark::BroughtBack;
    const bool mayHide = dye != ui::kChecked || isBroughtBack || (suppressed && !showExcluded);
    require(!page.IsRowHidden(row) || mayHide, who + ": hidden");
  }
}

void RandomUser::checkColumns() {
  IAFLPResultsPage& page = desk_.page();
  const bool showExcluded = desk_.control<ui::CheckBox>("chkShowExcluded").Value == ui::kChecked;
  for (const auto& column : desk_.analysis().SampleGrid->Columns) {
    const bool excluded = column->IsExcluded || column->IsAutoExcluded;
    const std::int32_t place = column->ColumnOrder;
    const std::string who = "sample " + column->Key.get();
    require(page.IsColHidden(place) == (excluded && !showExcluded), who + " is hidden or seen wrongly");
    if (!excluded || page.NumRows() == 0) continue;
    for (std::int32_t row = 1; row <= page.NumRows(); ++row)
      require(isGrey(row, place), who + " is not grey");
  }
}

}  // namespace banddesk::test
