// A sheet of an .xlsx file as tab-separated text, which then is read like any other. It knows no peak tables
// and writes nothing.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace banddesk::host::import {

/// Whether the file begins as a zip archive does, and so may be an .xlsx file.
bool isZip(const std::filesystem::path& file);

/// The text of the sheet of this name, or of the first one: a line a row, cells apart by tabs, rows and
/// columns in their places, numbers in full precision. Throws ImportError for a file that is no .xlsx, or has
/// no such sheet.
std::string sheetText(const std::filesystem::path& file, const std::optional<std::string>& sheet);

}  // namespace banddesk::host::import
