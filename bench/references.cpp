#include "bench/references.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <memory>
#include <numeric>
#include <system_error>
#include <unistd.h>

#include "host/grid/excel_formats.h"

namespace banddesk::bench {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;
constexpr std::size_t kPage = 4096;
// A transaction with a journal that is emptied: the journal twice, the file, and the journal's emptying.
constexpr int kSyncsOfASave = 4;

// Keeps the compiler from leaving out a work whose result nobody uses.
template <class T>
void use(const T& value) {
  asm volatile("" : : "r,m"(&value) : "memory");
}

class OutFile {
 public:
  explicit OutFile(const std::filesystem::path& path)
      : path_(path), file_(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    require(file_ >= 0);
  }
  OutFile(const OutFile&) = delete;
  OutFile& operator=(const OutFile&) = delete;
  ~OutFile() {
    ::close(file_);
    ::unlink(path_.c_str());
  }
  void write(const char* bytes, std::size_t count) {
    require(::write(file_, bytes, count) == static_cast<ssize_t>(count));
  }
  void writeAtStart(const char* bytes, std::size_t count) {
    require(::pwrite(file_, bytes, count, 0) == static_cast<ssize_t>(count));
  }
  void synchronise() { require(::fdatasync(file_) == 0); }

 private:
  void require(bool done) const {
    if (!done) throw std::system_error(errno, std::generic_category(), path_.string());
  }
  std::filesystem::path path_;
  int file_;
};

// The cells of a sheet with nothing left to decide: what the library is handed, row after row.
class PlainSheet {
 public:
  explicit PlainSheet(const host::GridControl& grid) : cols_(grid.ColCount()) {
    for (std::int32_t row = 0; row <= grid.RowCount(); ++row) {
      if (grid.IsRowHidden(row)) continue;
      for (std::int32_t col = 1; col <= cols_; ++col) take(grid, row, col);
      ++rows_;
    }
  }

  void write(const std::filesystem::path& file) const {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    lxw_workbook* const workbook = workbook_new_opt(file.c_str(), &options);
    lxw_worksheet* const sheet = workbook_add_worksheet(workbook, "Table");
    {
      host::ExcelFormats formats(workbook);
      std::vector<lxw_format*> made;
      for (const auto& [look, decimals] : formats_) made.push_back(formats.format(*look, decimals));
      const PlainCell* cell = cells_.data();
      for (lxw_row_t row = 0; row < rows_; ++row) {
        for (std::int32_t col = 1; col <= cols_; ++col, ++cell)
          write(sheet, row, static_cast<lxw_col_t>(col), *cell, made[cell->format]);
      }
    }
    if (workbook_close(workbook) != LXW_NO_ERROR) throw std::runtime_error("the spreadsheet was not written");
  }

 private:
  struct PlainCell {
    double number = 0;
    std::uint32_t text = 0;  // 0: a number
    std::uint32_t format = 0;
  };
  using Format = std::pair<const StyleAttributes*, int>;

  void take(const host::GridControl& grid, std::int32_t row, std::int32_t col) {
    host::NumberText buffer;
    const std::string_view text = grid.textAt(row, col, buffer);
    PlainCell& cell = cells_.emplace_back();
    int decimals = 0;
    if (const auto number = row == 0 ? std::nullopt : host::excelNumber(text)) {
      cell.number = number->value;
      decimals = number->decimals;
    } else {
      texts_.emplace_back(text);
      cell.text = static_cast<std::uint32_t>(texts_.size());
    }
    cell.format = numberOf({&grid.look(row, col), decimals});
  }

  std::uint32_t numberOf(const Format& format) {
    const auto [known, isNew] = numbers_.try_emplace(format, static_cast<std::uint32_t>(formats_.size()));
    if (isNew) formats_.push_back(format);
    return known->second;
  }

