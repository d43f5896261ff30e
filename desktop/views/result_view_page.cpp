#include "desktop/views/result_view_page.h"

#include <QApplication>
#include <QClipboard>
#include <QPainter>
#include <algorithm>
#include <numeric>
#include <utility>

#include "desktop/base/qt_text.h"
#include "desktop/dialogs/file_dialog.h"
#include "desktop/views/figure_size_dialog.h"

namespace banddesk::desktop {
namespace {

constexpr double kZoomStep = 1.5;
constexpr double kMarginShare = 0.02;  // beside the first and the last fragment
constexpr double kLeastMargin = 2;     // nt

std::vector<std::int32_t> resultIds(const TraceSet& traces) {
  std::vector<std::int32_t> ids;
  ids.reserve(traces.samples.size());
  for (const TraceSample& sample : traces.samples) ids.push_back(sample.resultId);
  return ids;
}

bool hasDye(const TraceSet& traces, std::size_t dye) {
  return std::ranges::any_of(traces.samples, [&](const TraceSample& sample) {
    return !sample.dyes[dye].sizes.empty() || sample.dyes[dye].hasCurve();
  });
}

QIcon dyeIcon(const QColor& color, int side) {
  QPixmap pixmap(side, side);
  pixmap.fill(color);
  return pixmap;
}

}  // namespace

ResultViewPage::ResultViewPage(host::Host& host, ViewContent content, ViewActions actions, QWidget* parent)
    : QWidget(parent),
      content_(std::move(content)),
      actions_(std::move(actions)),
      link_(new TableLink(host, resultIds(*content_.traces), this)),
      column_(new QVBoxLayout(this)),
      tools_(new QToolBar(this)),
      trouble_(new QLabel(this)),
      automatic_(new QCheckBox(QStringLiteral("Automatic height"), this)) {
  setAccessibleName(content_.caption);
  trouble_->setVisible(false);
  trouble_->setWordWrap(true);
  trouble_->setTextFormat(Qt::PlainText);
  column_->addWidget(tools_);
  column_->addWidget(trouble_);
  makeTools();
  link_->showError = [this](const Error& error) { showError(error); };
  connect(link_, &TableLink::changed, this, [this] { bandsChanged(); });
  Span whole = sizeExtent(traces(), everySample()).value_or(Span{0, 500});
  const double margin = std::max(whole.length() * kMarginShare, kLeastMargin);
  axis_->setWhole({whole.low - margin, whole.high + margin});
}

std::vector<std::size_t> ResultViewPage::everySample() const {
  std::vector<std::size_t> all(traces().samples.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  return all;
}

PlotView* ResultViewPage::makePlot(QWidget* parent) {
  auto* plot = new PlotView(axis_, parent);
  plot->setDyes(dyes());
  plot->setBands(link_->bands());
  plot->setLegend(legend_->isChecked());
  plot->setAutomaticHeight(automatic_->isChecked());
  connect(plot, &PlotView::heightsChanged, this, [this, plot] { heightsChanged(*plot); });
  plots_.push_back(plot);
  return plot;
}

void ResultViewPage::heightsChanged(const PlotView& plot) {
  automatic_->setChecked(plot.isAutomaticHeight());
}

QSize ResultViewPage::panelSize(const QWidget& plot) {
  return {std::max(plot.width(), 640), std::max(plot.height(), 120)};
}

void ResultViewPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  link_->look();
}

// ---- tools

void ResultViewPage::makeTools() {
  tools_->setAccessibleName(QStringLiteral("Plot tools"));
  tools_->setToolButtonStyle(Qt::ToolButtonTextOnly);
  addTool(QStringLiteral("Zoom &In"), QStringLiteral("Shows fewer sizes (+, or the wheel)"),
          [this] { axis_->zoom(kZoomStep, axis_->shown().middle()); });
  addTool(QStringLiteral("Zoom &Out"), QStringLiteral("Shows more sizes (-, or the wheel)"),
          [this] { axis_->zoom(1 / kZoomStep, axis_->shown().middle()); });
  addTool(QStringLiteral("Show &All"),
          QStringLiteral("Shows all sizes and heights (Home, or a double click)"), [this] {
            axis_->showAll();
            automatic_->setChecked(true);
          });
  tools_->addSeparator();
  makeDyeBoxes();
  tools_->addSeparator();
  automatic_->setChecked(true);
  automatic_->setToolTip(
      QStringLiteral("The highest peak that is shown fills the plot (Ctrl and the wheel change the height)"));
  connect(automatic_, &QCheckBox::toggled, this, [this](bool isChecked) {
    for (PlotView* plot : plots()) plot->setAutomaticHeight(isChecked);
  });
  tools_->addWidget(automatic_);
  legend_ = addCheck(QStringLiteral("&Legend"), QStringLiteral("The names of the dyes beside their colours"),
                     [this](bool isShown) {
                       for (PlotView* plot : plots()) plot->setLegend(isShown);
                     });
  tools_->addSeparator();
  addTool(QStringLiteral("&Export..."), QStringLiteral("Writes the plot as PNG, SVG or PDF"),
          [this] { exportAsked(); });
  addTool(QStringLiteral("&Copy Picture"), QStringLiteral("Copies the plot to the clipboard (Ctrl+C)"),
          [this] { copyPicture(); })
      ->setShortcut(QKeySequence::Copy);
}

QAction* ResultViewPage::addTool(const QString& text, const QString& tip,
                                 const std::function<void()>& triggered) {
  QAction* action = tools_->addAction(text);
  action->setToolTip(tip);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  addAction(action);
  connect(action, &QAction::triggered, this, triggered);
  return action;
}

QAction* ResultViewPage::addCheck(const QString& text, const QString& tip,
                                  const std::function<void(bool)>& toggled) {
  QAction* action = tools_->addAction(text);
  action->setCheckable(true);
  action->setChecked(true);
  action->setToolTip(tip);
  connect(action, &QAction::toggled, this, toggled);
  return action;
}

void ResultViewPage::makeDyeBoxes() {
  const PlotLook look = PlotLook::ofPalette(palette(), font());
  Dyes chosen{};
  for (std::size_t dye = 0; dye < dyeBoxes_.size(); ++dye) {
    const DyeLook& shown = traces().dyes[dye];
    auto* box = new QCheckBox(toQString(shown.name), this);
    box->setAccessibleName(QStringLiteral("Dye ") + toQString(shown.name));
    box->setIcon(dyeIcon(look.curve(shown), QFontMetrics(font()).height() * 2 / 3));
    box->setEnabled(hasDye(traces(), dye));
    chosen[dye] = box->isEnabled() && shown.isVisible;
    tools_->addWidget(box);
    dyeBoxes_[dye] = box;
  }
  const bool hasChoice = std::ranges::count(chosen, true) > 0;
  for (std::size_t dye = 0; dye < dyeBoxes_.size(); ++dye) {
    dyeBoxes_[dye]->setChecked(hasChoice ? chosen[dye] : dyeBoxes_[dye]->isEnabled());
    connect(dyeBoxes_[dye], &QCheckBox::toggled, this, [this] { dyesChanged(); });
  }
}

// ---- dyes and bins

Dyes ResultViewPage::dyes() const {
  Dyes chosen{};
  for (std::size_t dye = 0; dye < chosen.size(); ++dye) chosen[dye] = dyeBoxes_[dye]->isChecked();
  return chosen;
}

void ResultViewPage::setDyes(const Dyes& dyes) {
  for (std::size_t dye = 0; dye < dyes.size(); ++dye) {
    const QSignalBlocker quiet(dyeBoxes_[dye]);
    dyeBoxes_[dye]->setChecked(dyes[dye]);
  }
  dyesChanged();
}

void ResultViewPage::dyesChanged() {
  for (PlotView* plot : plots()) plot->setDyes(dyes());
}

void ResultViewPage::bandsChanged() {
  for (PlotView* plot : plots()) plot->setBands(link_->bands());
}

// ---- output

void ResultViewPage::guarded(const std::function<void()>& work) {
  try {
    trouble_->setVisible(false);
    work();
  } catch (...) {
    showError(currentError());
  }
}

void ResultViewPage::showError(const Error& error) {
  if (actions_.showError) {
    actions_.showError(error);
    return;
  }
  trouble_->setText(toQString(error.description()));
  trouble_->setVisible(true);
}

void ResultViewPage::exportAsked() {
  const Figure whole = figure();
  const auto size =
      askFigureSize(this, whole.panel.width(), whole.panel.height() * std::max(whole.panels, 1));
  if (!size) return;
  QString suggested = content_.caption;
  suggested.replace(QLatin1Char('/'), QLatin1Char('_'));
  const QString name =
      askSaveFile(this, QStringLiteral("Export Plot"), suggested + size->ending, size->filter());
  if (!name.isEmpty()) exportTo(name, *size);
}

void ResultViewPage::exportTo(const QString& fileName, const FigureSize& size) {
  guarded([&] { writeFigure(figure(), fileName, size); });
}

void ResultViewPage::copyPicture() {
  guarded([&] { QApplication::clipboard()->setImage(figureImage(figure())); });
}

}  // namespace banddesk::desktop
