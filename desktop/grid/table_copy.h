// A copied part of a table on the clipboard, as plain text and as a table for word processors and
// spreadsheets.
#pragma once

#include <QString>

#include "host/grid/grid_control.h"

namespace banddesk::desktop {

// Lines end with CR LF, cells are parted by tabs, as the grid copies them.
QString htmlTable(const QString& text);

// The selected cells that are visible, as such a text; the current cell if nothing is selected. Between
// parted blocks of a selection cells stay empty, and a cell is one cell whatever its text holds.
std::string selectedText(const host::GridControl& grid);

class QtClipboard final : public host::ClipboardPort {
 public:
  void setText(std::string text) override;
};

}  // namespace banddesk::desktop
