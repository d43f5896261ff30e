#include "host/grid/excel_writer.h"

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <memory>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <unistd.h>
#include <utility>

#include "host/grid/excel_formats.h"
#include "host/grid/grid_control.h"
#include "plugin/base/error.h"
#include "plugin/base/text.h"

namespace banddesk::host {
namespace {

constexpr std::int32_t kMostRows = 1'048'576;
constexpr std::int32_t kMostCols = 16'384;
constexpr std::size_t kLongestText = 32'767;   // in UTF-16 units
constexpr int kMostAttempts = 99;              // at a name that nobody uses
constexpr std::uint32_t kWidestColumn = 1790;  // pixels

[[noreturn]] void fail(const std::string& fileName, ErrorNumber number, const std::string& why) {
  raise(number, "Grid", fmt::format("The file \"{}\" cannot be written: {}", fileName, why));
}

[[noreturn]] void failBySystem(const std::string& fileName, int cause) {
  ErrorNumber number = ErrorNumber::DeviceIo;
  if (cause == EACCES || cause == EPERM || cause == EBUSY || cause == ETXTBSY || cause == EROFS) {
    number = ErrorNumber::PermissionDenied;
  }
  if (cause == ENOENT || cause == ENOTDIR) number = ErrorNumber::PathNotFound;
  if (cause == ENOSPC) number = ErrorNumber::DiskFull;
  fail(fileName, number, fmt::format("{}.", std::strerror(cause)));
}

// What the spreadsheet library writes into. It prints what it meets on a disk and does not tell it.
class MemoryFile {
 public:
  explicit MemoryFile(const std::string& target) : file_(::memfd_create("table", MFD_CLOEXEC)) {
    if (file_ < 0) failBySystem(target, errno);
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { ::close(file_); }

  int descriptor() const { return file_; }
  std::string name() const { return fmt::format("/proc/self/fd/{}", file_); }

 private:
  int file_;
};

// A file beside the target that takes its place when all is well, and vanishes otherwise.
class PartFile {
 public:
  explicit PartFile(const std::string& target) : target_(target) {
    for (int attempt = 0; file_ < 0; ++attempt) {
      name_ = fmt::format("{}.{}.part", target, attempt);
      file_ = ::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
      if (file_ < 0 && (errno != EEXIST || attempt == kMostAttempts)) failBySystem(target_, errno);
    }
  }
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  ~PartFile() {
    if (file_ >= 0) ::close(file_);
    ::unlink(name_.c_str());
  }

  void take(const MemoryFile& whole) const {
    off_t place = 0;
    ssize_t written = 0;
    while ((written = ::sendfile(file_, whole.descriptor(), &place, kPiece)) > 0) {
    }
    if (written < 0) failBySystem(target_, errno);
  }
  // Some file systems tell only at the close that the disk was full.
  void takePlace() {
    if (::close(std::exchange(file_, -1)) != 0) failBySystem(target_, errno);
    if (std::rename(name_.c_str(), target_.c_str()) != 0) failBySystem(target_, errno);
  }

 private:
  static constexpr std::size_t kPiece = std::size_t{64} * 1024 * 1024;

  const std::string& target_;
  std::string name_;
  int file_ = -1;
};

// Numbers are printed with a decimal point while this lives, whatever the user's locale.
class PointLocale {
 public:
  PointLocale() : point_(::newlocale(LC_NUMERIC_MASK, "C", nullptr)), former_(::uselocale(point_)) {}
  PointLocale(const PointLocale&) = delete;
  PointLocale& operator=(const PointLocale&) = delete;
  ~PointLocale() {
    ::uselocale(former_);
    ::freelocale(point_);
  }

