#include "desktop/print/page_preview.h"

#include <QPainter>
#include <algorithm>

#include "desktop/print/page_painter.h"

namespace banddesk::desktop {
namespace {

constexpr int kSurround = 8;  // pixels around the sheet

}  // namespace

class PagePreview::Sheet final : public QWidget {
 public:
  using QWidget::QWidget;

  const PaperChoice* choice = nullptr;
  const PaperLayout* paper = nullptr;
  std::size_t page = 0;

 private:
  void paintEvent(QPaintEvent*) override {
    if (choice == nullptr || page >= paper->layout.pageCount()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), Qt::white);
    const double zoom = width() / choice->paperPoints().width();
    const QRectF room = choice->page.paintRect(QPageLayout::Point);
    painter.scale(zoom, zoom);
    painter.translate(room.topLeft());
    painter.scale(paper->scale, paper->scale);
    PagePainter(paper->layout).paint(painter, page);
  }
};

PagePreview::PagePreview(QWidget* parent) : QScrollArea(parent), sheet_(new Sheet(this)) {
  setAccessibleName(QStringLiteral("Page"));
  setBackgroundRole(QPalette::Dark);
  setAlignment(Qt::AlignCenter);
  setWidget(sheet_);
}

void PagePreview::setPaper(const PaperChoice& choice, const PaperLayout& paper) {
  sheet_->choice = &choice;
  sheet_->paper = &paper;
  fit();
}

void PagePreview::showPage(std::size_t page) {
  sheet_->page = page;
  sheet_->update();
}

void PagePreview::setWholePage(bool isWhole) {
  isWhole_ = isWhole;
  fit();
}

void PagePreview::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  fit();
}

void PagePreview::fit() {
  if (sheet_->choice == nullptr) return;
  const QSizeF points = sheet_->choice->paperPoints();
  const QSizeF room = maximumViewportSize() - QSize(2 * kSurround, 2 * kSurround);
  double zoom = room.width() / points.width();
  if (isWhole_) zoom = std::min(zoom, room.height() / points.height());
  sheet_->resize((points * std::max(zoom, 0.05)).toSize());
  sheet_->update();
}

}  // namespace banddesk::desktop
