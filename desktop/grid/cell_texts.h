// Texts made ready for painting, each once: a table shows the same few numbers again and again. One cache for
// each font size; it forgets all when it has grown too large.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QStaticText>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace banddesk::desktop {

inline constexpr int kCellMargin = 3;  // beside the text; fitted columns have room for it

struct ReadyText {
  QStaticText shown;  // a single line, cut with an ellipsis where it has no room
  double width = 0;
  bool isCut = false;
};

class CellTexts {
 public:
  CellTexts(const QFont& base, double size);

  double size() const { return size_; }
  const QFont& font() const { return font_; }
  double height() const { return metrics_.height(); }
  // Holds until the next call.
  const ReadyText& ready(std::string_view text, int room);

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  using Texts = std::unordered_map<std::string, ReadyText, Hash, std::equal_to<>>;

  ReadyText make(const QString& text) const;
  const ReadyText& cut(std::string_view text, int room);

  double size_;
  QFont font_;
  QFontMetricsF metrics_;
  Texts whole_;
  Texts cut_;  // by room and text
};

// The caches of all sizes of one font.
class CellFonts {
 public:
  void setBase(const QFont& font);
  CellTexts& at(double size);

 private:
  QFont base_;
  std::vector<std::unique_ptr<CellTexts>> sizes_;
};

}  // namespace banddesk::desktop
