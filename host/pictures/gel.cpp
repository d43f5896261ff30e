#include "host/pictures/gel.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <numeric>
#include <utility>

#include "host/pictures/heat_map.h"

namespace banddesk::host::pictures {
namespace {

constexpr double kLeft = 56, kTop = 36, kBottom = 24;
constexpr double kWidth = 1000;  // of all lanes, about
constexpr double kLeastLane = 4, kLargestLane = 26;
constexpr double kReadable = 10;  // names stand over lanes of this width
constexpr double kPerNt = 2;
constexpr double kFragment = 1.6;  // how high it is drawn
constexpr double kFaintest = 0.08;
constexpr int kTicks = 12;

class GelDrawing {
 public:
  GelDrawing(const Gel& gel, const statistics::BandMatrix& bands, const GelLook& look)
      : gel_(gel), bands_(bands), look_(look) {
    const double count = std::max(static_cast<double>(look.order.size()), 1.0);
    lane_ = std::clamp(kWidth / count, kLeastLane, kLargestLane);
    if (lane_ >= kReadable) top_ += widestOf(bands.samples);
    findSizes();
    black_ = look.black > 0 ? look.black : heightAtShare(heights_, kFullHeight);
    right_ = kLeft + lane_ * count;
    loci_.resize(gel.bins.size());
    std::iota(loci_.begin(), loci_.end(), std::size_t{0});
    std::ranges::sort(loci_, {}, [&](std::size_t i) { return std::pair(gel.bins[i].dye, gel.bins[i].low); });
  }

  Drawing take() {
    drawing_ = {right_ + 20, bottom() + kBottom, "Pseudo-gel"};
    if (look_.hasBins) addBins();
    for (std::size_t at = 0; at < look_.order.size(); ++at) addLane(at);
    addSizes();
    addLegendBeside(drawing_, bands_.groups, top_);
    return std::move(drawing_);
  }

 private:
  bool isShown(std::size_t dye) const { return dye < look_.dyes.size() && look_.dyes[dye]; }
  double bottom() const { return top_ + (high_ - low_) * kPerNt; }
  double y(double size) const {
    return look_.isSmallOnTop ? top_ + (size - low_) * kPerNt : bottom() - (size - low_) * kPerNt;
  }
  double left(std::size_t at) const { return kLeft + lane_ * static_cast<double>(at); }

  // From the smallest to the largest fragment, in whole tens.
  void findSizes() {
    double least = 1e9, greatest = 0;
    for (const std::size_t sample : look_.order) {
      for (const GelFragment& fragment : gel_.lanes[sample]) {
        if (!isShown(fragment.dye)) continue;
        least = std::min(least, fragment.size);
        greatest = std::max(greatest, fragment.size);
        heights_.push_back(static_cast<float>(fragment.height));
      }
    }
    if (heights_.empty()) return;
    low_ = std::floor(least / 10) * 10;
    high_ = std::max(std::ceil(greatest / 10) * 10, low_ + 10);
  }

  std::optional<std::size_t> binOf(const GelFragment& fragment) const {
    const auto place = [this](std::size_t locus) {
      return std::pair(gel_.bins[locus].dye, gel_.bins[locus].low);
    };
    const auto behind = std::ranges::upper_bound(loci_, std::pair(fragment.dye, fragment.size), {}, place);
    if (behind == loci_.begin()) return {};
    const GelBin& bin = gel_.bins[*std::prev(behind)];
    if (bin.dye != fragment.dye || fragment.size > bin.high) return {};
    return *std::prev(behind);
  }

  void addBins() {
    for (std::size_t locus = 0; locus < gel_.bins.size(); ++locus) {
      const GelBin& bin = gel_.bins[locus];
      if (!isShown(bin.dye)) continue;
      const double upper = std::min(y(bin.low), y(bin.high)), lower = std::max(y(bin.low), y(bin.high));
      Box box{{kLeft, upper - 0.5}, right_ - kLeft, lower - upper + 1, BoxKind::Bin};
      box.locus = locus;
      drawing_.boxes.push_back(box);
    }
  }

  void addLane(std::size_t at) {
    const std::size_t sample = look_.order[at];
    Box lane{{left(at), top_}, lane_, bottom() - top_, BoxKind::Place};
    lane.sample = sample;
    drawing_.boxes.push_back(lane);
    for (const GelFragment& fragment : gel_.lanes[sample]) {
      if (isShown(fragment.dye)) addFragment(at, fragment);
    }
    if (lane_ < kReadable) return;
    std::optional<std::size_t> group;
    if (bands_.groups.size() > 1) group = bands_.groupOf[sample];
    drawing_.labels.push_back({{left(at) + lane_ / 2 + kFontSize / 3, top_ - 6},
                               bands_.samples[sample],
                               Anchor::Start,
                               group,
                               sample,
                               true});
  }

  void addFragment(std::size_t at, const GelFragment& fragment) {
    const double gap = lane_ / 10;
    Box box{{left(at) + gap, y(fragment.size) - kFragment / 2}, lane_ - 2 * gap, kFragment, BoxKind::Ink};
    const double share = black_ > 0 ? std::clamp(fragment.height / black_, 0.0, 1.0) : 1;
    box.ink = kFaintest + (1 - kFaintest) * std::sqrt(share);
    box.sample = look_.order[at];
    box.locus = binOf(fragment);
    box.name = fmt::format("{}, D{}: {:.2f} nt, {:.0f} RFU", bands_.samples[*box.sample], fragment.dye + 1,
                           fragment.size, fragment.height);
    if (box.locus) box.name += fmt::format(", bin {}", bands_.loci[*box.locus].name());
    drawing_.boxes.push_back(box);
  }

  void addSizes() {
    for (const double tick : ticksBetween(low_, high_, kTicks)) {
      drawing_.lines.push_back({{kLeft - 4, y(tick)}, {kLeft, y(tick)}});
      drawing_.labels.push_back(
          {{kLeft - 7, y(tick) + kFontSize / 3}, fmt::format("{:.0f}", tick), Anchor::End});
    }
    drawing_.labels.push_back({{14, (top_ + bottom()) / 2}, "Size (nt)", Anchor::Middle, {}, {}, true});
    const Point corners[] = {{kLeft, top_}, {right_, top_}, {right_, bottom()}, {kLeft, bottom()}};
    for (std::size_t i = 0; i < 4; ++i) drawing_.lines.push_back({corners[i], corners[(i + 1) % 4]});
  }

  const Gel& gel_;
  const statistics::BandMatrix& bands_;
  const GelLook& look_;
  double lane_ = 0, top_ = kTop, right_ = 0;
  double low_ = 0, high_ = 10;  // nt
  double black_ = 0;
  std::vector<float> heights_;
  std::vector<std::size_t> loci_;  // by dye and size
  Drawing drawing_;
};

}  // namespace

Drawing gelOf(const Gel& gel, const statistics::BandMatrix& bands, const GelLook& look) {
  return GelDrawing(gel, bands, look).take();
}

}  // namespace banddesk::host::pictures
