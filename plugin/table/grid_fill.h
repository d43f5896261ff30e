// The empty grid made ready, and the text lines that go below the table when it is printed, copied or
// exported: the parameters of the analysis and the numbered list of its samples. The same lines also go to a
// text file, so that grid and file carry one wording.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "plugin/table/logical_table.h"
#include "plugin/table/page_controls.h"
#include "plugin/table/sample_labels.h"

namespace banddesk {

// Where lines go: above 0 the open text file of that number, else the grid; -1 merges the line's cells.
inline constexpr std::int32_t kToGridMerged = -1;
inline constexpr std::int32_t kToGridPlain = -2;

class GridFill {
 public:
  GridFill(PageContext& page, LogicalTable& table, PageControls& controls, SampleLabels& labels)
      : page_(page), table_(table), controls_(controls), labels_(labels) {}

  std::int32_t m_lParameterRow = 0;  // the grid's rows before the block; 0 without a block

  void InitGrid();
  // Runs one line's writing, again if need be; false ends the work. By default a line is written once.
  using LineWriter = std::function<bool(const std::function<void()>& write)>;

  // Line after line, so that one that fails leaves those before it. False if the writer ended it.
  bool AddParameters(std::int32_t target, const LineWriter& writer = nullptr);
  void RemoveParameters();
  void AddResults(std::int32_t target);
  void AddLine(const std::string& text, std::int32_t target, Colour colour);

 private:
  bool eachParameter(const std::function<bool(const std::string& line)>& add) const;
  std::string dyesText() const;
  std::string optionText() const;

  PageContext& page_;
  LogicalTable& table_;
  PageControls& controls_;
  SampleLabels& labels_;
};

}  // namespace banddesk
