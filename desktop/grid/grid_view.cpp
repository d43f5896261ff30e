#include "desktop/grid/grid_view.h"

#include <QEvent>
#include <QHelpEvent>
#include <QPaintEvent>
#include <QScrollBar>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "desktop/base/qt_text.h"
#include "desktop/grid/grid_accessible.h"
#include "desktop/grid/grid_keys.h"
#include "desktop/grid/grid_painter.h"

namespace banddesk::desktop {
namespace {

// Comes before the next paint. The toolkit's own request for a layout would paint the scroll bars each time.
constexpr QEvent::Type kFollow = QEvent::User;
constexpr int kScrollInterval = 40;  // ms between steps while the pointer rests beyond the edge

// How many pixels what is shown moved from one layout to the other; nothing if they share no line.
std::optional<int> shift(const LineLayout& before, const LineLayout& after) {
  if (before.scrollStart() != after.scrollStart() || before.room() != after.room()) return {};
  const auto firstOf = [](const LineLayout& layout) {
    return std::ranges::find(layout.lines(), layout.scrollStart(), &ShownLine::start);
  };
  const auto former = firstOf(before);
  const auto now = firstOf(after);
  if (former == before.lines().end() || now == after.lines().end()) return {};
  if (const ShownLine* same = before.find(now->position)) return now->start - same->start;
  if (const ShownLine* same = after.find(former->position)) return same->start - former->start;
  return {};
}

}  // namespace

GridView::GridView(host::GridControl& grid, QWidget* parent)
    : QAbstractScrollArea(parent), grid_(grid), pull_(grid), mouse_(*this), editor_(*this) {
  installGridAccessibility();
  setFocusPolicy(Qt::StrongFocus);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
  viewport()->setMouseTracking(true);
  fonts_.setBase(font());
  repaint_ = grid_.Repaint.connect([this] { refresh(); });
}

GridView::~GridView() { editor_.end(false); }

bool GridView::guarded(const std::function<bool()>& handle) {
  try {
    return handle();
  } catch (...) {
    // The toolkit cannot carry it any farther.
    const Error error = currentError();
    if (onError) onError(error);
    return true;
  }
}

bool GridView::event(QEvent* event) {
  return guarded([this, event] {
    if (event->type() == kFollow) {
      followGrid();
      return true;
    }
    if (event->type() == QEvent::ShortcutOverride && GridKeys(*this).wants(*static_cast<QKeyEvent*>(event))) {
      event->accept();
      return true;
    }
    return QAbstractScrollArea::event(event);
  });
}

bool GridView::viewportEvent(QEvent* event) {
  return guarded([this, event] {
    if (event->type() == QEvent::ToolTip) {
      const auto* help = static_cast<QHelpEvent*>(event);
      return showToolTip(help->pos(), help->globalPos());
    }
    return QAbstractScrollArea::viewportEvent(event);
  });
}

void GridView::refresh() {
  isOutdated_ = true;
  viewport()->update();
  // Many changes in a row are followed once.
  if (!std::exchange(isFollowPosted_, true)) QCoreApplication::postEvent(this, new QEvent(kFollow));
}

const GridLayout& GridView::geometry() {
  if (isOutdated_) arrange();
  return layout_;
}

int GridView::rowHeight() {
  double height = fonts_.at(0).height();
  const auto fit = [&](const StyleAttributes& style) {
    if (style.font) height = std::max(height, fonts_.at(style.font->size).height());
  };
  fit(grid_.ColHeaderStyle().attributes());
  fit(grid_.RowHeaderStyle().attributes());
  const host::Looks& looks = grid_.looks();
  for (int style = 1; style <= looks.registeredCount(); ++style)
    fit(looks.registeredStyle(style).attributes());
  return static_cast<int>(std::ceil(height * 1.25)) + 1;
}

void GridView::arrange() {
  isOutdated_ = false;
  layout_.arrange(grid_, viewport()->size(), rowHeight());
  grid_.setViewSize(layout_.rows.scrolledWhole(), layout_.cols.scrolledWhole());
}

void GridView::followGrid() {
  isFollowPosted_ = false;
  geometry();
  isFollowing_ = true;
  const auto follow = [](QScrollBar* bar, const LineLayout& lines) {
    bar->setRange(0, lines.scrollMaximum());
    bar->setPageStep(lines.scrolledWhole());
    bar->setValue(lines.scrollValue());
  };
  follow(verticalScrollBar(), layout_.rows);
  follow(horizontalScrollBar(), layout_.cols);
  isFollowing_ = false;
  editor_.place();
}

void GridView::resizeEvent(QResizeEvent*) {
  arrange();
  followGrid();
}

void GridView::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  const QEvent::Type type = event->type();
  if (type == QEvent::FontChange || type == QEvent::StyleChange) fonts_.setBase(font());
  if (type == QEvent::FontChange || type == QEvent::StyleChange || type == QEvent::PaletteChange) refresh();
}

