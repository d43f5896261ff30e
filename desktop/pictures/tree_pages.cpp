// The pictures that come from distances: scatter, dendrogram, heat map.
#include <fmt/format.h>

#include "desktop/base/qt_text.h"
#include "desktop/pictures/picture_pages.h"
#include "host/pictures/dendrogram.h"
#include "host/pictures/heat_map.h"
#include "host/pictures/scatter.h"

namespace banddesk::desktop {
namespace {

using namespace host::statistics;
using namespace host::pictures;

constexpr std::size_t kAxes = 6;
constexpr int kMostBootstraps = 100000;

QStringList measures() {
  return {QStringLiteral("Jaccard"), QStringLiteral("Dice"), QStringLiteral("Simple matching"),
          QStringLiteral("Euclidean")};
}

Measure measureOf(const QComboBox& box) { return static_cast<Measure>(box.currentIndex()); }

}  // namespace

ScatterPage::ScatterPage(const PictureSubject& subject, QWidget* parent)
    : PicturePage(subject, parent),
      measure_(addChoice(QStringLiteral("&Distance:"), measures(), &ScatterPage::recalculate)),
      squareRoot_(addCheck(QStringLiteral("S&quare root"),
                           QStringLiteral("Of the distances, which gives no negative eigenvalues"), false,
                           &ScatterPage::recalculate)),
      across_(addChoice(QStringLiteral("&Axes:"), {}, &ScatterPage::redraw)),
      up_(addChoice({}, {}, &ScatterPage::redraw)) {
  up_->setAccessibleName(QStringLiteral("Axis upwards"));
  for (QComboBox* box : {across_, up_}) box->setMinimumContentsLength(9);
}

BackgroundWork::Work ScatterPage::calculation(std::shared_ptr<const Table> table) {
  const Scale scale = squareRoot_->isChecked() ? Scale::SquareRoot : Scale::AsIs;
  return [this, table, scale, measure = measureOf(*measure_)](const Progress& progress) {
    auto made = std::make_shared<Ordination>(
        principalCoordinates(distances(table->bands, measure), scale, kAxes, progress));
    return [this, made] {
      ordination_ = *made;
      fillAxes();
    };
  };
}

void ScatterPage::fillAxes() {
  int chosen = 0;
  for (QComboBox* box : {across_, up_}) {
    const QSignalBlocker quiet(box);
    const int before = box->currentIndex() < 0 ? chosen : box->currentIndex();
    box->clear();
    for (std::size_t axis = 0; axis < ordination_->axes.size(); ++axis)
      box->addItem(QStringLiteral("%1 (%2 %)").arg(axis + 1).arg(ordination_->percent(axis), 0, 'f', 1));
    box->setCurrentIndex(std::min(before, box->count() - 1));
    ++chosen;
  }
}

host::pictures::Drawing ScatterPage::draw(const Table&, const Bands& bands) const {
  auto drawing =
      scatterOf(*ordination_, bands, static_cast<std::size_t>(std::max(across_->currentIndex(), 0)),
                static_cast<std::size_t>(std::max(up_->currentIndex(), 0)));
  if (ordination_->negative > 0)
    drawing.labels.push_back(
        {{20, 38},
         fmt::format("{} negative eigenvalue{}, down to {:.3g}", ordination_->negative,
                     ordination_->negative == 1 ? "" : "s", ordination_->eigenvalues.back())});
  return drawing;
}

// ---- dendrogram

DendrogramPage::DendrogramPage(const PictureSubject& subject, QWidget* parent)
    : PicturePage(subject, parent),
      method_(addChoice(QStringLiteral("&Method:"),
                        {QStringLiteral("UPGMA"), QStringLiteral("Neighbour joining")},
                        &DendrogramPage::recalculate)),
      measure_(addChoice(QStringLiteral("&Distance:"), measures(), &DendrogramPage::recalculate)),
      bootstraps_(new QSpinBox(this)) {
  bootstraps_->setRange(0, kMostBootstraps);
  bootstraps_->setSingleStep(100);
  bootstraps_->setKeyboardTracking(false);
  bootstraps_->setToolTip(
      QStringLiteral("Draws the bins so often: how many of the trees have a node's samples together"));
  connect(bootstraps_, &QSpinBox::valueChanged, this, &DendrogramPage::recalculate);
  addOption(QStringLiteral("&Bootstraps:"), bootstraps_);
}

BackgroundWork::Work DendrogramPage::calculation(std::shared_ptr<const Table> table) {
  TreeRequest request;
  request.measure = measureOf(*measure_);
  request.method = static_cast<TreeMethod>(method_->currentIndex());
  request.bootstraps = static_cast<std::size_t>(bootstraps_->value());
  return [this, table, request](const Progress& progress) {
    auto tree = std::make_shared<Tree>(treeOf(table->bands, request, progress));
    const auto cophenetic = copheneticCorrelation(distances(table->bands, request.measure), *tree);
    return [this, tree, cophenetic] {
      tree_ = *tree;
      cophenetic_ = cophenetic;
      collapsed_.clear();
    };
  };
}

host::pictures::Drawing DendrogramPage::draw(const Table&, const Bands& bands) const {
  auto drawing = dendrogramOf(tree_, bands, collapsed_);
  if (cophenetic_) drawing.title += fmt::format(", cophenetic correlation {:.3f}", *cophenetic_);
  return drawing;
}

std::set<std::size_t> DendrogramPage::samplesAt(const Hit& hit) const {
  if (!hit.node) return PicturePage::samplesAt(hit);
  const auto below = samplesBelow(tree_, *hit.node);
  return {below.begin(), below.end()};
}

void DendrogramPage::doubleClicked(const Hit& hit) {
  if (!hit.node) return;
  if (collapsed_.erase(*hit.node) == 0) collapsed_.insert(*hit.node);
  redraw();
}

// ---- heat map

HeatMapPage::HeatMapPage(const PictureSubject& subject, QWidget* parent)
    : PicturePage(subject, parent),
      cells_(addChoice(QStringLiteral("&Cells:"), {QStringLiteral("Presence"), QStringLiteral("Height")},
                       &HeatMapPage::redraw)),
      measure_(addChoice(QStringLiteral("&Distance:"), measures(), &HeatMapPage::recalculate)) {}

BackgroundWork::Work HeatMapPage::calculation(std::shared_ptr<const Table> table) {
  return [this, table, measure = measureOf(*measure_)](const Progress& progress) {
    auto tree = std::make_shared<Tree>(upgma(distances(table->bands, measure), progress));
    return [this, tree] { tree_ = *tree; };
  };
}

host::pictures::Drawing HeatMapPage::draw(const Table& table, const Bands& bands) const {
  const bool isByHeight = cells_->currentIndex() == 1;
  return heatMapOf(tree_, bands,
                   isByHeight ? std::span<const float>(table.heights) : std::span<const float>());
}

std::set<std::size_t> HeatMapPage::samplesAt(const Hit& hit) const {
  if (!hit.node) return PicturePage::samplesAt(hit);
  const auto below = samplesBelow(tree_, *hit.node);
  return {below.begin(), below.end()};
}

}  // namespace banddesk::desktop
