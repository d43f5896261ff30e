// Paints a drawing on any painter, in light or dark colours. It holds no state of a view.
#pragma once

#include <QPainter>
#include <optional>
#include <set>

#include "desktop/views/plot_painter.h"
#include "host/pictures/drawing.h"

namespace banddesk::desktop {

// What stands out of a drawing, and in which colour.
struct Emphasis {
  std::set<std::size_t> samples;
  std::optional<std::size_t> locus;
  QColor color;
};

// The parts that meet `clip`, in the drawing's own units. Of the look fonts and colours count.
void paintDrawing(QPainter& painter, const host::pictures::Drawing& drawing, const PlotLook& look,
                  const QRectF& clip, const Emphasis& emphasis = {});

}  // namespace banddesk::desktop