void GridView::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  // A table under work is half made: what shows stays until it is done, be it behind a question.
  if (grid_.isLocked()) {
    if (viewport()->size() != paintedSize_) painter.fillRect(viewport()->rect(), palette().base());
    return;
  }
  const GridLayout& layout = geometry();
  paintedSize_ = viewport()->size();
  for (const QRect& part : event->region()) {
    GridPainter(grid_, layout, fonts_, palette()).paint(painter, part, mouse_.marks(), hasFocus());
  }
}

void GridView::scrollContentsBy(int, int) {
  if (isFollowing_) return;
  const GridLayout before = geometry();
  grid_.SetTopRow(before.rows.atScrollValue(grid_.rowAxis(), verticalScrollBar()->value()));
  grid_.SetLeftCol(before.cols.atScrollValue(grid_.colAxis(), horizontalScrollBar()->value()));
  arrange();
  blit(before);
  editor_.place();
}

// What is drawn over the cells, or sticks to the edge, does not move with them.
bool GridView::isScrollable(const GridLayout& layout) const {
  const host::Block shown = layout.scrolledCells();
  const auto& covered = grid_.coverings().all();
  return mouse_.marks().isEmpty() &&
         std::ranges::none_of(covered, [&](const host::Block& block) { return block.meets(shown); });
}

void GridView::blit(const GridLayout& before) {
  const auto dx = shift(before.cols, layout_.cols);
  const auto dy = shift(before.rows, layout_.rows);
  if (!dx || !dy || (*dx != 0 && *dy != 0) || !isScrollable(before) || !isScrollable(layout_)) {
    viewport()->update();
    return;
  }
  if (*dx != 0) viewport()->scroll(*dx, 0, layout_.scrolled(Axis::Columns));
  if (*dy != 0) viewport()->scroll(0, *dy, layout_.scrolled(Axis::Rows));
}

QRect GridView::cellRect(std::int32_t row, std::int32_t col) {
  return geometry().rectOf(wholeCell(grid_, {row, col})) & viewport()->rect();
}

Hit GridView::hit(QPoint pixel) {
  return geometry().hit(pixel,
                        std::max(style()->pixelMetric(QStyle::PM_SplitterWidth, nullptr, this) / 2, 4));
}

void GridView::showCell(CellPlace cell) {
  const GridLayout& layout = geometry();
  followGrid();
  const auto scroll = [](QScrollBar* bar, const LineLayout& lines, const host::LineAxis& axis,
                         Position line) {
    const Position first = lines.firstToShow(axis, line);
    bar->setValue(axis.visibility.visibleUpTo(first - 1) - axis.visibility.visibleUpTo(lines.frozen()));
  };
  scroll(verticalScrollBar(), layout.rows, grid_.rowAxis(), cell.row);
  scroll(horizontalScrollBar(), layout.cols, grid_.colAxis(), cell.col);
}