 private:
  locale_t point_;
  locale_t former_;
};

struct FreeWorkbook {
  void operator()(lxw_workbook* workbook) const { lxw_workbook_free(workbook); }
};
using Workbook = std::unique_ptr<lxw_workbook, FreeWorkbook>;

// Valid UTF-8 for the file; counts how long the spreadsheet takes it to be.
std::string cleaned(std::string_view text, std::size_t& units) {
  std::string clean;
  for (const std::string_view character : characters(text)) {
    const bool isBroken = character.size() == 1 && static_cast<unsigned char>(character[0]) >= 0x80;
    clean += isBroken ? std::string_view("\xEF\xBF\xBD") : character;
    units += character.size() == 4 ? 2U : 1U;
  }
  return clean;
}

class Sheet {
 public:
  Sheet(const GridControl& grid, const std::string& fileName)
      : grid_(grid),
        fileName_(fileName),
        firstRow_(grid.ColHeadersVisible() ? 0 : 1),
        firstCol_(grid.RowHeadersVisible() ? 0 : 1) {
    if (grid.RowCount() - firstRow_ >= kMostRows) {
      fail(fileName, ErrorNumber::InvalidArgument,
           fmt::format("a sheet holds {} rows, the table has {}.", kMostRows,
                       grid.RowCount() - firstRow_ + 1));
    }
    if (grid.ColCount() - firstCol_ >= kMostCols) {
      fail(fileName, ErrorNumber::InvalidArgument,
           fmt::format("a sheet holds {} columns, the table has {}.", kMostCols,
                       grid.ColCount() - firstCol_ + 1));
    }
  }

  void write(const std::string& place) {
    const PointLocale locale;
    lxw_workbook_options options{};
    options.constant_memory = canStream() ? LXW_TRUE : LXW_FALSE;
    options.use_zip64 = LXW_FALSE;
    Workbook workbook(workbook_new_opt(place.c_str(), &options));
    if (!workbook) fail(fileName_, ErrorNumber::OutOfMemory, "there is not enough memory.");
    sheet_ = workbook_add_worksheet(workbook.get(), "Table");
    if (sheet_ == nullptr) fail(fileName_, ErrorNumber::DeviceIo, "no temporary file can be made.");
    formats_ = std::make_unique<ExcelFormats>(workbook.get());
    layOut();
    for (std::int32_t row = firstRow_; row <= grid_.RowCount(); ++row) writeRow(row);
    // The library does not look whether the rows really reached the disk.
    std::FILE* const rows = sheet_->optimize_tmpfile;
    if (rows != nullptr && (std::fflush(rows) != 0 || std::ferror(rows) != 0)) failBySystem(fileName_, errno);
    const lxw_error result = workbook_close(workbook.release());
    if (result != LXW_NO_ERROR)
      fail(fileName_, ErrorNumber::DeviceIo, std::string(lxw_strerror(result)) + ".");
  }

 private:
  // Row after row to the disk; a block over several rows cannot be written that way.
  bool canStream() const {
    return std::ranges::all_of(grid_.coverings().all(),
                               [](const Block& block) { return block.top == block.bottom; });
  }

  lxw_row_t sheetRow(std::int32_t row) const { return static_cast<lxw_row_t>(row - firstRow_); }
  lxw_col_t sheetCol(std::int32_t col) const { return static_cast<lxw_col_t>(col - firstCol_); }

  // Columns are as wide as in the grid, and wide enough for the names in their headers: what is exported may
  // have longer ones than what showed when the grid was fitted.
  void layOut() {
    const std::vector<std::int32_t> headers = grid_.headerWidths();
    for (std::int32_t col = firstCol_; col <= grid_.ColCount(); ++col) {
      lxw_row_col_options options{};
      options.hidden = grid_.IsColHidden(col);
      const std::int32_t header = firstRow_ == 0 ? headers[static_cast<std::size_t>(col)] : 0;
      const auto width = static_cast<std::uint32_t>(std::max(grid_.colWidth(col), header));
      const auto pixels = std::min(width, kWidestColumn);
      check(worksheet_set_column_pixels_opt(sheet_, sheetCol(col), sheetCol(col), pixels, nullptr, &options));
    }
    const std::int32_t rows = std::min(grid_.FrozenRows(), grid_.RowCount()) + 1 - firstRow_;
    const std::int32_t frozenCols = std::min(grid_.FrozenCols(), grid_.ColCount());
    const std::int32_t cols = frozenCols > 0 ? frozenCols + 1 - firstCol_ : 0;
    if (rows > 0 || cols > 0) {
      worksheet_freeze_panes(sheet_, static_cast<lxw_row_t>(rows), static_cast<lxw_col_t>(cols));
    }
  }

