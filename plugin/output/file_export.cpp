#include "plugin/output/file_export.h"

#include "plugin/base/text.h"

namespace banddesk {

bool FileExport::attempt(const std::string& fileName, const std::function<void()>& statement) const {
  while (true) {
    try {
      statement();
      return true;
    } catch (const Error& error) {
      if (error.number() != ErrorNumber::None && error.number() != ErrorNumber::PermissionDenied) throw;
    }
    const ui::BoxAnswer answer = page_.platform().MsgBox(
        "Error open file '" + fileName + "'.\rThe file maybe open by other application",
        ui::kExclamationRetryCancel, "");
    if (answer != ui::BoxAnswer::Retry) return false;
  }
}

void FileExport::closingOnFailure(std::int32_t number, const std::function<void()>& body) const {
  try {
    body();
  } catch (...) {
    try {
      page_.platform().Files().Close(number);
    } catch (...) {
      // The first failure is the one to report, not that of a close.
    }
    throw;
  }
}

std::string FileExport::FilterText(std::string_view text) const {
  return page_.frame.procedure(
      "FilterText", [&] { return replaceAll(replaceAll(labels_.ParseText(text), " ", "_"), ",", "_"); });
}

std::int32_t FileExport::VisibleBinCount() const {
  return page_.frame.procedure("VisibleBinCount (Get)", [&] {
    std::int32_t count = 0;
    for (std::int32_t row = 1; row <= table_.NumRows(); ++row) count += table_.IsRowHidden(row) ? 0 : 1;
    return count;
  });
}

std::int32_t FileExport::VisibleSampleCount() const {
  return page_.frame.procedure("VisibleSampleCount (Get)", [&] {
    std::int32_t count = 0;
    for (std::int32_t col = table_.m_lFirstSampleCol; col <= table_.NumCols(); ++col) {
      count += table_.IsColHidden(col) ? 0 : 1;
    }
    return count;
  });
}

}  // namespace banddesk
