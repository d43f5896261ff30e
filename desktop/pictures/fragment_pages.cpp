// The pictures of fragments: histograms, plates, pseudo-gel.
#include <algorithm>
#include <numeric>

#include "desktop/base/qt_text.h"
#include "desktop/pictures/picture_pages.h"
#include "desktop/views/trace_model.h"
#include "host/pictures/histogram.h"
#include "host/pictures/plate.h"
#include "host/statistics/clustering.h"
#include "plugin/base/numbers.h"

namespace banddesk::desktop {
namespace {

using namespace host::pictures;
using host::statistics::BandMatrix;

// From the study, in this thread.
LaneFragments fragmentsOf(const AFLP& analysis, const host::PlainTable& table) {
  LaneFragments lanes;
  for (const std::int32_t id : table.results) {
    auto& lane = lanes.emplace_back();
    const TraceSample sample = traceSample(*analysis.Results.Item(integerText(id)));
    for (std::size_t dye = 0; dye < sample.dyes.size(); ++dye) {
      for (std::size_t i = 0; i < sample.dyes[dye].sizes.size(); ++i)
        lane.push_back({sample.dyes[dye].sizes[i], sample.dyes[dye].heights[i], dye});
    }
  }
  return lanes;
}

std::array<bool, host::kDyeCount> dyesOf(const std::array<QCheckBox*, host::kDyeCount>& boxes) {
  std::array<bool, host::kDyeCount> dyes{};
  for (std::size_t dye = 0; dye < dyes.size(); ++dye) dyes[dye] = boxes[dye]->isChecked();
  return dyes;
}

// What a sample's fragments of the chosen dyes come to.
double heightsOf(const std::vector<GelFragment>& lane, const std::array<bool, host::kDyeCount>& dyes) {
  double sum = 0;
  for (const GelFragment& fragment : lane) sum += dyes[fragment.dye] ? fragment.height : 0;
  return sum;
}

std::size_t countOf(const std::vector<GelFragment>& lane, const std::array<bool, host::kDyeCount>& dyes) {
  return static_cast<std::size_t>(
      std::ranges::count_if(lane, [&](const GelFragment& fragment) { return dyes[fragment.dye]; }));
}

std::vector<std::size_t> countsOf(const LaneFragments& lanes, const std::array<bool, host::kDyeCount>& dyes) {
  std::vector<std::size_t> counts;
  for (const auto& lane : lanes) counts.push_back(countOf(lane, dyes));
  return counts;
}

}  // namespace

PicturePage::DyeBoxes PicturePage::addDyeBoxes(void (PicturePage::*changed)()) {
  DyeBoxes boxes{};
  for (std::size_t dye = 0; dye < boxes.size(); ++dye)
    boxes[dye] =
        addCheck(QStringLiteral("D%1").arg(dye + 1), QStringLiteral("Fragments of this dye"), true, changed);
  return boxes;
}

// ---- histograms

HistogramPage::HistogramPage(const PictureSubject& subject, QWidget* parent)
    : PicturePage(subject, parent),
      what_(addChoice(QStringLiteral("&Of:"),
                      {QStringLiteral("Fragments of a sample"), QStringLiteral("Sizes of fragments")},
                      &HistogramPage::redraw)),
      width_(new QDoubleSpinBox(this)),
      dyes_(addDyeBoxes(&HistogramPage::redraw)) {
  width_->setRange(0.5, 100);
  width_->setValue(10);
  width_->setSuffix(QStringLiteral(" nt"));
  connect(width_, &QDoubleSpinBox::valueChanged, this, &HistogramPage::redraw);
  addOption(QStringLiteral("C&lass:"), width_);
}

BackgroundWork::Work HistogramPage::calculation(std::shared_ptr<const Table> table) {
  auto fragments = std::make_shared<LaneFragments>(fragmentsOf(analysis(), *table));
  return [this, fragments](const auto&) { return [this, fragments] { fragments_ = *fragments; }; };
}

Drawing HistogramPage::draw(const Table&, const Bands& bands) const {
  const auto dyes = dyesOf(dyes_);
  width_->setEnabled(what_->currentIndex() == 1);
  if (what_->currentIndex() == 0) return countHistogramOf(bands, countsOf(fragments_, dyes));
  std::vector<double> sizes;
  for (const auto& lane : fragments_) {
    for (const GelFragment& fragment : lane) {
      if (dyes[fragment.dye]) sizes.push_back(fragment.size);
    }
  }
  return sizeHistogramOf(sizes, width_->value());
}

// ---- plates

PlatePage::PlatePage(const PictureSubject& subject, QWidget* parent)
    : PicturePage(subject, parent),
      figure_(addChoice(
          QStringLiteral("&Figure:"),
          {QStringLiteral("Fragments"), QStringLiteral("Mean height"), QStringLiteral("Sum of heights")},
          &PlatePage::redraw)),
      dyes_(addDyeBoxes(&PlatePage::redraw)) {}

BackgroundWork::Work PlatePage::calculation(std::shared_ptr<const Table> table) {
  auto fragments = std::make_shared<LaneFragments>(fragmentsOf(analysis(), *table));
  return [this, fragments](const auto&) { return [this, fragments] { fragments_ = *fragments; }; };
}

Drawing PlatePage::draw(const Table&, const Bands& bands) const {
  const auto dyes = dyesOf(dyes_);
  std::vector<double> figures;
  for (const auto& lane : fragments_) {
    const auto count = static_cast<double>(countOf(lane, dyes));
    const double heights = heightsOf(lane, dyes);
    const int figure = figure_->currentIndex();
    figures.push_back(figure == 0 ? count : figure == 2 ? heights : count > 0 ? heights / count : 0);
  }
  static constexpr const char* names[] = {"fragments", "mean height (RFU)", "sum of heights (RFU)"};
  return platesOf(bands, figures, names[figure_->currentIndex()]);
}

// ---- pseudo-gel

GelPage::GelPage(const PictureSubject& subject, QWidget* parent)
    : PicturePage(subject, parent),
      order_(addChoice(QStringLiteral("&Order:"),
                       {QStringLiteral("Results"), QStringLiteral("Name"), QStringLiteral("Group"),
                        QStringLiteral("Dendrogram")},
                       &GelPage::redraw)),
      dyes_(addDyeBoxes(&GelPage::redraw)),
      hasBins_(addCheck(QStringLiteral("&Bins"), QStringLiteral("The table's bins as lines across"), true,
                        &GelPage::redraw)),
      isSmallOnTop_(addCheck(QStringLiteral("Small on &top"),
                             QStringLiteral("The smallest fragments on top, not at the end as in a gel"),
                             false, &GelPage::redraw)),
      black_(new QSpinBox(this)) {
  black_->setRange(0, 100000);
  black_->setSingleStep(100);
  black_->setSuffix(QStringLiteral(" RFU"));
  black_->setSpecialValueText(QStringLiteral("automatic"));
  black_->setToolTip(QStringLiteral("The height from which a fragment is black"));
  black_->setKeyboardTracking(false);
  connect(black_, &QSpinBox::valueChanged, this, &GelPage::redraw);
  addOption(QStringLiteral("B&lack from:"), black_);
}

// The order of the dendrogram, which one sample or none has not, is that of UPGMA by Jaccard's distances.
BackgroundWork::Work GelPage::calculation(std::shared_ptr<const Table> table) {
  using namespace host::statistics;
  auto fragments = std::make_shared<LaneFragments>(fragmentsOf(analysis(), *table));
  return [this, fragments, table](const Progress& progress) {
    std::vector<std::size_t> order{0};
    if (table->results.size() > 1)
      order = leafOrder(upgma(distances(table->bands, Measure::Jaccard), progress));
    return [this, fragments, order] {
      fragments_ = *fragments;
      treeOrder_ = order;
    };
  };
}

std::vector<std::size_t> GelPage::order(const BandMatrix& bands) const {
  enum Orders { kResults, kName, kGroup, kDendrogram };
  if (order_->currentIndex() == kDendrogram) return treeOrder_;
  std::vector<std::size_t> order(bands.samples.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  if (order_->currentIndex() == kName)
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return bands.samples[i]; });
  if (order_->currentIndex() == kGroup && !bands.groups.empty())
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return bands.groupOf[i]; });
  return order;
}

Drawing GelPage::draw(const Table& table, const Bands& bands) const {
  Gel gel{fragments_, {}};
  for (const host::PlainBin& bin : table.bins) gel.bins.push_back({bin.low, bin.high, bin.dye});
  GelLook look{order(bands), dyesOf(dyes_), hasBins_->isChecked(), isSmallOnTop_->isChecked(),
               static_cast<double>(black_->value())};
  return gelOf(gel, bands, look);
}

}  // namespace banddesk::desktop