  void write(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t col, const PlainCell& cell,
             lxw_format* format) const {
    if (cell.text == 0) {
      worksheet_write_number(sheet, row, col, cell.number, format);
    } else {
      worksheet_write_string(sheet, row, col, texts_[cell.text - 1].c_str(), format);
    }
  }

  std::int32_t cols_;
  lxw_row_t rows_ = 0;
  std::vector<PlainCell> cells_;
  std::vector<std::string> texts_;
  std::map<Format, std::uint32_t> numbers_;
  std::vector<Format> formats_;
};

}  // namespace

Timed sortOf(const Pairs& pairs) {
  auto copy = std::make_shared<Pairs>();
  return timed([&pairs, copy] { *copy = pairs; },
               [copy] {
                 for (auto& dye : *copy) std::sort(dye.begin(), dye.end());
                 use(copy->data());
               });
}

Timed lineCountOf(const std::filesystem::path& file) {
  return timed([file] {
    const int in = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    std::vector<char> block(kBlock);
    std::size_t lines = 0;
    ssize_t count = 0;
    while ((count = ::read(in, block.data(), block.size())) > 0)
      lines += static_cast<std::size_t>(std::count(block.begin(), block.begin() + count, '\n'));
    ::close(in);
    use(lines);
  });
}

Timed passesOver(std::vector<std::int32_t> numbers, int times) {
  return timed([numbers = std::move(numbers), times] {
    for (int i = 0; i < times; ++i) use(std::accumulate(numbers.begin(), numbers.end(), std::int64_t{0}));
  });
}

Timed copiesOf(std::size_t bytes, int times) {
  auto from = std::make_shared<std::vector<char>>(bytes, '\1');
  auto to = std::make_shared<std::vector<char>>(bytes, '\2');
  return timed([from, to, times] {
    for (int i = 0; i < times; ++i) {
      std::memcpy(to->data(), from->data(), from->size());
      use(to->data());
    }
  });
}

Timed fittingPass(std::int32_t rows, std::int32_t cols) {
  const auto height = static_cast<std::size_t>(rows);
  const auto width = static_cast<std::size_t>(cols);
  auto cells = std::make_shared<std::vector<std::int64_t>>(height * width);
  for (std::size_t i = 0; i < cells->size(); ++i) (*cells)[i] = static_cast<std::int64_t>(i % 13);
  return timed([cells, height, width] {
    std::vector<std::int64_t> longest(width);
    for (std::size_t row = 0; row < height; ++row) {
      const std::int64_t* const line = cells->data() + row * width;
      for (std::size_t col = 0; col < width; ++col) {
        std::int64_t length = 1;
        for (std::int64_t rest = line[col]; rest >= 10; rest /= 10) ++length;
        longest[col] = std::max(longest[col], length);
      }
    }
    use(longest.data());
  });
}

Timed writeOf(const std::filesystem::path& file) {
  const auto bytes = static_cast<std::size_t>(std::filesystem::file_size(file));
  const std::filesystem::path copy = file.string() + ".copy";
  return timed([bytes, copy] {
    const std::vector<char> block(kBlock, 'x');
    OutFile out(copy);
    for (std::size_t left = bytes; left > 0;) {
      const std::size_t count = std::min(left, block.size());
      out.write(block.data(), count);
      left -= count;
    }
  });
}

Timed syncsIn(const std::filesystem::path& folder) {
  auto out = std::make_shared<OutFile>(folder / "synchronised");
  return timedByClock([] {},
                      [out] {
                        const std::vector<char> page(kPage, 'x');
                        for (int i = 0; i < kSyncsOfASave; ++i) {
                          out->writeAtStart(page.data(), page.size());
                          out->synchronise();
                        }
                      });
}

Timed libraryAlone(const host::GridControl& grid, const std::filesystem::path& folder) {
  auto sheet = std::make_shared<PlainSheet>(grid);
  const std::filesystem::path file = folder / "library.xlsx";
  return timed([file] { std::filesystem::remove(file); }, [sheet, file] { sheet->write(file); });
}

}  // namespace banddesk::bench
