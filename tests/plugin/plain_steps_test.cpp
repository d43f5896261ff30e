// The page's way through arrays, lines and ranges must come to what plain steps come to, one cell after the
// other: generated studies, the host's own calculators, and whatever a user does.
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>
#include <set>

#include "host/binning/default_calculator.h"
#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

constexpr std::size_t kSamples = 70;  // more than the grid keeps together in one piece of a line
constexpr Colour kGrey = 0xC0C0C0;

std::string nameOf(std::size_t sample) { return "plant" + std::to_string(sample); }

std::string numberText(double value) {
  std::array<char, 40> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.15G", value);
  return buffer.data();
}

struct PlainBin {
  int dye = 0;
  std::vector<std::string> statistics;  // in the order of the columns
  std::vector<std::int32_t> counts;
  std::vector<double> heights;
};

// A study in which some loci are everywhere, and the first samples have hardly anything.
std::vector<host::NewResult> anyStudy(std::mt19937& random) {
  const auto below = [&](unsigned end) { return static_cast<double>(random() % end); };
  std::vector<host::NewResult> results(kSamples);
  for (std::size_t sample = 0; sample < kSamples; ++sample) {
    results[sample].sampleName = nameOf(sample);
    for (std::size_t dye = 0; dye < 4; ++dye) {
      for (int locus = 0; locus < 24; ++locus) {
        if (locus >= 2 && (sample < 3 || random() % 3 != 0)) continue;
        if (sample == 0 || (locus < 2 && dye > 1)) continue;
        auto& peaks = results[sample].fragments.dyes[dye];
        for (unsigned repeat = random() % 8 == 0 ? 12 : 1; repeat > 0; --repeat) {
          peaks.sizes.push_back(60 + 15 * locus + below(40) / 100);
          peaks.heights.push_back(30 + below(20'000) / 2);
        }
      }
    }
  }
  return results;
}

class PlainSteps {
 public:
  // Every other seed with a grid that has single operations alone.
  explicit PlainSteps(unsigned seed) : random_(seed), study_(anyStudy(random_)), desk_(study_) {
    if (seed % 2 == 0) desk_.guardGrids();
    desk_.newAnalysis();
  }

  // One thing that a user may do, whatever it is.
  std::string act() {
    const auto flip = [&](const std::string& box) {
      desk_.control<ui::CheckBox>(box).click();
      return box;
    };
    const auto any = [&](std::int32_t first, std::int32_t last) {
      return first + static_cast<std::int32_t>(random_() % static_cast<unsigned>(last - first + 1));
    };
    switch (random_() % 10) {
      case 0: {
        const std::string option = "optSampleBin(" + std::to_string(random_() % 3) + ")";
        desk_.control<ui::OptionButton>(option).Value = true;
        return option;
      }
      case 1:
        return flip("chkShowExcluded");
      case 2:
        return flip("chkExcludeFullBins");
      case 3:
        return flip("chkExcludeEmptySamples");
      case 4:
        return flip("chkDye(" + std::to_string(random_() % 4) + ")");
      case 5:
        toggle(any(1, page().NumRows()));
        return "exclude a bin";
      case 6:
        desk_.chooseAt(0, any(10, page().NumCols()), "mnuExcludeColumn");
        return "exclude a sample";
      case 7:
        page().SortCol(any(1, page().NumCols()));
        return "sort by a column";
      case 8:
        page().SortRow(any(1, page().NumRows()));
        return "sort by a row";
      default:
        if (random_() % 2 == 0 && !page().AnyManualExclusions()) {
          desk_.control<ui::TextBox>("txtYThreshold").Text = std::to_string(random_() % 4 * 1000);
          page().Analyze(false);
          return "another threshold";
        }
        page().SetTranspose(!page().Transpose());
        return "transpose";
    }
  }

  void wait() { desk_.wait(); }

  void compare() {
    const std::vector<PlainBin> bins = plainBins();
    ASSERT_EQ(page().NumRows(), static_cast<std::int32_t>(bins.size()));
    marked_ = plainMarks(bins);
    ASSERT_EQ(page().AnyManualExclusions(), !excluded_.empty() || !included_.empty());
    for (std::int32_t row = 1; row <= page().NumRows(); ++row) {
      const std::int32_t bin = page().Bin(row);
      const PlainBin& plain = bins[static_cast<std::size_t>(bin - 1)];
      const bool isHidden = (isSuppressed(bin) && !isChecked("chkShowExcluded")) || !isDyeChecked(plain.dye);
      if (!included_.contains(bin)) {
        ASSERT_EQ(page().IsRowHidden(row), isHidden);
      }
      compareRow(row, plain, isSuppressed(bin));
      compareCells(desk_.finished(), row, plain);
    }
    if (!page().Transpose()) compareWidths();
    compareFiles(bins);
  }

 private:
  IAFLPResultsPage& page() { return desk_.page(); }
  AFLP& analysis() { return desk_.analysis(); }
  host::GridControl& grid() { return desk_.grid(); }
  bool isChecked(const std::string& box) { return desk_.control<ui::CheckBox>(box).Value == 1; }
  bool isDyeChecked(int dye) { return isChecked("chkDye(" + std::to_string(dye) + ")"); }

  bool isMarked(std::int32_t bin) const { return marked_[static_cast<std::size_t>(bin - 1)]; }
  bool isSuppressed(std::int32_t bin) const {
    return excluded_.contains(bin) || (isMarked(bin) && !included_.contains(bin));
  }

  // The menu's item, and what becomes of the decision about the row's bin.
  void toggle(std::int32_t row) {
    const std::int32_t bin = page().Bin(row);
    const bool bringsBack = isSuppressed(bin);
    std::set<std::int32_t>& decided = isMarked(bin) ? included_ : excluded_;
    if (bringsBack == isMarked(bin)) {
      decided.insert(bin);
    } else {
      decided.erase(bin);
    }
    desk_.chooseAt(row, 1, "mnuExcludeBin");
  }

  // What the host reads of a bin from outside the page.
  void compareCells(host::FinishedTable table, std::int32_t row, const PlainBin& plain) {
    const std::int32_t bin = page().Bin(row);
    ASSERT_EQ(table.dyeOf(bin), plain.dye);
    ASSERT_TRUE(std::ranges::equal(table.cellsOf(bin).counts, plain.counts)) << bin;
    ASSERT_TRUE(std::ranges::equal(table.cellsOf(bin).heights, plain.heights)) << bin;
    ASSERT_EQ(isExcluded(table.markOf(row, bin)), isSuppressed(bin)) << bin;
    if (isMarked(bin)) {
      const auto mark = isSuppressed(bin) ? host::BinMark::ExcludedByFilter : host::BinMark::BroughtBack;
      ASSERT_EQ(table.markOf(row, bin), mark) << bin;
    }
  }

  // What fresh calculators say of the study's fragments.
  std::vector<PlainBin> plainBins() {
    std::vector<PlainBin> bins;
    for (std::int16_t dye = 0; dye < 4; ++dye) {
      const auto calculator = host::makeBinCalculator();
      for (std::size_t sample = 0; sample < kSamples; ++sample)
        calculator->AddFragments(static_cast<std::int32_t>(sample), 0, study_[sample].fragments, dye, 1, 1);
      calculator->SetMaxBinWidth(desk_.finished().maxBinWidth());
      calculator->SetYThreshold(desk_.finished().yThreshold());
      calculator->Calculate();
      for (std::int32_t i = 0; i < calculator->BinCount(); ++i) {
        PlainBin& bin = bins.emplace_back();
        bin.dye = dye;
        const auto& c = *calculator;
        bin.statistics = {std::to_string(std::lrint(c.XMean(i))),
                          "D" + std::to_string(dye + 1),
                          std::to_string(c.SampleCount(i)),
                          std::to_string(c.FragmentCount(i)),
                          numberText(c.XMin(i)),
                          numberText(c.XMax(i)),
                          numberText(c.XMean(i)),
                          numberText(c.YMean(i)),
                          numberText(c.XVariance(i))};
        calculator->GetResultData(i, bin.counts, bin.heights);
      }
    }
    return bins;
  }

  // The filters by the book, until nothing changes; tells the bins' marks and compares the samples'.
  std::vector<bool> plainMarks(const std::vector<PlainBin>& bins) {
    std::vector<bool> isBinMarked(bins.size()), isSampleMarked(kSamples);
    const bool filtersBins = isChecked("chkExcludeFullBins");
    const bool filtersSamples = isChecked("chkExcludeEmptySamples");
    const auto isValid = [&](std::size_t bin) {
      return !excluded_.contains(static_cast<std::int32_t>(bin + 1)) && !isBinMarked[bin] &&
             isDyeChecked(bins[bin].dye);
    };
    const auto remains = [&](std::size_t sample) {
      return !column(sample).IsExcluded && !isSampleMarked[sample];
    };
    for (bool again = true; again;) {
      again = false;
      std::vector<std::size_t> valid;
      for (std::size_t bin = 0; bin < bins.size(); ++bin) {
        if (!isValid(bin)) continue;
        bool isFull = filtersBins;
        for (std::size_t sample = 0; sample < kSamples; ++sample)
          isFull = isFull && (!remains(sample) || bins[bin].counts[sample] != 0);
        isFull ? again = isBinMarked[bin] = true : (valid.push_back(bin), true);
      }
      for (std::size_t sample = 0; filtersSamples && sample < kSamples; ++sample) {
        bool isEmpty = remains(sample);
        for (const std::size_t bin : valid) isEmpty = isEmpty && bins[bin].counts[sample] == 0;
        if (isEmpty) again = isSampleMarked[sample] = true;
      }
      again = again && filtersBins && filtersSamples;
    }
    for (std::size_t sample = 0; sample < kSamples; ++sample)
      EXPECT_EQ(column(sample).IsAutoExcluded, isSampleMarked[sample]) << "sample " << sample;
    return isBinMarked;
  }

  const GridColumn& column(std::size_t sample) {
    return *analysis().SampleGrid->Columns.Item("-" + std::to_string(sample + 1));
  }
  // Of a column of the table; nothing for bin information.
  std::optional<std::size_t> sampleOf(std::int32_t col) {
    const int key = std::stoi(page().Key(col));
    if (key > 0) return {};
    return static_cast<std::size_t>(-key - 1);
  }

  std::string plainText(const PlainBin& bin, std::int32_t col) {
    const auto sample = sampleOf(col);
    if (!sample) return bin.statistics[static_cast<std::size_t>(col - 1)];
    const std::int32_t count = bin.counts[*sample];
    const std::int32_t option = analysis().SampleBinOption;
    if (option == 1) return count != 0 ? "1" : "0";
    return option == 2 ? std::to_string(std::lrint(bin.heights[*sample])) : std::to_string(count);
  }

  void compareRow(std::int32_t row, const PlainBin& bin, bool isGreyRow) {
    for (std::int32_t col = 1; col <= page().NumCols(); ++col) {
      const std::int32_t physicalRow = page().Transpose() ? col : row;
      const std::int32_t physicalCol = page().Transpose() ? row : col;
      ASSERT_EQ(grid().GetValue(physicalRow, physicalCol), plainText(bin, col)) << row << " " << col;
      const auto sample = sampleOf(col);
      const bool isExcluded = sample && (column(*sample).IsExcluded || column(*sample).IsAutoExcluded);
      const StyleAttributes& look = grid().look(physicalRow, physicalCol);
      ASSERT_EQ(look.interior->color == kGrey, isGreyRow || isExcluded) << row << " " << col;
      if (!sample) continue;
      ASSERT_EQ(page().IsColHidden(col), isExcluded && !isChecked("chkShowExcluded")) << col;
      const std::int32_t count = bin.counts[*sample];
      const auto& style = *analysis().StyleGrid->Columns.Item(count == 1 ? 1 : count == 0 ? 3 : 2);
      ASSERT_EQ(*look.textColor, style.TextColor) << row << " " << col;
    }
  }

  // Every sample's column that is shown is as wide as the longest text of its visible cells. A sort hides
  // bins that were brought back, and fits nothing.
  void compareWidths() {
    if (!included_.empty()) return;
    for (std::int32_t col = 10; col <= page().NumCols(); ++col) {
      if (!column(*sampleOf(col)).IsVisible || page().IsColHidden(col)) continue;
      std::size_t longest = 0;
      for (std::int32_t row = 0; row <= page().NumRows(); ++row) {
        if (!grid().IsRowHidden(row)) longest = std::max(longest, grid().GetValue(row, col).size());
      }
      constexpr int kAdvance = 6, kMargins = 8, kNarrowest = 16;
      ASSERT_EQ(grid().colWidth(col), std::max(kAdvance * static_cast<int>(longest) + kMargins, kNarrowest))
          << col;
    }
  }

  std::vector<std::string> parameterLines() {
    std::vector<std::string> lines{
        "Name: New AFLP 1", "Study: Plants",
        "Max Bin Width: " + desk_.control<ui::TextBox>("txtMaxBinWidth").Text.get(),
        "Y Threshold: " + desk_.control<ui::TextBox>("txtYThreshold").Text.get()};
    std::string dyes;
    for (int dye = 0; dye < 4; ++dye) {
      if (isDyeChecked(dye)) dyes += (dyes.empty() ? "D" : ", D") + std::to_string(dye + 1);
    }
    lines.push_back("Dyes: " + dyes);
    const auto plain = [](std::string caption) {
      std::erase(caption, '&');
      return caption;
    };
    const std::string option = "optSampleBin(" + std::to_string(analysis().SampleBinOption) + ")";
    lines.push_back(plain(desk_.control<ui::OptionButton>(option).Caption));
    for (const char* box : {"chkExcludeFullBins", "chkExcludeEmptySamples", "chkShowExcluded"}) {
      if (isChecked(box)) lines.push_back(plain(desk_.control<ui::CheckBox>(box).Caption));
    }
    return lines;
  }

  std::string cellOf(const std::vector<PlainBin>& bins, std::int32_t row, std::int32_t col) {
    if (row > 0) return plainText(bins[static_cast<std::size_t>(page().Bin(row) - 1)], col);
    if (const auto sample = sampleOf(col)) return nameOf(*sample);
    return analysis().BinGrid->Columns.Item(page().Key(col))->Header;
  }

  // The table as text, its head included, and the parameters below it, over all of the grid's width.
  std::string plainCsv(const std::vector<PlainBin>& bins) {
    const bool isTransposed = page().Transpose();
    const std::int32_t lastRow = isTransposed ? page().NumCols() : page().NumRows();
    const std::int32_t lastCol = isTransposed ? page().NumRows() : page().NumCols();
    std::string text;
    const auto addLine = [&](std::string line) {
      if (!line.empty()) line.pop_back();
      text += line + "\r\n";
    };
    for (std::int32_t row = isTransposed ? 1 : 0; row <= lastRow; ++row) {
      if (grid().IsRowHidden(row)) continue;
      std::string line;
      for (std::int32_t col = isTransposed ? 0 : 1; col <= lastCol; ++col) {
        if (grid().IsColHidden(col)) continue;
        // NOLINTNEXTLINE(readability-suspicious-call-argument): rows and columns have changed places
        line += "\"" + (isTransposed ? cellOf(bins, col, row) : cellOf(bins, row, col)) + "\",";
      }
      addLine(line);
    }
    std::vector<std::string> parameters = parameterLines();
    parameters.insert(parameters.begin(), "");
    for (const std::string& parameter : parameters) {
      std::string line = "\"" + parameter + "\",";
      for (std::int32_t col = isTransposed ? 1 : 2; col <= lastCol; ++col) line += "\"\",";
      addLine(line);
    }
    return text;
  }

  std::string plainNts(const std::vector<PlainBin>& bins) {
    std::string text, labels, names, matrix;
    const auto withoutLast = [](const std::string& line) { return line.substr(0, line.size() - 1) + "\r\n"; };
    for (const std::string& line : parameterLines()) text += "\"" + line + "\r\n";
    int binCount = 0, sampleCount = 0;
    for (std::int32_t col = 10; col <= page().NumCols(); ++col) {
      if (page().IsColHidden(col)) continue;
      names += nameOf(*sampleOf(col)) + " ";
      ++sampleCount;
    }
    for (std::int32_t row = 1; row <= page().NumRows(); ++row) {
      if (page().IsRowHidden(row)) continue;
      const PlainBin& bin = bins[static_cast<std::size_t>(page().Bin(row) - 1)];
      labels += bin.statistics[0] + " ";
      std::string line;
      for (std::int32_t col = 10; col <= page().NumCols(); ++col) {
        if (!page().IsColHidden(col)) line += bin.counts[*sampleOf(col)] != 0 ? "1 " : "0 ";
      }
      matrix += withoutLast(line);
      ++binCount;
    }
    text += "1 " + std::to_string(binCount) + "L " + std::to_string(sampleCount) + "L 0\r\n";
    return text + withoutLast(labels) + withoutLast(names) + matrix;
  }

  void compareFiles(const std::vector<PlainBin>& bins) {
    const std::string file = scratch("table");
    page().ExportCSV(file);
    ASSERT_EQ(fileText(file), plainCsv(bins));
    if (page().VisibleBinCount() == 0 || page().VisibleSampleCount() == 0) return;
    page().ExportNTSYSpc(file);
    ASSERT_EQ(fileText(file), plainNts(bins));
  }

  std::mt19937 random_;
  std::vector<host::NewResult> study_;
  Desk desk_;
  std::vector<bool> marked_;                    // by the filter, at the last comparison; from bin 1
  std::set<std::int32_t> excluded_, included_;  // bins that the user decided about
};

TEST(PlainSteps, ComeToTheSameCellsStylesMarksAndFiles) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    PlainSteps steps(seed);
    std::string done = "seed " + std::to_string(seed);
    for (int action = 0; action < 12; ++action) {
      SCOPED_TRACE(done);
      ASSERT_NO_FATAL_FAILURE(steps.compare());
      done += ", " + steps.act();
      steps.wait();
    }
  }
}

}  // namespace
}  // namespace banddesk::test
