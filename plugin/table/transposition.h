// Samples along columns or along rows: the physical table is exchanged in place, and from then on the logical
// table translates every access.
#pragma once

#include "plugin/table/column_sizing.h"
#include "plugin/table/logical_table.h"
#include "plugin/table/page_controls.h"
#include "plugin/table/sample_labels.h"

namespace banddesk {

class Transposition {
 public:
  Transposition(PageContext& page, LogicalTable& table, PageControls& controls, ColumnSizing& sizing,
                SampleLabels& labels)
      : page_(page), table_(table), controls_(controls), sizing_(sizing), labels_(labels) {}

  void SetTranspose(bool value);
  void cbxSampleAxis_Click();
  // The same for all three menus: the other axis.
  void flipSampleAxis();

 private:
  void exchange();
  void swapDragAndFrozen();
  void TransposeRowColStyles();

  PageContext& page_;
  LogicalTable& table_;
  PageControls& controls_;
  ColumnSizing& sizing_;
  SampleLabels& labels_;
};

}  // namespace banddesk
