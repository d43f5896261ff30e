#include "host/import/import_error.h"

#include <fmt/format.h>
#include <utility>

namespace banddesk::host::import {
namespace {

std::string oneLine(const ImportPlace& place, const std::string& message) {
  std::string text = place.file.string();
  if (place.line != 0) text += fmt::format("{}line {}", text.empty() ? "" : ", ", place.line);
  if (!place.column.empty()) text += fmt::format("{}column {}", text.empty() ? "" : ", ", place.column);
  return text.empty() ? message : text + ": " + message;
}

}  // namespace

ImportError::ImportError(ImportPlace where, const std::string& text)
    : std::runtime_error(oneLine(where, text)), place(std::move(where)), message(text) {}

}  // namespace banddesk::host::import