  void writeRow(std::int32_t row) {
    if (grid_.IsRowHidden(row)) {
      lxw_row_col_options options{};
      options.hidden = LXW_TRUE;
      check(worksheet_set_row_opt(sheet_, sheetRow(row), LXW_DEF_ROW_HEIGHT, nullptr, &options));
    }
    const std::vector<Block> covered = grid_.coverings().inRow(row);
    auto next = covered.begin();
    for (std::int32_t col = firstCol_; col <= grid_.ColCount(); ++col) {
      while (next != covered.end() && next->right < col) ++next;
      if (next == covered.end() || !next->contains(row, col)) {
        writeCell(row, col, row, col);
      } else {
        if (std::max(next->top, firstRow_) == row) writeBlock(*next, row, col);
        col = std::min(next->right, grid_.ColCount());
      }
    }
  }

  // The block's upper left cell in the sheet is (row, col); its text may stand in a header that is not shown.
  void writeBlock(const Block& block, std::int32_t row, std::int32_t col) {
    const std::int32_t bottom = std::min(block.bottom, grid_.RowCount());
    const std::int32_t right = std::min(block.right, grid_.ColCount());
    if (bottom > row || right > col) {
      check(worksheet_merge_range(sheet_, sheetRow(row), sheetCol(col), sheetRow(bottom), sheetCol(right), "",
                                  formats_->format(grid_.look(block.top, block.left), 0)));
    }
    writeCell(block.top, block.left, row, col);
  }

  // Writes the grid's cell (row, col) at the sheet's place of (atRow, atCol).
  void writeCell(std::int32_t row, std::int32_t col, std::int32_t atRow, std::int32_t atCol) {
    const StyleAttributes& look = grid_.look(row, col);
    NumberText buffer;
    const std::string_view text = grid_.textAt(row, col, buffer);
    const bool isHeader = row == 0 || col == 0;  // names, whatever they look like
    const lxw_row_t place = sheetRow(atRow);
    if (text.empty()) {
      if (ExcelFormats::showsEmpty(look)) {
        check(worksheet_write_blank(sheet_, place, sheetCol(atCol), formats_->format(look, 0)));
      }
    } else if (const auto number = isHeader ? std::nullopt : excelNumber(text)) {
      check(worksheet_write_number(sheet_, place, sheetCol(atCol), number->value,
                                   formats_->format(look, number->decimals)));
    } else {
      std::size_t units = 0;
      const std::string clean = cleaned(text, units);
      if (units > kLongestText) {
        fail(fileName_, ErrorNumber::InvalidArgument,
             fmt::format("the text of row {}, column {} is longer than {} characters.", row, col,
                         kLongestText));
      }
      check(worksheet_write_string(sheet_, place, sheetCol(atCol), clean.c_str(), formats_->format(look, 0)));
    }
  }

  void check(lxw_error result) const {
    if (result != LXW_NO_ERROR)
      fail(fileName_, ErrorNumber::DeviceIo, std::string(lxw_strerror(result)) + ".");
  }

  const GridControl& grid_;
  const std::string& fileName_;
  std::int32_t firstRow_;
  std::int32_t firstCol_;
  lxw_worksheet* sheet_ = nullptr;
  std::unique_ptr<ExcelFormats> formats_;
};

}  // namespace

void writeExcelFile(const GridControl& grid, const std::string& fileName) {
  Sheet sheet(grid, fileName);
  PartFile part(fileName);
  const MemoryFile whole(fileName);
  sheet.write(whole.name());
  part.take(whole);
  part.takePlace();
}

}  // namespace banddesk::host
