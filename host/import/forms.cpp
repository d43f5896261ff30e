#include "host/import/forms.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <initializer_list>
#include <optional>

#include "host/import/dye.h"
#include "host/import/dye_names.h"
#include "host/import/fields.h"
#include "host/import/import_error.h"
#include "host/import/numbers.h"
#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

constexpr std::array<char, 4> separators{'\t', ';', ',', ' '};
// A preamble has a dozen lines; beyond this a header is no longer looked for.
constexpr std::size_t longestPreamble = 100;

using Names = std::initializer_list<std::string_view>;
const Names dyeNames{"dyesamplepeak", "dyepeak", "dye", "dyecolor", "dyecolour", "dyename"};
const Names sizeNames{"size",      "sizebp",       "sizent", "sizebasepairs",  "bp",   "nt",
                      "basepairs", "fragmentsize", "length", "fragmentlength", "size1"};
const Names heightNames{"height", "heightrfu", "peakheight", "peakheightrfu", "rfu", "height1"};

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
  bool hasAny(Names of) const {
    return std::ranges::any_of(of, [this](std::string_view name) { return has(name); });
  }
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
std::size_t columnOf(const HeaderLine& line, Names names, const std::filesystem::path& file) {
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

// A row a marker, with a column for each of its alleles.
bool isWide(const HeaderLine& line) { return line.has("size1") || line.has("allele1"); }

Columns columnsOf(const HeaderLine& line, const std::filesystem::path& file) {
  Columns columns;
  columns.dye = columnOf(line, dyeNames, file);
  columns.peakNumber = columnOf(line, {"samplepeak", "peak"}, file);
  columns.sampleFile = columnOf(line, {"samplefilename", "samplefile"}, file);
  columns.sampleName = columnOf(line, {"samplename", "sample", "sampleid", "individual", "name"}, file);
  columns.size = columnOf(line, sizeNames, file);
  columns.height = columnOf(line, heightNames, file);
  if (!isWide(line)) return columns;
  for (std::size_t number = 2;; ++number) {
    const std::string size = fmt::format("size{}", number), height = fmt::format("height{}", number);
    if (!line.has(size) || !line.has(height)) return columns;
    columns.more.emplace_back(columnOf(line, {size}, file), columnOf(line, {height}, file));
  }
}

/// A header has at least two of what a peak table must have; what else it lacks is then an error of its own.
bool looksLikeHeader(const HeaderLine& line) {
  const bool dye = line.hasAny(dyeNames), size = line.hasAny(sizeNames), height = line.hasAny(heightNames);
  return (dye && (size || height)) || (size && height) || (isWide(line) && (dye || line.has("marker")));
}

void requireColumns(const Form& form, const HeaderLine& header, const std::filesystem::path& file,
                    bool isDyeGiven) {
  const Columns& columns = form.columns;
  const std::size_t line = header.line;
  if (isWide(header) && (columns.size == Columns::none || columns.height == Columns::none))
    throw ImportError(
        {file, line, {}},
        "the genotypes have names of alleles alone; export them with the columns Size and Height, or "
        "the sizing table of all peaks");
  const auto require = [&](bool present, const char* what) {
    if (!present) throw ImportError({file, line, {}}, fmt::format("the header has no column {}", what));
  };
  require(columns.dye != Columns::none || isDyeGiven,
          "Dye/Sample Peak or Dye; if all peaks are of one dye, choose it (on the command line --dye B)");
  require(columns.sampleFile != Columns::none || columns.sampleName != Columns::none,
          "Sample File Name, Sample Name or Sample");
  require(columns.size != Columns::none, "Size");
  require(columns.height != Columns::none, "Height");
}

FormKind kindOf(const HeaderLine& line) {
  if (isWide(line)) return FormKind::Genotypes;
  if (line.has("areainpoint") || line.has("areadatapoint") ||
      (line.has("sizestandard") && line.has("offscale")))
    return FormKind::PeakScanner;
  if (line.has("htratio") || line.has("arratio") || line.has("qualityreasons")) return FormKind::GeneMarker;
  const bool sizing = line.has("dyesamplepeak") || (line.has("dye") && line.has("samplepeak"));
  return sizing && line.has("samplefilename") ? FormKind::GeneMapper : FormKind::Other;
}

bool isDye(std::string_view cell) {
  const DyeCell dye = readDyeCell(cell);
  return dye.dye || kitDyeOf(dye.name);
}

/// Whether a row's cells fit the columns when they are so many places further right.
bool fits(const Row& row, const Columns& columns, std::size_t further) {
  const auto isNumber = [&](std::size_t column) {
    double value = 0;
    const NumberKind kind = NumberReader().read(row.text(column + further), value);
    return kind != NumberKind::NotANumber;
  };
  return isNumber(columns.size) && isNumber(columns.height) &&
         (columns.dye == Columns::none || isDye(row.text(columns.dye + further)));
}

/// R writes the names of rows into a column that the header does not have.
bool hasRowNames(const Form& form, RowCursor cursor) {
  if (form.columns.size == Columns::none || form.columns.height == Columns::none) return false;
  Row row;
  do {
    if (!cursor.next(row)) return false;
  } while (row.count == 1 && row.text(0).empty());
  return row.count == form.header.size() + 1 && !fits(row, form.columns, 0) && fits(row, form.columns, 1);
}

void passOverRowNames(Form& form) {
  Columns& columns = form.columns;
  form.header.emplace(form.header.begin());
  for (std::size_t* column : {&columns.dye, &columns.peakNumber, &columns.sampleFile, &columns.sampleName,
                              &columns.size, &columns.height})
    if (*column != Columns::none) ++*column;
  for (auto& [size, height] : columns.more) {
    ++size;
    ++height;
  }
}

/// Words with blanks between them are a header only where a row below has as many cells that fit.
bool isHeaderOfBlanks(const Form& form, RowCursor cursor) {
  const bool isShort = hasRowNames(form, cursor);
  Row row;
  return form.columns.sampleName != Columns::none && form.columns.size != Columns::none &&
         form.columns.height != Columns::none && cursor.next(row) &&
         (isShort || (row.count == form.header.size() && fits(row, form.columns, 0)));
}

std::optional<Form> findHeader(std::string_view text, char separator, const std::filesystem::path& file,
                               bool isDyeGiven) {
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
    if (separator == ' ' && !isHeaderOfBlanks(form, cursor)) continue;
    requireColumns(form, line, file, isDyeGiven);
    if (hasRowNames(form, cursor)) passOverRowNames(form);
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
  if (row.count < 4 + shift || !isDye(row.text(0))) return std::nullopt;
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
  for (const auto& [nextSize, nextHeight] : more) last = std::max({last, nextSize, nextHeight});
  return last + 1;
}

std::size_t Columns::needed() const { return std::max({dye == none ? 0 : dye, size, height}) + 1; }

std::string Form::columnName(std::size_t column) const {
  if (column < header.size() && !header[column].empty()) return header[column];
  return fmt::format("{}", column + 1);
}

std::string Form::describe() const {
  constexpr std::array names{
      "Peak Scanner combined table", "GeneMapper sizing table", "GeneMapper genotype table",
      "GeneMarker peak table",       "GeneScan table",          "peak table"};
  const char* apart = separator == '\t'  ? "tab"
                      : separator == ';' ? "semicolon"
                      : separator == ',' ? "comma"
                                         : "blank";
  return fmt::format("{}, {}-separated", names[static_cast<std::size_t>(kind)], apart);
}

Form recogniseForm(std::string_view text, const std::filesystem::path& file, bool isDyeGiven) {
  for (const char separator : separators)
    if (auto form = findHeader(text, separator, file, isDyeGiven)) return *form;
  for (const char separator : separators)
    if (auto form = asHeaderless(text, separator)) return *form;
  throw ImportError({file, 0, {}},
                    "is no peak table: no header with Dye, Size and Height, nor rows such as \"B,1\", "
                    "minutes, size, height");
}

}  // namespace banddesk::host::import
