#include "host/import/table_text.h"

#include <fmt/format.h>

#include "host/import/fields.h"
#include "host/import/read_files.h"
#include "host/import/spreadsheet.h"

namespace banddesk::host::import {
namespace {

bool startsWithLetters(const TableText& text) {
  const Form& form = text.form();
  RowCursor cursor(text.start(), form.separator);
  Row row;
  while (cursor.next(row, form.columns.wanted())) {
    const DyeCell dye = readDyeCell(row.text(form.columns.dye));
    if (!dye.name.empty()) return dye.dye.has_value();
  }
  return false;
}

}  // namespace

TableText::TableText(const std::filesystem::path& file, const Options& options) {
  if (isZip(file)) {
    sheet_ = sheetText(file, options.sheet);
    piece_ = sheet_;
  } else {
    stream_.emplace(file, options.stretch);
    piece_ = stream_->next();
  }
  form_ = recogniseForm(piece_, file, options.dye.has_value());
}

std::string_view TableText::rows() {
  // A cell of comma-separated text may go on over a line's end, and then over a piece's.
  if (stream_ && form_.separator != '\t') piece_ = stream_->joinRest();
  return start();
}

std::string TableText::description() const {
  if (!stream_) return fmt::format("{}, .xlsx", form_.describe());
  return fmt::format("{}, {}", form_.describe(), stream_->encodingName());
}

bool noteDyeNames(const std::string& file, TableText& text, DyeNames& names) {
  const Form& form = text.form();
  const Columns& columns = form.columns;
  if (columns.dye == Columns::none || startsWithLetters(text)) return false;
  bool hasNames = false;
  Row row;
  std::string_view piece = text.rows();
  do {
    RowCursor cursor(piece, form.separator);
    while (cursor.next(row, columns.wanted())) {
      const auto dye = kitDyeOf(readDyeCell(row.text(columns.dye)).name);
      hasNames = hasNames || dye;
      if (dye)
        names.note(
            fmt::format("{}\n{}\n{}", file, row.text(columns.sampleFile), row.text(columns.sampleName)),
            *dye);
    }
    piece = text.next();
  } while (!piece.empty());
  return hasNames;
}

}  // namespace banddesk::host::import
