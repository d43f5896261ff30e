// Reads the rows of one recognised table into samples. What is left out is counted by reason; a cell that
// should be a number and is not ends the import with an error that names its place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/import/dye_names.h"
#include "host/import/fields.h"
#include "host/import/forms.h"
#include "host/import/numbers.h"
#include "host/import/peak_table.h"
#include "host/import/sample_assembler.h"

namespace banddesk::host::import {

/// Which dye a row is of, and whether it counts.
struct DyeRules {
  const DyeNames& names;
  std::optional<Dye> ladder;  // left out
  std::optional<Dye> given;   // of all rows of a table without a column for it
};

class RowReader {
 public:
  RowReader(const Form& form, const std::filesystem::path& file, const DyeRules& dyes,
            SampleAssembler& assembler, FileReport& report);

  /// Reads the rows of the next piece of text, the first of which starts after the header. Nothing of it is
  /// kept.
  void read(std::string_view piece);

 private:
  enum class Reason : std::size_t {
    BlankSize,
    BlankHeight,
    NoDye,
    NoSample,
    Ladder,
    CutShort,
    Header,
    Repeated,
    OtherDye
  };

  using Number = std::optional<double>;

  void readRow(Row& row);
  DyeCell dyeOf(const Row& row) const;
  void addPeak(SampleAssembler::Run& run, const DyeCell& dye, Number size, Number height, const Row& row);
  bool isWorthReading(Row& row);
  void mendSplitDye(Row& row) const;
  Number number(const Row& row, std::size_t column);
  [[noreturn]] void failOnNumber(const Row& row, std::size_t column, NumberKind kind) const;
  void leaveOut(Reason reason, const Row& row, std::string_view quote = {});
  bool repeatsHeader(const Row& row) const;

  const Form& form_;
  const std::filesystem::path& file_;
  DyeRules dyes_;
  SampleAssembler& assembler_;
  FileReport& report_;
  NumberReader numbers_;
  Row row_;
  std::vector<std::pair<Number, Number>> numbersOfRow_;  // sizes and heights
  std::size_t line_;
  Field fileAsSample_;
  std::string fileName_;
  std::vector<std::size_t> leftOutAt_;  // by reason: its place in the report
};

}  // namespace banddesk::host::import
