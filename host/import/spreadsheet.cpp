#include "host/import/spreadsheet.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <memory>
#include <orcus/orcus_xlsx.hpp>
#include <orcus/spreadsheet/import_interface.hpp>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/import/import_error.h"
#include "host/import/input_file.h"
#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

namespace spreadsheet = orcus::spreadsheet;
namespace iface = orcus::spreadsheet::iface;

using spreadsheet::col_t;
using spreadsheet::row_t;

// What the format allows; nothing beyond it is kept, whatever a file says.
constexpr row_t kMostRows = 1'048'576;
constexpr col_t kMostColumns = 16'384;

// Runs of differently formatted text in one cell come as segments.
class Strings final : public iface::import_shared_strings {
 public:
  std::size_t append(std::string_view text) override {
    texts_.emplace_back(text);
    return texts_.size() - 1;
  }
  std::size_t add(std::string_view text) override {
    const auto [at, isNew] = known_.try_emplace(std::string(text), texts_.size());
    if (isNew) texts_.emplace_back(text);
    return at->second;
  }
  void set_segment_font(std::size_t) override {}
  void set_segment_bold(bool) override {}
  void set_segment_italic(bool) override {}
  void set_segment_font_name(std::string_view) override {}
  void set_segment_font_size(double) override {}
  void set_segment_font_color(spreadsheet::color_elem_t, spreadsheet::color_elem_t, spreadsheet::color_elem_t,
                              spreadsheet::color_elem_t) override {}
  void append_segment(std::string_view text) override { segments_ += text; }
  std::size_t commit_segments() override {
    texts_.push_back(std::move(segments_));
    segments_.clear();
    return texts_.size() - 1;
  }

  std::string_view text(std::size_t at) const { return at < texts_.size() ? texts_[at] : std::string_view(); }

 private:
  std::vector<std::string> texts_;
  std::unordered_map<std::string, std::size_t> known_;
  std::string segments_;
};

// The cells of a sheet. Texts are taken over when the file is read to its end: the shared ones may come last.
class Sheet final : public iface::import_sheet, private iface::import_formula {
 public:
  Sheet(std::string name, const Strings& strings) : name_(std::move(name)), strings_(strings) {}

  const std::string& name() const { return name_; }

  void set_auto(row_t row, col_t col, std::string_view text) override {
    hasTexts_ = true;
    put(row, col, {std::string(text)});
  }
  void set_string(row_t row, col_t col, spreadsheet::string_id_t at) override {
    hasTexts_ = true;
    put(row, col, {{}, at, true});
  }
  void set_value(row_t row, col_t col, double value) override { put(row, col, {fmt::format("{}", value)}); }
  void set_bool(row_t row, col_t col, bool value) override { put(row, col, {value ? "TRUE" : "FALSE"}); }
  void set_date_time(row_t row, col_t col, int year, int month, int day, int, int, double) override {
    put(row, col, {fmt::format("{:04}-{:02}-{:02}", year, month, day)});
  }
  void set_format(row_t, col_t, std::size_t) override {}
  void set_format(row_t, col_t, row_t, col_t, std::size_t) override {}
  void fill_down_cells(row_t row, col_t col, row_t count) override {
    const Cell cell = at(row, col);
    for (row_t i = 1; i <= count && row + i < kMostRows; ++i) put(row + i, col, cell);
  }
  spreadsheet::range_size_t get_sheet_size() const override { return {kMostRows, kMostColumns}; }
  iface::import_formula* get_formula() override { return this; }

  bool hasTexts() const { return hasTexts_; }
  std::string text() const {
    std::string text;
    for (const std::vector<Cell>& row : rows_) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        if (i > 0) text.push_back('\t');
        append(text, row[i]);
      }
      text.push_back('\n');
    }
    return text;
  }

 private:
  struct Cell {
    std::string text = {};
    std::size_t shared = 0;
    bool isShared = false;
  };

  // A formula counts as the value that the file keeps for it.
  void set_position(row_t row, col_t col) override {
    row_ = row;
    col_ = col;
  }
  void set_formula(spreadsheet::formula_grammar_t, std::string_view) override {}
  void set_shared_formula_index(std::size_t) override {}
  void set_result_string(std::string_view value) override { set_auto(row_, col_, value); }
  void set_result_value(double value) override { set_value(row_, col_, value); }
  void set_result_bool(bool value) override { set_bool(row_, col_, value); }
  void set_result_empty() override {}
  void commit() override {}

  void put(row_t row, col_t col, Cell cell) {
    if (row < 0 || col < 0 || row >= kMostRows || col >= kMostColumns) return;
    const auto line = static_cast<std::size_t>(row), column = static_cast<std::size_t>(col);
    if (line >= rows_.size()) rows_.resize(line + 1);
    if (column >= rows_[line].size()) rows_[line].resize(column + 1);
    rows_[line][column] = std::move(cell);
  }

  Cell at(row_t row, col_t col) const {
    const auto line = static_cast<std::size_t>(row), column = static_cast<std::size_t>(col);
    return line < rows_.size() && column < rows_[line].size() ? rows_[line][column] : Cell{};
  }

  // A tab or a line's end inside a cell would part it, a quote would be taken for one around it.
  void append(std::string& to, const Cell& cell) const {
    const std::string_view text = cell.isShared ? strings_.text(cell.shared) : cell.text;
    const bool isQuoted = text.find('"') != std::string_view::npos;
    if (isQuoted) to.push_back('"');
    for (const char c : text) {
      if (c == '"') to.push_back('"');
      to.push_back(static_cast<unsigned char>(c) < ' ' ? ' ' : c);
    }
    if (isQuoted) to.push_back('"');
  }

  std::string name_;
  const Strings& strings_;
  std::vector<std::vector<Cell>> rows_;
  bool hasTexts_ = false;
  row_t row_ = 0;
  col_t col_ = 0;
};

