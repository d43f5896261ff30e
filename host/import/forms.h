// Says which form of peak table a text is and where its columns stand, by content alone. It reads no peaks.
#pragma once

#include <cstddef>
#include <filesystem>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace banddesk::host::import {

enum class FormKind { PeakScanner, GeneMapper, Genotypes, GeneMarker, GeneScan, Other };

struct Columns {
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  std::size_t dye = none;         // may hold the peak's number too
  std::size_t peakNumber = none;  // a column of its own
  std::size_t sampleFile = none;
  std::size_t sampleName = none;
  std::size_t size = none;
  std::size_t height = none;
  std::vector<std::pair<std::size_t, std::size_t>> more =
      {};  // sizes and heights beside these, in a wide table

  /// How many fields of a row must be cut to reach the last of them.
  std::size_t wanted() const;
  /// How many fields a row must have to be whole.
  std::size_t needed() const;
};

struct Form {
  FormKind kind = FormKind::Other;
  char separator = '\t';
  Columns columns;
  std::vector<std::string> header;  // the columns' names; empty without a header
  std::size_t firstRowOffset = 0;   // of the text after the header
  std::size_t firstRowLine = 1;

  /// A column as an error names it: its header, or "column 3" counted from 1.
  std::string columnName(std::size_t column) const;
  std::string describe() const;
};

/// Throws ImportError when the text is no peak table; for a header that lacks a column, the error names the
/// column. A header may lack the dye where `isDyeGiven`; a dye column that there is counts all the same.
Form recogniseForm(std::string_view text, const std::filesystem::path& file, bool isDyeGiven = false);

}  // namespace banddesk::host::import
