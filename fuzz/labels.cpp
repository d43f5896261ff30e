// The input is a sample's name: the label that the table shows of it, with and without well and time stamp.
#include <string>

#include "fuzz/bytes.h"
#include "plugin/base/text.h"
#include "tests/plugin/desk.h"

namespace {

using namespace banddesk;
using fuzz::require;

struct Table {
  Table() : desk({}, {"a"}) {
    desk.newAnalysis();
    desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;  // names show along the rows only
  }
  std::string label(bool well, bool timestamp) {
    desk.control<ui::CheckBox>("chkShowWellID").Value = well ? ui::kChecked : ui::kUnchecked;
    desk.control<ui::CheckBox>("chkShowTimestamp").Value = timestamp ? ui::kChecked : ui::kUnchecked;
    desk.wait();
    return desk.page().CellText("-1", 0);
  }
  test::Desk desk;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Table table;
  const std::string_view name(reinterpret_cast<const char*>(data), size);
  table.desk.analysis().SampleGrid->Columns.Item(1)->ToolTip = std::string(name);
  const std::string whole = "1-" + std::string(trim(name));
  const std::string full = table.label(true, true);
  require(full == whole, "the whole name is not the whole label");
  const std::string bare = table.label(false, false);
  const std::string well = table.label(true, false);
  const std::string stamp = table.label(false, true);
  require(whole.starts_with(bare) && whole.starts_with(well), "a label is not the name's beginning");
  require(bare == whole || whole.size() - bare.size() >= 15, "a suffix is cut in part");
  require((bare == whole) == (well == whole), "the suffix is told otherwise");
  // Four characters go, of which one may be of several bytes.
  require((stamp == whole) == (bare == whole), "the suffix is told otherwise");
  require(stamp == whole || (whole.size() - stamp.size() >= 4 && whole.size() - stamp.size() <= 7),
          "the stamp's label has another length");
  require(table.desk.host.framework().reports().empty(), "a failure was reported");
  return 0;
}