// "B7" as column and row, from 0.
class Addresses final : public iface::import_reference_resolver {
 public:
  spreadsheet::src_address_t resolve_address(std::string_view text) override {
    spreadsheet::src_address_t address{0, 0, 0};
    std::size_t at = 0;
    for (; at < text.size() && isLetter(text[at]) && address.column <= kMostColumns; ++at)
      address.column = address.column * 26 + (lowerAscii(text[at]) - 'a' + 1);
    std::from_chars(text.data() + at, text.data() + text.size(), address.row);
    --address.row;
    --address.column;
    return address;
  }
  spreadsheet::src_range_t resolve_range(std::string_view text) override {
    const std::size_t colon = std::min(text.find(':'), text.size());
    const auto first = resolve_address(text.substr(0, colon));
    return {first, colon == text.size() ? first : resolve_address(text.substr(colon + 1))};
  }
};

class Workbook final : public iface::import_factory {
 public:
  iface::import_reference_resolver* get_reference_resolver(spreadsheet::formula_ref_context_t) override {
    return &addresses_;
  }
  iface::import_shared_strings* get_shared_strings() override { return &strings_; }
  iface::import_sheet* append_sheet(spreadsheet::sheet_t, std::string_view name) override {
    return sheets_.emplace_back(std::make_unique<Sheet>(std::string(name), strings_)).get();
  }
  iface::import_sheet* get_sheet(std::string_view name) override {
    const auto found =
        std::ranges::find(sheets_, name, [](const auto& sheet) { return std::string_view(sheet->name()); });
    return found == sheets_.end() ? nullptr : found->get();
  }
  iface::import_sheet* get_sheet(spreadsheet::sheet_t at) override {
    return at >= 0 && static_cast<std::size_t>(at) < sheets_.size()
               ? sheets_[static_cast<std::size_t>(at)].get()
               : nullptr;
  }
  void finalize() override {}

  const std::vector<std::unique_ptr<Sheet>>& sheets() const { return sheets_; }

 private:
  Addresses addresses_;
  Strings strings_;
  std::vector<std::unique_ptr<Sheet>> sheets_;
};

const Sheet& chosenSheet(const Workbook& book, const std::filesystem::path& file,
                         const std::optional<std::string>& wanted) {
  if (book.sheets().empty())
    throw ImportError({file, 0, {}}, "is a zip archive without a sheet, not an .xlsx file");
  if (!wanted) return *book.sheets().front();
  std::vector<std::string> names;
  for (const auto& sheet : book.sheets()) {
    if (sheet->name() == *wanted) return *sheet;
    names.push_back("\"" + sheet->name() + "\"");
  }
  throw ImportError({file, 0, {}},
                    fmt::format("has no sheet \"{}\", but {}", *wanted, fmt::join(names, ", ")));
}

}  // namespace

bool isZip(const std::filesystem::path& file) {
  char start[4] = {};
  return InputFile(file).read(start, sizeof start) == sizeof start &&
         std::string_view(start, sizeof start) == "PK\x03\x04";
}

std::string sheetText(const std::filesystem::path& file, const std::optional<std::string>& sheet) {
  Workbook book;
  try {
    orcus::orcus_xlsx reader(&book);
    reader.read_file(file.string());
  } catch (const std::exception&) {
    // What the library says names its own insides, if it says anything.
    throw ImportError({file, 0, {}}, "is a zip archive, but cannot be read as an .xlsx file");
  }
  const Sheet& chosen = chosenSheet(book, file, sheet);
  // Some programs write texts or paths inside the archive in a way that the library passes over without a
  // word.
  if (!chosen.hasTexts())
    throw ImportError(
        {file, 0, {}},
        fmt::format("no text can be read from the sheet \"{}\"; save it as text, or once more as .xlsx by a "
                    "spreadsheet program",
                    chosen.name()));
  return chosen.text();
}

}  // namespace banddesk::host::import
