// The widths of texts in the application's font, for fitting columns, and that font at a grid's sizes. The
// grid's default size stands for the application's own size; other sizes go in proportion, so that whoever
// needs large type gets all of it large.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <array>
#include <memory>
#include <vector>

#include "host/grid/grid_ports.h"

namespace banddesk::desktop {

// The given font at a grid's font size.
QFont cellFont(const QFont& base, double size);

class QtTextMeasure final : public host::TextMeasure {
 public:
  QtTextMeasure();
  ~QtTextMeasure() override;
  double width(std::string_view text, const GridFont& font) const override;

 private:
  // A font with the advances of its ASCII characters: nearly all texts of a table are sums of these.
  struct Measured {
    double size;
    QFontMetricsF metrics;
    std::array<double, 128> advances;
  };
  const Measured& measured(double size) const;

  mutable QFont base_;
  mutable std::vector<std::unique_ptr<Measured>> fonts_;
};

}  // namespace banddesk::desktop
