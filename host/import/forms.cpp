#include "host/import/forms.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <initializer_list>
#include <optional>

#include "host/import/dye.h"
#include "host/import/fields.h"
#include "host/import/import_error.h"
#include "host/import/numbers.h"
#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

constexpr std::array<char, 3> separators{'\t', ';', ','};
// A preamble has a dozen lines; beyond this a header is no longer looked for.
constexpr std::size_t longestPreamble = 100;

/// A column's name without the marks that exporters and R vary: "Dye.Sample.Peak" and "Dye/Sample Peak" are
/// one.
std::string plainName(const Field& field) {
  std::string name;
  for (const char c : field.text)
    if (isLetter(c) || isDigit(c)) name.push_back(lowerAscii(c));
  return name;
}

struct HeaderLine {
  std::vector<std::string> names;   // plain
  std::vector<std::string> header;  // as they stand
  std::size_t line = 0;

  bool has(std::string_view name) const { return std::ranges::find(names, name) != names.end(); }
};

HeaderLine headerOf(const Row& row) {
  HeaderLine line;
  line.line = row.line;
  for (std::size_t i = 0; i < row.count; ++i) {
    line.names.push_back(plainName(row.fields[i]));
    line.header.push_back(plainText(row.fields[i]));
  }
  return line;
}

/// The column of the first of these names that the header has.
std::size_t columnOf(const HeaderLine& line, std::initializer_list<std::string_view> names,
                     const std::filesystem::path& file) {
  for (const std::string_view name : names) {
    const auto found = std::ranges::find(line.names, name);
    if (found == line.names.end()) continue;
    const auto column = static_cast<std::size_t>(found - line.names.begin());
    if (std::find(found + 1, line.names.end(), name) != line.names.end())
      throw ImportError({file, line.line, line.header[column]}, "the header has this column twice");
    return column;
  }
  return Columns::none;
}

Columns columnsOf(const HeaderLine& line, const std::filesystem::path& file) {
  Columns columns;
  columns.dye = columnOf(line, {"dyesamplepeak", "dyepeak", "dye", "dyecolor"}, file);
  columns.peakNumber = columnOf(line, {"samplepeak", "peak"}, file);
  columns.sampleFile = columnOf(line, {"samplefilename", "samplefile"}, file);
  columns.sampleName = columnOf(line, {"samplename", "sample"}, file);
  columns.size = columnOf(line, {"size", "sizebp", "sizent"}, file);
  columns.height = columnOf(line, {"height"}, file);
  return columns;
}

/// A header has at least two of what a peak table must have; what else it lacks is then an error of its own.
bool looksLikeHeader(const HeaderLine& line) {
  const bool dye =
      line.has("dye") || line.has("dyesamplepeak") || line.has("dyepeak") || line.has("dyecolor");
  const bool size = line.has("size") || line.has("sizebp") || line.has("sizent");
  return (dye && (size || line.has("height"))) || (size && line.has("height"));
}

void requireColumns(const Form& form, std::size_t line, const std::filesystem::path& file) {
  const Columns& columns = form.columns;
  const auto require = [&](bool present, const char* what) {
    if (!present) throw ImportError({file, line, {}}, fmt::format("the header has no column {}", what));
  };
  require(columns.dye != Columns::none, "Dye/Sample Peak or Dye");
  require(columns.sampleFile != Columns::none || columns.sampleName != Columns::none,
          "Sample File Name, Sample Name or Sample");
  require(columns.size != Columns::none, "Size");
  require(columns.height != Columns::none, "Height");
}

FormKind kindOf(const HeaderLine& line) {
  if (line.has("areainpoint") || (line.has("sizestandard") && line.has("offscale")))
    return FormKind::PeakScanner;
  if (line.has("htratio") || line.has("arratio") || line.has("qualityreasons")) return FormKind::GeneMarker;
  const bool sizing = line.has("dyesamplepeak") || (line.has("dye") && line.has("samplepeak"));
  return sizing && line.has("samplefilename") ? FormKind::GeneMapper : FormKind::Other;
}

std::optional<Form> findHeader(std::string_view text, char separator, const std::filesystem::path& file) {
  RowCursor cursor(text, separator);
  Row row;
  while (cursor.line() <= longestPreamble && cursor.next(row)) {
    const HeaderLine line = headerOf(row);
    if (!looksLikeHeader(line)) continue;
    Form form;
    form.kind = kindOf(line);
    form.separator = separator;
    form.header = line.header;
    form.columns = columnsOf(line, file);
    form.firstRowOffset = cursor.offset();
    form.firstRowLine = cursor.line();
    requireColumns(form, row.line, file);
    return form;
  }
  return std::nullopt;
}

/// `B,1`, minutes, size, height: the table without a header. With commas between the columns the dye cell may
/// come in two.
std::optional<Form> asHeaderless(std::string_view text, char separator) {
  RowCursor cursor(text, separator);
  Row row;
  do {
    if (!cursor.next(row)) return std::nullopt;
  } while (row.count == 1 && row.text(0).empty());
  const bool split = separator == ',' && !row.fields[0].quoted && row.text(0).size() == 1;
  const std::size_t shift = split ? 1 : 0;
  if (row.count < 4 + shift || !readDyeCell(row.text(0)).dye) return std::nullopt;
  NumberReader numbers;
  for (std::size_t i = 1; i < 4 + shift; ++i) {
    double value = 0;
    if (numbers.read(row.text(i), value) == NumberKind::NotANumber) return std::nullopt;
  }
  Form form;
  form.kind = FormKind::GeneScan;
  form.separator = separator;
  form.columns.dye = 0;
  if (split) form.columns.peakNumber = 1;
  form.columns.size = 2 + shift;
  form.columns.height = 3 + shift;
  return form;
}

}  // namespace

std::size_t Columns::wanted() const {
  std::size_t last = 0;
  for (const std::size_t column : {dye, peakNumber, sampleFile, sampleName, size, height})
    if (column != none) last = std::max(last, column);
  return last + 1;
}

std::size_t Columns::needed() const { return std::max({dye, size, height}) + 1; }

std::string Form::columnName(std::size_t column) const {
  if (column < header.size() && !header[column].empty()) return header[column];
  return fmt::format("{}", column + 1);
}

std::string Form::describe() const {
  constexpr std::array names{"Peak Scanner combined table", "GeneMapper sizing table",
                             "GeneMarker peak table", "GeneScan table", "peak table"};
  const char* apart = separator == '\t' ? "tab" : separator == ';' ? "semicolon" : "comma";
  return fmt::format("{}, {}-separated", names[static_cast<std::size_t>(kind)], apart);
}

Form recogniseForm(std::string_view text, const std::filesystem::path& file) {
  for (const char separator : separators)
    if (auto form = findHeader(text, separator, file)) return *form;
  for (const char separator : separators)
    if (auto form = asHeaderless(text, separator)) return *form;
  throw ImportError({file, 0, {}},
                    "is no peak table: no header with Dye, Size and Height, nor rows such as \"B,1\", "
                    "minutes, size, height");
}

}  // namespace banddesk::host::import
