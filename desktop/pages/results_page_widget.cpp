#include "desktop/pages/results_page_widget.h"

#include <QEvent>
#include <QGridLayout>
#include <QScrollBar>
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

#include "desktop/controls/flow_layout.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

constexpr int kLines = 3;

// A block of the panel: three lines of the same height.
QGridLayout* makeBlock(QWidget* block) {
  auto* lines = new QGridLayout(block);
  lines->setContentsMargins(0, 0, 0, 0);
  lines->setVerticalSpacing(block->fontMetrics().height() / 4);
  for (int line = 0; line < kLines; ++line) lines->setRowStretch(line, 1);
  return lines;
}

}  // namespace

ResultsPageWidget::ResultsPageWidget(host::Host& host, host::HostPage& page, WidgetRegistry& registry,
                                     PageActions actions, QWidget* parent)
    : BoundPage(host, page, registry, std::move(actions), parent),
      grid_(&control<host::GridControl>(names::kGrid)),
      gridWidget_(this->actions().makeGrid(*grid_, this)) {
  gridWidget_->setAccessibleName(QStringLiteral("AFLP table"));
  registry.add(*grid_, gridWidget_);
  readDesign();
  makePanel();
  binder().drive(control<ui::Timer>(names::kTimer), [this](const auto& work) { runProcedure(work); });
  finish({gridWidget_, shown(names::kMaxBinWidth), shown(names::kYThreshold),
          shown(names::element(names::kDye, 0)), shown(names::element(names::kDye, 1)),
          shown(names::element(names::kDye, 2)), shown(names::element(names::kDye, 3)),
          shown(names::kSampleAxis), shown(names::element(names::kSampleBin, 2)),
          shown(names::element(names::kSampleBin, 0)), shown(names::element(names::kSampleBin, 1)),
          shown(names::kExcludeEmptySamples), shown(names::kExcludeFullBins), shown(names::kShowExcluded),
          shown(names::kShowWellID), shown(names::kShowTimestamp), shown(names::kHelp)});
  setFocusProxy(gridWidget_);
}

ResultsPageWidget::~ResultsPageWidget() {
  if (registry().find(*grid_) == gridWidget_) registry().remove(*grid_);
}

void ResultsPageWidget::readDesign() {
  double top = std::numeric_limits<double>::max();
  double bottom = 0;
  for (const ui::Control* each : controls().all()) {
    if (each == grid_ || !each->hasPlace()) continue;
    bottom = std::max(bottom, each->Top + each->Height);
    if (each->Top >= top) continue;
    top = each->Top;
    design_.first = each;
  }
  const double gridBottom = grid_->Top + grid_->Height;
  design_.panelHeight = bottom - gridBottom;
  design_.gap = top - gridBottom;
}

QWidget* ResultsPageWidget::shown(const std::string& name) const {
  return registry().find(control<ui::Control>(name));
}

void ResultsPageWidget::makePanel() {
  panel_ = new QScrollArea(this);
  panel_->setFrameShape(QFrame::NoFrame);
  panel_->setFocusPolicy(Qt::NoFocus);
  panel_->setWidgetResizable(true);
  auto* content = new QWidget;
  const int space = fontMetrics().height();
  auto* flow = new FlowLayout(content, space * 3 / 2, space / 2);
  flow->setContentsMargins(space / 2, space / 2, space / 2, space / 2);
  for (QWidget* block : {makeNumbers(content), makeSampleAxis(content), makeOptions(content),
                         makeFilters(content), makeLabels(content)}) {
    flow->addWidget(block);
  }
  // The lines of all blocks are as high as the highest control.
  int height = 0;
  for (const QWidget* block : content->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    for (const QWidget* each : block->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      height = std::max(height, each->sizeHint().height());
    }
  }
  for (const QWidget* block : content->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    for (int line = 0; line < kLines; ++line) {
      static_cast<QGridLayout*>(block->layout())->setRowMinimumHeight(line, height);
    }
  }
  panel_->setWidget(content);
}

QWidget* ResultsPageWidget::makeNumbers(QWidget* parent) {
  auto* block = new QWidget(parent);
  auto* lines = makeBlock(block);
  lines->addWidget(binder().make(control<ui::Label>(names::kMaxBinWidthLabel), block), 0, 0);
  lines->addLayout(numberField(names::kMaxBinWidth, names::kMaxBinWidthSpin, block), 0, 1, Qt::AlignLeft);
  lines->addWidget(binder().make(control<ui::Label>(names::kYThresholdLabel), block), 1, 0);
  lines->addLayout(numberField(names::kYThreshold, names::kYThresholdSpin, block), 1, 1, Qt::AlignLeft);
  lines->addWidget(binder().make(control<ui::Label>(names::kDyesLabel), block), 2, 0);
  auto* dyes = new QHBoxLayout;
  dyes->setSpacing(fontMetrics().height() / 4);
  for (int dye = 0; dye < kDyeCount; ++dye)
    dyes->addWidget(check(names::element(names::kDye, dye).c_str(), block));
  lines->addLayout(dyes, 2, 1, Qt::AlignLeft);
  return block;
}

