#include "desktop/grid/cell_texts.h"

#include <algorithm>

#include "desktop/base/qt_text.h"
#include "desktop/grid/qt_text_measure.h"

namespace banddesk::desktop {
namespace {

constexpr QChar kEllipsis(0x2026);
constexpr std::size_t kMostTexts = 4096;  // more than a screen shows, and a few megabytes

}  // namespace

CellTexts::CellTexts(const QFont& base, double size)
    : size_(size), font_(cellFont(base, size)), metrics_(font_) {}

ReadyText CellTexts::make(const QString& text) const {
  ReadyText ready;
  // A text of a table is never markup.
  ready.shown.setTextFormat(Qt::PlainText);
  ready.shown.setText(text);
  ready.shown.prepare({}, font_);
  ready.width = ready.shown.size().width();
  return ready;
}

const ReadyText& CellTexts::ready(std::string_view text, int room) {
  auto known = whole_.find(text);
  if (known == whole_.end()) {
    if (whole_.size() >= kMostTexts) whole_.clear();
    QString line = toQString(text);
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    known = whole_.emplace(std::string(text), make(line)).first;
  }
  return known->second.width <= room ? known->second : cut(text, room);
}

const ReadyText& CellTexts::cut(std::string_view text, int room) {
  std::string key = std::to_string(room) + ' ';
  key += text;
  const auto known = cut_.find(key);
  if (known != cut_.end()) return known->second;
  if (cut_.size() >= kMostTexts) cut_.clear();
  QString line = toQString(text);
  line.replace(QLatin1Char('\n'), QLatin1Char(' '));
  const QString elided = metrics_.elidedText(line, Qt::ElideRight, room);
  // A column too narrow even for that still tells that there is something, as far as its margins hold it.
  ReadyText made = make(elided.isEmpty() ? QString(kEllipsis) : elided);
  if (made.width > room + 2 * kCellMargin) made = make({});
  made.isCut = true;
  return cut_.emplace(std::move(key), std::move(made)).first->second;
}

void CellFonts::setBase(const QFont& font) {
  base_ = font;
  sizes_.clear();
}

CellTexts& CellFonts::at(double size) {
  const auto known =
      std::ranges::find_if(sizes_, [size](const auto& texts) { return texts->size() == size; });
  if (known != sizes_.end()) return **known;
  return *sizes_.emplace_back(std::make_unique<CellTexts>(base_, size));
}

}  // namespace banddesk::desktop
