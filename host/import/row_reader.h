// Reads the rows of one recognised table into samples. What is left out is counted by reason; a cell that
// should be a number and is not ends the import with an error that names its place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/import/fields.h"
#include "host/import/forms.h"
#include "host/import/numbers.h"
#include "host/import/peak_table.h"
#include "host/import/sample_assembler.h"

namespace banddesk::host::import {

class RowReader {
 public:
  RowReader(const Form& form, const std::filesystem::path& file, std::optional<Dye> ladder,
            SampleAssembler& assembler, FileReport& report);

  /// Reads all rows after the header. `progress` is told the bytes of text done, every few thousand rows.
  void readAll(std::string_view text, const std::function<void(std::size_t)>& progress);

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

  void readRow(Row& row);
  bool isWorthReading(Row& row);
  void mendSplitDye(Row& row) const;
  std::optional<double> number(const Row& row, std::size_t column);
  [[noreturn]] void failOnNumber(const Row& row, std::size_t column, NumberKind kind) const;
  void leaveOut(Reason reason, const Row& row);
  bool repeatsHeader(const Row& row) const;

  const Form& form_;
  const std::filesystem::path& file_;
  std::optional<Dye> ladder_;
  SampleAssembler& assembler_;
  FileReport& report_;
  NumberReader numbers_;
  Field fileAsSample_;
  std::string fileName_;
  std::vector<std::size_t> leftOutAt_;  // by reason: its place in the report
};

}  // namespace banddesk::host::import
