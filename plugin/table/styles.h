// The named styles of the table: one per dye, three for sample cells, one per bin information column that has
// its own. They are built from the columns of the analysis and registered in the grid. What the user changes
// in the grid's style dialog stays in the grid and is not written back.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "plugin/table/logical_table.h"
#include "plugin/table/page_controls.h"

namespace banddesk {

class Styles {
 public:
  Styles(PageContext& page, LogicalTable& table, PageControls& controls)
      : page_(page), table_(table), controls_(controls) {}

  // Identifiers of registered styles. Base styles: 1 one fragment, 2 several fragments, 3 empty cell.
  std::array<std::int32_t, kDyeCount> m_alDyeStyles{};  // 0 while not registered
  std::vector<std::int32_t> m_alBaseStyles;
  std::unique_ptr<Collection<std::int32_t>> m_colColumnStyles;  // by column key; made on first use

  void InitStyles();
  std::shared_ptr<GridStyle> InitStyle(const GridColumn& entry);
  void InitDye(const std::shared_ptr<GridColumn>& column);
  void FormatStyles();
  // The counterparts of InitStyle. Nothing calls them: styles are not stored.
  void PersistStyles();
  void PersistStyle(GridColumn& column, const GridStyle* style) const;

  std::int32_t baseStyle(std::size_t which) const;

 private:
  void showDye(std::size_t dye, const GridColumn& column);
  std::int32_t registerStyle(const std::string& name, const GridColumn& entry);

  PageContext& page_;
  LogicalTable& table_;
  PageControls& controls_;
};

}  // namespace banddesk
