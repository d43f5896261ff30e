#include "host/import/fields.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <algorithm>
#include <bit>

#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

// A stray quote must not make every row search the whole rest of a large file.
constexpr std::ptrdiff_t longestQuoted = 64 * 1024;

#if defined(__SSE2__)
constexpr std::ptrdiff_t blockSize = sizeof(__m128i);

/// Sets a field from all that stands between two tabs; false when its quotes need a closer look.
inline bool setPlain(Field& field, const char* from, const char* to) {
  while (from != to && *from == ' ') ++from;
  while (from != to && to[-1] == ' ') --to;
  field.quoted = from != to && *from == '"';
  if (field.quoted) {
    if (to - from < 3 || to[-1] != '"' || to[-2] == '"') return false;
    ++from;
    --to;
    if (findOrEnd(from, to, '"') != to) return false;
    field.text = trimmed({from, static_cast<std::size_t>(to - from)});
    return true;
  }
  field.text = {from, static_cast<std::size_t>(to - from)};
  return true;
}

inline bool finishPlain(Row& row, std::size_t count) {
  row.count = count;
  return true;
}
#endif

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
  if (!cutPlainFields(row, wanted)) cutFields(row, wanted);
  at_ = lineEnd_ == end_ ? end_ : lineEnd_ + 1;
  ++line_;
  return true;
}

void RowCursor::setLineEnd() {
  lineEnd_ = findOrEnd(at_, end_, '\n');
  contentEnd_ = lineEnd_ != at_ && lineEnd_[-1] == '\r' ? lineEnd_ - 1 : lineEnd_;
}

/// The fast way for tab-separated rows, which are most of all rows in large tables: tabs alone decide. False,
/// with nothing done, where a quoted field holds a tab, or too near to the text's end for whole blocks.
bool RowCursor::cutPlainFields(Row& row, std::size_t wanted) {
#if defined(__SSE2__)
  if (separator_ != '\t' || end_ - contentEnd_ < blockSize) return false;
  if (row.fields.size() < wanted) {
    if (wanted == allFields) return false;
    row.fields.resize(wanted);
  }
  Field* field = row.fields.data();
  Field* const last = field + wanted;
  const char* from = at_;
  const __m128i tabs = _mm_set1_epi8('\t');
  for (const char* block = at_; block < contentEnd_; block += blockSize) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    auto found = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, tabs)));
    for (; found != 0; found &= found - 1) {
      const char* tab = block + std::countr_zero(found);
      if (tab >= contentEnd_) break;
      if (!setPlain(*field, from, tab)) return false;
      if (++field == last) return finishPlain(row, wanted);
      from = tab + 1;
    }
  }
  if (!setPlain(*field, from, contentEnd_)) return false;
  return finishPlain(row, static_cast<std::size_t>(field + 1 - row.fields.data()));
#else
  static_cast<void>(row);
  static_cast<void>(wanted);
  return false;
#endif
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
  while (separator_ != ' ' && at_ != contentEnd_ && *at_ == ' ') ++at_;
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
    while (separator_ != ' ' && after != end_ && *after == ' ') ++after;
    return after == end_ || *after == separator_ || *after == '\n' || *after == '\r' ? quote : nullptr;
  }
  return nullptr;
}

}  // namespace banddesk::host::import