QString GridView::currentText() const {
  const Position row = grid_.currentRow();
  const Position col = grid_.currentCol();
  const std::string text = host::shownText(grid_.look(row, col), grid_.GetCurrentCellText(row, col));
  const std::string column = grid_.GetValue(0, grid_.ColHeadersVisible() ? col : 0);
  const std::string line = grid_.GetValue(grid_.RowHeadersVisible() ? row : 0, 0);
  QString said = toQString(text);
  for (const std::string& header : {column, line}) {
    if (!header.empty() && row > 0 && col > 0) said += QStringLiteral(", ") + toQString(header);
  }
  return said;
}

void GridView::tellCurrent() { announceCurrentCell(*this); }

void GridView::openMenu(CellPlace cell, QPoint pixel) {
  menuPosition_ = viewport()->mapToGlobal(pixel);
  grid_.user().rightClick(cell.row, cell.col);
}

CellPlace GridView::cellOfMenu() const {
  const CellPlace current{grid_.currentRow(), grid_.currentCol()};
  if (grid_.selection().blocks().empty()) return current;
  host::Block block = grid_.selection().blocks().back();
  const bool hasAllRows = block.top <= 1 && block.bottom >= grid_.RowCount();
  const bool hasAllColumns = block.left <= 1 && block.right >= grid_.ColCount();
  if (hasAllRows == hasAllColumns) return current;
  const Axis axis = hasAllRows ? Axis::Columns : Axis::Rows;
  const Position at = axis == Axis::Rows ? current.row : current.col;
  const Position line = block.first(axis) <= at && at <= block.last(axis) ? at : block.first(axis);
  if (menuCell) return menuCell(axis, line);
  return axis == Axis::Rows ? CellPlace{line, 0} : CellPlace{0, line};
}

void GridView::openMenuOfSelected() {
  const CellPlace cell = cellOfMenu();
  const QRect rect = cellRect(cell.row, cell.col);
  openMenu(cell, rect.isEmpty() ? viewport()->rect().center() : rect.bottomLeft());
}

// A tip is plain text, so all of it is escaped: a header may hold whatever a sample was called.
bool GridView::showToolTip(const QPoint& pixel, const QPoint& onScreen) {
  const GridLayout& layout = geometry();
  const ShownLine* const row = layout.rows.at(pixel.y());
  const ShownLine* const col = layout.cols.at(pixel.x());
  std::string tip;
  QRect rect;
  if (row != nullptr && col != nullptr) {
    const host::Block cell = wholeCell(grid_, {row->position, col->position});
    rect = layout.rectOf(cell);
    tip = grid_.GetToolTip(cell.top, cell.left);
    const StyleAttributes& look = grid_.look(cell.top, cell.left);
    if (tip.empty()) tip = look.styleToolTip.value_or(std::string());
    if (tip.empty() && GridPainter::isCut(grid_, cell, rect, fonts_)) {
      tip = host::shownText(look, grid_.GetValue(cell.top, cell.left));
    }
  }
  if (tip.empty()) {
    QToolTip::hideText();
  } else {
    QToolTip::showText(onScreen, Qt::convertFromPlainText(toQString(tip), Qt::WhiteSpaceNormal), viewport(),
                       rect);
  }
  return true;
}

void GridView::keyPressEvent(QKeyEvent* event) {
  if (!GridKeys(*this).press(*event)) QAbstractScrollArea::keyPressEvent(event);
}

bool GridView::cancelMouse() {
  if (!mouse_.isActive()) return false;
  mouse_.cancel();
  return true;
}

void GridView::startScrolling() {
  if (!scrolling_.isActive()) scrolling_.start(kScrollInterval, this);
}

void GridView::timerEvent(QTimerEvent* event) {
  if (event->timerId() == scrolling_.timerId()) return mouse_.scrollOn();
  QAbstractScrollArea::timerEvent(event);
}

void GridView::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
  tellCurrent();
}

void GridView::focusOutEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusOutEvent(event);
  viewport()->update();
}

void GridView::hideEvent(QHideEvent* event) {
  mouse_.cancel();
  QAbstractScrollArea::hideEvent(event);
}

}  // namespace banddesk::desktop
