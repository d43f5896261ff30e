// The arrays of one analysis, private to the page, and what a suppressed bin is. A bin is one row
// of the table, a group of fragments of one dye; a result is one sample column. Bin indexes run from 1 to
// m_lBinCount, dye after dye; index 0 of every array exists and is never used. A result's index is its
// 0-based position in AFLP.Results.
//
// A bin's index is the row on which it was laid. Rows are sorted later, so every pass over rows asks the
// table for the row's bin first; only m_alDyeFirstRow speaks of rows as they were laid.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk {

class BinTable {
 private:
  template <class Table>
  auto line(Table& table, std::int32_t bin) const {
    const auto length = static_cast<std::size_t>(results_);
    return std::span(table).subspan(at(bin) * length, length);
  }

 public:
  double m_dMaxBinWidth = 0;  // nt, of the last analysis
  double m_dYThreshold = 0;   // RFU, of the last analysis
  std::int32_t m_lBinCount = 0;
  std::array<std::int32_t, 4> m_alDyeFirstRow{};

  // One entry per bin, flags as 0 and 1: excluded by the user, brought back by the user, marked by the
  // filter.
  std::vector<std::int16_t> m_aiBinDye = std::vector<std::int16_t>(1);
  std::vector<std::uint8_t> m_abManualExcluded = std::vector<std::uint8_t>(1);
  std::vector<std::uint8_t> m_abManualIncluded = std::vector<std::uint8_t>(1);
  std::vector<std::uint8_t> m_abAutoExcluded = std::vector<std::uint8_t>(1);
  // One line of resultCount() entries per bin: fragments and largest height (RFU) of each result.
  std::vector<std::int32_t> m_alFragmentCounts = {};
  std::vector<double> m_adMaxYHeights = {};

  std::int32_t resultCount() const { return results_; }

  // Clears everything and makes room for the bins counted in m_lBinCount.
  void allocate(std::int32_t results) {
    results_ = results;
    const auto bins = static_cast<std::size_t>(m_lBinCount) + 1;
    const std::size_t cells = bins * static_cast<std::size_t>(results);
    for (auto* flags : {&m_abManualExcluded, &m_abManualIncluded, &m_abAutoExcluded}) flags->assign(bins, 0);
    m_aiBinDye.assign(bins, 0);
    m_alFragmentCounts.assign(cells, 0);
    m_adMaxYHeights.assign(cells, 0);
  }

  // The place of a bin in the arrays of one entry per bin. Error 9 outside them.
  std::size_t at(std::int32_t bin) const {
    if (bin < 0 || static_cast<std::size_t>(bin) >= m_aiBinDye.size()) {
      raise(ErrorNumber::SubscriptOutOfRange, "BinTable", "There is no bin " + integerText(bin) + ".");
    }
    return static_cast<std::size_t>(bin);
  }

  // A bin's line. Error 9 outside the arrays.
  std::span<std::int32_t> fragmentCounts(std::int32_t bin) { return line(m_alFragmentCounts, bin); }
  std::span<const std::int32_t> fragmentCounts(std::int32_t bin) const {
    return line(m_alFragmentCounts, bin);
  }
  std::span<double> maxYHeights(std::int32_t bin) { return line(m_adMaxYHeights, bin); }
  std::span<const double> maxYHeights(std::int32_t bin) const { return line(m_adMaxYHeights, bin); }

  // Whether a bin's exclusion is in force after the hand's overrides.
  bool isSuppressed(std::int32_t bin) const {
    const std::size_t i = at(bin);
    return m_abManualExcluded[i] != 0 || (m_abAutoExcluded[i] != 0 && m_abManualIncluded[i] == 0);
  }

  // A position of a result within a bin's line. Error 9 outside it.
  std::size_t resultAt(std::int32_t result) const {
    if (result < 0 || result >= results_) {
      raise(ErrorNumber::SubscriptOutOfRange, "BinTable", "There is no result " + integerText(result) + ".");
    }
    return static_cast<std::size_t>(result);
  }

 private:
  std::int32_t results_ = 0;
};

}  // namespace banddesk
