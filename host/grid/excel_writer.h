// Writes what a grid shows as a spreadsheet file of one sheet. The file appears whole or not at all.
#pragma once

#include <string>

namespace banddesk::host {

class GridControl;

// Raises an error that names the file, and the cell if one is at fault.
void writeExcelFile(const GridControl& grid, const std::string& fileName);

}  // namespace banddesk::host
