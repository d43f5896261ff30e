// One table's text with its form, piece by piece, be it of a text file or of a spreadsheet; and a first look
// at the names of its dyes. It makes no samples.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/import/dye_names.h"
#include "host/import/forms.h"
#include "host/import/text_stream.h"

namespace banddesk::host::import {

struct Options;

class TableText {
 public:
  /// Throws ImportError for a file that cannot be read or is no peak table.
  TableText(const std::filesystem::path& file, const Options& options);

  const Form& form() const { return form_; }
  /// Some of the first lines behind the header, for a look ahead.
  std::string_view start() const { return piece_.substr(form_.firstRowOffset); }
  /// The lines behind the header, then further ones until there are none; each valid until the next call.
  std::string_view rows();
  std::string_view next() { return stream_ ? stream_->next() : std::string_view(); }
  std::size_t bytesDone() const { return stream_ ? stream_->bytesDone() : 0; }
  /// The form and the encoding in words.
  std::string description() const;

 private:
  std::optional<TextStream> stream_;
  std::string sheet_;  // where it is a spreadsheet
  std::string_view piece_;
  Form form_;
};

/// Notes the dyes of each sample where the table names dyes as kits do. Looks no further than the first dye
/// where that is a letter or a colour's word. True if it has named any.
bool noteDyeNames(const std::string& file, TableText& text, DyeNames& names);

}  // namespace banddesk::host::import
