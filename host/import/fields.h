// Cuts decoded text into rows and rows into fields, quotes minded. It knows no columns and no forms.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace banddesk::host::import {

/// A view into the text, outer quotes and blanks around the field cut off; doubled quotes within still
/// doubled.
struct Field {
  std::string_view text;
  bool quoted = false;
};

/// The field's text with doubled quotes made single.
std::string plainText(const Field& field);

struct Row {
  std::size_t line = 0;  // 1-based
  std::size_t count = 0;
  std::vector<Field> fields;  // the first `count` are of this row; the rest is room kept from longer rows

  std::string_view text(std::size_t column) const {
    return column < count ? fields[column].text : std::string_view{};
  }
};

/// Several blanks that separate are one. In tab-separated text a quote that does not close on its line is an
/// ordinary character; in the other two, which come from spreadsheets, the field goes on over the line's end.
class RowCursor {
 public:
  static constexpr std::size_t allFields = std::numeric_limits<std::size_t>::max();

  RowCursor(std::string_view text, char separator, std::size_t line = 1)
      : at_(text.data()),
        begin_(text.data()),
        end_(text.data() + text.size()),
        separator_(separator),
        line_(line) {}

  /// Reads the next row, of which only the first `wanted` fields are cut; false at the end of the text.
  bool next(Row& row, std::size_t wanted = allFields);

  std::size_t offset() const { return static_cast<std::size_t>(at_ - begin_); }
  std::size_t line() const { return line_; }

 private:
  bool cutPlainFields(Row& row, std::size_t wanted);
  void cutFields(Row& row, std::size_t wanted);
  bool readQuoted(Field& field);
  const char* closingQuote(const char* from, const char* to) const;
  void setLineEnd();

  const char* at_;
  const char* begin_;
  const char* end_;
  const char* lineEnd_ = nullptr;     // the line feed or the text's end
  const char* contentEnd_ = nullptr;  // without a carriage return
  char separator_;
  std::size_t line_;
};

}  // namespace banddesk::host::import
