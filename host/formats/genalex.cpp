// GenAlEx's layout of binary data, as text with commas and as a spreadsheet, which is what GenAlEx itself
// opens: a line of counts, a title with the groups' names above their counts, a heading, then name, group,
// loci.
#include <cstdio>
#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>
#include <xlsxwriter.h>

#include "host/formats/writers.h"
#include "plugin/base/error.h"

namespace banddesk::host::formats {
namespace {

// A cell is a text, or a number where the text is one and `isNumber` says so.
struct Cell {
  std::string text;
  bool isNumber = false;
};
using Row = std::vector<Cell>;

Cell numberCell(std::size_t number) { return {std::to_string(number), true}; }

std::vector<Row> headingOf(const Sheet& sheet) {
  Row counts = {numberCell(sheet.loci.size()), numberCell(sheet.samples.size()),
                numberCell(sheet.groups.size())};
  for (const std::size_t size : groupSizes(sheet)) counts.push_back(numberCell(size));
  Row title = {{"AFLP"}, {""}, {""}};
  for (const std::string& group : sheet.groups) title.push_back({group});
  Row names = {{"Sample"}, {"Pop"}};
  for (const std::string& locus : sheet.loci) names.push_back({locus});
  return {counts, title, names};
}

std::vector<Row> rowsOf(const Sheet& sheet) {
  static constexpr Codes codes = {"0", "1", "-1"};
  std::vector<Row> rows = headingOf(sheet);
  for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
    Row row = {{sheet.samples[i]}, {sheet.groups[sheet.groupOf[i]]}};
    for (const Band band : sheet.line(i))
      row.push_back({std::string(codes[static_cast<std::size_t>(band)]), true});
    rows.push_back(std::move(row));
  }
  return rows;
}

Parts writeText(const Sheet& sheet, const std::string&) {
  std::string text;
  for (const Row& row : rowsOf(sheet)) {
    for (std::size_t i = 0; i < row.size(); ++i) text += (i > 0 ? "," : "") + csvField(row[i].text);
    text += '\n';
  }
  return {{"", text}};
}

[[noreturn]] void failToMake() { raise(ErrorNumber::DeviceIo, "Formats", "The spreadsheet cannot be made."); }

// The library writes files alone: this one has no name and no place on a disk.
class MemoryFile {
 public:
  MemoryFile() : file_(::memfd_create("spreadsheet", MFD_CLOEXEC)) {
    if (file_ < 0) failToMake();
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { ::close(file_); }

  std::string name() const { return fmt::format("/proc/self/fd/{}", file_); }
  std::string content() const {
    std::string text(static_cast<std::size_t>(::lseek(file_, 0, SEEK_END)), '\0');
    if (::pread(file_, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) failToMake();
    return text;
  }

 private:
  int file_;
};

Parts writeSpreadsheet(const Sheet& sheet, const std::string&) {
  const MemoryFile file;
  lxw_workbook* const book = workbook_new(file.name().c_str());
  if (book == nullptr) failToMake();
  lxw_worksheet* const page = workbook_add_worksheet(book, "AFLP");
  lxw_row_t at = 0;
  lxw_error error = LXW_NO_ERROR;
  const auto keep = [&error](lxw_error next) { error = error == LXW_NO_ERROR ? next : error; };
  for (const Row& row : rowsOf(sheet)) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      const auto column = static_cast<lxw_col_t>(i);
      keep(row[i].isNumber ? worksheet_write_number(page, at, column, std::stod(row[i].text), nullptr)
                           : worksheet_write_string(page, at, column, row[i].text.c_str(), nullptr));
    }
    ++at;
  }
  keep(workbook_close(book));
  if (error != LXW_NO_ERROR)
    raise(ErrorNumber::InvalidArgument, "Formats",
          fmt::format("The spreadsheet cannot be made: {}.", lxw_strerror(error)));
  return {{"", file.content()}};
}

}  // namespace

Format genalexFormat() {
  return {.name = "genalex",
          .title = "GenAlEx and poppr, as text",
          .ending = ".csv",
          .checkedBy = "poppr's reader",
          .order = Order::ByGroup,
          .samples = {.isAnyText = true},
          .groups = {.isAnyText = true},
          .loci = {.marks = "_."},
          .write = writeText};
}

Format genalexSpreadsheetFormat() {
  Format format = genalexFormat();
  format.name = "genalex-xlsx";
  format.title = "GenAlEx, as a spreadsheet";
  format.ending = ".xlsx";
  format.checkedBy = "";
  format.write = writeSpreadsheet;
  return format;
}

}  // namespace banddesk::host::formats
