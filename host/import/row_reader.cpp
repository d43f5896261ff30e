#include "host/import/row_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>

#include "host/import/import_error.h"
#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

constexpr std::size_t notYet = static_cast<std::size_t>(-1);
constexpr std::size_t linesKept = 5;
constexpr std::size_t quotesKept = 5;

constexpr std::array reasons{"blank size",      "blank height",  "no dye",
                             "no sample name",  "size standard", "row cut short",
                             "header repeated", "row repeated",  "dye not known"};

bool allBlank(const Row& row) {
  return std::all_of(row.fields.begin(), row.fields.begin() + static_cast<std::ptrdiff_t>(row.count),
                     [](const Field& field) { return field.text.empty(); });
}

bool isNumber(std::string_view text) { return !text.empty() && std::ranges::all_of(text, isDigit); }

}  // namespace

RowReader::RowReader(const Form& form, const std::filesystem::path& file, const DyeRules& dyes,
                     SampleAssembler& assembler, FileReport& report)
    : form_(form),
      file_(file),
      dyes_(dyes),
      assembler_(assembler),
      report_(report),
      line_(form.firstRowLine),
      fileName_(runNameOfFile(file)),
      leftOutAt_(reasons.size(), notYet) {
  fileAsSample_.text = fileName_;
}

void RowReader::read(std::string_view piece) {
  RowCursor cursor(piece, form_.separator, line_);
  // Comma-separated text is cut whole: only the number of fields shows that an unquoted B,1 came apart.
  const std::size_t wanted = form_.separator == ',' ? RowCursor::allFields : form_.columns.wanted();
  while (cursor.next(row_, wanted)) readRow(row_);
  line_ = cursor.line();
}

void RowReader::readRow(Row& row) {
  if (!isWorthReading(row)) return;
  const Columns& columns = form_.columns;
  const DyeCell dye = dyeOf(row);
  numbersOfRow_.assign(1, {number(row, columns.size), number(row, columns.height)});
  // Alleles that a marker does not have leave their places empty.
  for (const auto& [size, height] : columns.more) {
    const std::pair further(number(row, size), number(row, height));
    if (further.first || further.second) numbersOfRow_.push_back(further);
  }
  static constexpr Field nothing;
  const auto cell = [&](std::size_t column) -> const Field& {
    return column < row.count ? row.fields[column] : nothing;
  };
  const bool headerless = form_.kind == FormKind::GeneScan;
  SampleAssembler::Run* run =
      assembler_.runOf(headerless ? fileAsSample_ : cell(columns.sampleFile), cell(columns.sampleName));
  if (!run) return leaveOut(Reason::NoSample, row);
  if (!dye.dye) return leaveOut(dye.name.empty() ? Reason::NoDye : Reason::OtherDye, row, dye.name);
  if (dye.dye == dyes_.ladder) return leaveOut(Reason::Ladder, row);
  for (const auto& [size, height] : numbersOfRow_) addPeak(*run, dye, size, height, row);
}

DyeCell RowReader::dyeOf(const Row& row) const {
  if (form_.columns.dye == Columns::none) return {dyes_.given};
  DyeCell dye = readDyeCell(row.text(form_.columns.dye));
  if (!dye.dye) dye.dye = dyes_.names.dyeOf(dye.name);
  const std::string_view peak = row.text(form_.columns.peakNumber);
  std::from_chars(peak.data(), peak.data() + peak.size(), dye.number);
  return dye;
}

void RowReader::addPeak(SampleAssembler::Run& run, const DyeCell& dye, Number size, Number height,
                        const Row& row) {
  if (!size) return leaveOut(Reason::BlankSize, row);
  if (!height) return leaveOut(Reason::BlankHeight, row);
  if (assembler_.add(run, dye, *size, *height) == SampleAssembler::Added::Repeated)
    return leaveOut(Reason::Repeated, row);
  ++report_.peaks[indexOf(*dye.dye)];
}

bool RowReader::isWorthReading(Row& row) {
  if (row.count < form_.columns.needed()) {
    if (allBlank(row)) return false;
    ++report_.rows;
    leaveOut(Reason::CutShort, row);
    return false;
  }
  if (form_.separator == ',') mendSplitDye(row);
  if (row.text(form_.columns.dye).empty() && allBlank(row)) return false;
  ++report_.rows;
  if (!repeatsHeader(row)) return true;
  leaveOut(Reason::Header, row);
  return false;
}

/// An unquoted B,1 in comma-separated text came as two fields; it becomes one again.
void RowReader::mendSplitDye(Row& row) const {
  const std::size_t at = form_.columns.dye;
  if (at == Columns::none || form_.header.empty() || row.count <= form_.header.size() ||
      row.fields[at].quoted)
    return;
  if (row.text(at).size() != 1 || !isNumber(row.text(at + 1))) return;
  const char* begin = row.fields[at].text.data();
  const std::string_view number = row.fields[at + 1].text;
  row.fields[at].text = {begin, static_cast<std::size_t>(number.data() + number.size() - begin)};
  const auto next = row.fields.begin() + static_cast<std::ptrdiff_t>(at) + 1;
  std::rotate(next, next + 1, row.fields.begin() + static_cast<std::ptrdiff_t>(row.count));
  --row.count;
}

RowReader::Number RowReader::number(const Row& row, std::size_t column) {
  double value = 0;
  const NumberKind kind = numbers_.read(row.text(column), value);
  if (kind == NumberKind::Number) return value;
  if (kind == NumberKind::Blank) return std::nullopt;
  failOnNumber(row, column, kind);
}

void RowReader::failOnNumber(const Row& row, std::size_t column, NumberKind kind) const {
  const char* what = kind == NumberKind::NotFinite   ? "is not a finite number"
                     : kind == NumberKind::Negative  ? "is negative"
                     : kind == NumberKind::Thousands ? "has a thousands separator; write the numbers without"
                     : kind == NumberKind::OtherMark
                         ? "mixes decimal comma and decimal point with the rows above"
                         : "is not a number";
  throw ImportError({file_, row.line, form_.columnName(column)},
                    fmt::format("\"{}\" {}", row.text(column), what));
}

bool RowReader::repeatsHeader(const Row& row) const {
  const auto repeats = [&](std::size_t column) { return row.text(column) == form_.header[column]; };
  return !form_.header.empty() && repeats(form_.columns.size) && repeats(form_.columns.height);
}

void RowReader::leaveOut(Reason reason, const Row& row, std::string_view quote) {
  std::size_t& at = leftOutAt_[static_cast<std::size_t>(reason)];
  if (at == notYet) {
    at = report_.leftOut.size();
    report_.leftOut.push_back({reasons[static_cast<std::size_t>(reason)], 0, {}});
  }
  LeftOut& leftOut = report_.leftOut[at];
  ++leftOut.count;
  if (leftOut.firstLines.size() < linesKept) leftOut.firstLines.push_back(row.line);
  if (!quote.empty() && leftOut.quotes.size() < quotesKept &&
      std::ranges::find(leftOut.quotes, quote) == leftOut.quotes.end())
    leftOut.quotes.emplace_back(quote);
}

}  // namespace banddesk::host::import
