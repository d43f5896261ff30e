#include "host/import/fields.h"

#include <algorithm>

#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

// A stray quote must not make every row search the whole rest of a large file.
constexpr std::ptrdiff_t longestQuoted = 64 * 1024;

}  // namespace

std::string plainText(const Field& field) {
  std::string text(field.text);
  if (!field.quoted) return text;
  for (std::size_t at = text.find("\"\""); at != std::string::npos; at = text.find("\"\"", at + 1))
    text.erase(at, 1);
  return text;
}

bool RowCursor::next(Row& row, std::size_t wanted) {
  if (at_ == end_) return false;
  row.line = line_;
  row.count = 0;
  setLineEnd();
  cutFields(row, wanted);
  at_ = lineEnd_ == end_ ? end_ : lineEnd_ + 1;
  ++line_;
  return true;
}

void RowCursor::setLineEnd() {
  lineEnd_ = findOrEnd(at_, end_, '\n');
  contentEnd_ = lineEnd_ != at_ && lineEnd_[-1] == '\r' ? lineEnd_ - 1 : lineEnd_;
}

void RowCursor::cutFields(Row& row, std::size_t wanted) {
  // Past the wanted fields only a quote in spreadsheet text can matter, since it may carry the row over the
  // line's end.
  const auto restMatters = [this] {
    return separator_ != '\t' && findOrEnd(at_, contentEnd_, '"') != contentEnd_;
  };
  while (row.count < wanted || restMatters()) {
    if (row.count == row.fields.size()) row.fields.emplace_back();
    Field& field = row.fields[row.count++];
    while (at_ != contentEnd_ && *at_ == ' ') ++at_;
    if (at_ == contentEnd_ || *at_ != '"' || !readQuoted(field)) {
      const char* fieldEnd = findOrEnd(at_, contentEnd_, separator_);
      field.text = {at_, static_cast<std::size_t>(fieldEnd - at_)};
      while (!field.text.empty() && field.text.back() == ' ') field.text.remove_suffix(1);
      field.quoted = false;
      at_ = fieldEnd;
    }
    if (at_ == contentEnd_) return;
    ++at_;
  }
}

bool RowCursor::readQuoted(Field& field) {
  const char* from = at_ + 1;
  const char* quote = closingQuote(from, contentEnd_);
  if (!quote && separator_ != '\t') quote = closingQuote(from, from + std::min(end_ - from, longestQuoted));
  if (!quote) return false;
  const bool overLines = quote > contentEnd_;
  if (overLines) {
    line_ += static_cast<std::size_t>(std::count(at_, quote, '\n'));
  }
  at_ = quote + 1;
  if (overLines) setLineEnd();
  while (at_ != contentEnd_ && *at_ == ' ') ++at_;
  field.text = trimmed({from, static_cast<std::size_t>(quote - from)});
  field.quoted = true;
  return true;
}

/// The quote that ends a field: the next single one, if a separator or the line's end follows it.
const char* RowCursor::closingQuote(const char* from, const char* to) const {
  for (const char* quote = findOrEnd(from, to, '"'); quote < to;
       quote = findOrEnd(std::min(quote, to), to, '"')) {
    const char* after = quote + 1;
    if (after != end_ && *after == '"') {
      quote = after + 1;
      continue;
    }
    while (after != end_ && *after == ' ') ++after;
    return after == end_ || *after == separator_ || *after == '\n' || *after == '\r' ? quote : nullptr;
  }
  return nullptr;
}

}  // namespace banddesk::host::import
