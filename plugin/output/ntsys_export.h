// The presence table of visible bins by visible samples as a labelled matrix. Rows are always bins and
// columns samples, whichever way the grid shows them, and 0 and 1 come from the fragment counts, never from
// the cells.
#pragma once

#include <string>
#include <vector>

#include "plugin/output/file_export.h"
#include "plugin/table/bin_table.h"
#include "plugin/table/grid_fill.h"

namespace banddesk {

class NtsysExport {
 public:
  NtsysExport(PageContext& page, LogicalTable& table, BinTable& bins, GridFill& fill, FileExport& files)
      : page_(page), table_(table), bins_(bins), fill_(fill), files_(files) {}

  void ExportNTSYSpc(const std::string& fileName);

 private:
  struct SampleColumn {
    std::int32_t col;          // logical
    std::int32_t resultIndex;  // into the lines of the analysis
  };

  bool writeFile(const std::string& fileName, std::int32_t number);
  bool writeHead(const std::string& fileName, std::int32_t number);
  bool writeMatrix(const std::string& fileName, std::int32_t number);
  bool print(const std::string& fileName, std::int32_t number, const std::string& line) const;
  std::vector<SampleColumn> visibleSamples() const;
  std::string binLabels();
  std::string sampleLabels(const std::vector<SampleColumn>& samples) const;
  // `largest` of the samples' indexes.
  std::string matrixLine(std::int32_t row, const std::vector<SampleColumn>& samples,
                         std::int32_t largest) const;

  PageContext& page_;
  LogicalTable& table_;
  BinTable& bins_;
  GridFill& fill_;
  FileExport& files_;
};

}  // namespace banddesk