QWidget* ResultsPageWidget::makeSampleAxis(QWidget* parent) {
  auto* block = new QWidget(parent);
  auto* lines = makeBlock(block);
  lines->addWidget(binder().make(control<ui::Label>(names::kSampleAxisLabel), block), 2, 0);
  lines->addWidget(binder().make(control<ui::ComboBox>(names::kSampleAxis), block), 2, 1);
  return block;
}

QWidget* ResultsPageWidget::makeOptions(QWidget* parent) {
  auto* block = new QWidget(parent);
  auto* lines = makeBlock(block);
  lines->addWidget(binder().make(control<ui::OptionButton>(names::element(names::kSampleBin, 2)), block), 0,
                   0);
  lines->addWidget(binder().make(control<ui::OptionButton>(names::element(names::kSampleBin, 0)), block), 1,
                   0);
  lines->addWidget(binder().make(control<ui::OptionButton>(names::element(names::kSampleBin, 1)), block), 2,
                   0);
  return block;
}

QWidget* ResultsPageWidget::makeFilters(QWidget* parent) {
  auto* block = new QWidget(parent);
  auto* lines = makeBlock(block);
  lines->addWidget(check(names::kExcludeEmptySamples, block), 0, 0);
  lines->addWidget(check(names::kExcludeFullBins, block), 1, 0);
  lines->addWidget(check(names::kShowExcluded, block), 2, 0);
  return block;
}

QWidget* ResultsPageWidget::makeLabels(QWidget* parent) {
  auto* block = new QWidget(parent);
  auto* lines = makeBlock(block);
  lines->addWidget(check(names::kShowWellID, block), 0, 0);
  lines->addWidget(check(names::kShowTimestamp, block), 1, 0);
  lines->addWidget(quietBinder().make(control<ui::CommandButton>(names::kHelp), block), 2, 0);
  return block;
}

QWidget* ResultsPageWidget::check(const char* name, QWidget* parent) {
  return binder().make(control<ui::CheckBox>(name), parent);
}

QSize ResultsPageWidget::minimumSizeHint() const {
  const int unit = fontMetrics().height();
  return {10 * unit, 5 * unit};
}

// What its controls need in this width; in a low window at most half of it, so that the table stays in sight,
// but never less than one line of blocks. The rest scrolls.
int ResultsPageWidget::panelHeight() const {
  const auto* flow = panel_->widget()->layout();
  const int least = flow->minimumSize().width();
  const int bar = least > width() ? panel_->horizontalScrollBar()->sizeHint().height() : 0;
  const int natural = flow->heightForWidth(std::max(width(), least)) + bar;
  return std::min(natural, std::max(height() / 2, flow->minimumSize().height() + bar));
}

void ResultsPageWidget::resizeEvent(QResizeEvent* event) {
  BoundPage::resizeEvent(event);
  follow();
}

void ResultsPageWidget::showEvent(QShowEvent* event) {
  BoundPage::showEvent(event);
  follow();
}

void ResultsPageWidget::changeEvent(QEvent* event) {
  BoundPage::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) follow();
}

// Before it is shown a widget does not have the size that it will have.
void ResultsPageWidget::follow() {
  if (panel_ == nullptr || !isVisible() || livingPage() == nullptr) return;
  const Told now{size(), panelHeight()};
  if (now == told_) return;
  told_ = now;
  // The page counts with the panel's height of its design.
  const double height = now.size.height() - now.panelHeight + design_.panelHeight;
  livingPage()->UserControl_Resize(now.size.width(), height);
  placeParts(now.panelHeight);
}

void ResultsPageWidget::placeParts(int panelHeight) {
  const int gridTop = static_cast<int>(std::lround(grid_->Top));
  const int gridHeight = static_cast<int>(std::lround(grid_->Height));
  gridWidget_->setGeometry(0, gridTop, static_cast<int>(std::lround(grid_->Width)), gridHeight);
  gridWidget_->setVisible(gridHeight > 0);
  // In a page that is lower than the panel alone, the panel stays where it can be reached.
  const int top = std::max(static_cast<int>(std::lround(design_.first->Top - design_.gap)), 0);
  panel_->setGeometry(0, top, width(), std::min(panelHeight, height() - top));
}

}  // namespace banddesk::desktop
