#include "desktop/views/bin_review.h"

#include <QHBoxLayout>
#include <QShortcut>
#include <algorithm>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

QString markText(BinMark mark) {
  switch (mark) {
    case BinMark::ExcludedByFilter:
      return QStringLiteral("excluded by a filter");
    case BinMark::ExcludedByHand:
      return QStringLiteral("excluded by hand");
    case BinMark::BroughtBack:
      return QStringLiteral("brought back");
    case BinMark::None:
      break;
  }
  return QStringLiteral("not excluded");
}

QString describe(const BinBand& band) {
  return QStringLiteral("Bin %1, dye D%2, %3 to %4 nt, %5 with a fragment, %6")
      .arg(toQString(band.name))
      .arg(band.dye + 1)
      .arg(band.xMin, 0, 'f', 2)
      .arg(band.xMax, 0, 'f', 2)
      .arg(counted(band.samples, "sample", "samples"))
      .arg(markText(band.mark));
}

}  // namespace

BinReview::BinReview(TableLink& link, QWidget* keysIn, QWidget* parent)
    : QWidget(parent),
      link_(link),
      previous_(new QPushButton(QStringLiteral("&Previous Bin"), this)),
      next_(new QPushButton(QStringLiteral("&Next Bin"), this)),
      exclude_(new QPushButton(QStringLiteral("E&xclude Bin"), this)),
      status_(new QLabel(this)) {
  setAccessibleName(QStringLiteral("Bin review"));
  previous_->setToolTip(QStringLiteral("The bin of the table's row above (P or Page Up)"));
  next_->setToolTip(QStringLiteral("The bin of the table's row below (N or Page Down)"));
  exclude_->setToolTip(QStringLiteral("Excludes the bin from the table, or brings it back (X)"));
  status_->setAccessibleName(QStringLiteral("Bin"));
  status_->setTextFormat(Qt::PlainText);
  status_->setWordWrap(true);
  status_->setMinimumHeight(2 * QFontMetrics(font()).height());  // so that no text moves the plot
  auto* line = new QHBoxLayout(this);
  line->setContentsMargins(0, 0, 0, 0);
  for (QPushButton* button : {previous_, next_, exclude_}) line->addWidget(button);
  line->addWidget(status_, 1);
  connect(previous_, &QPushButton::clicked, this, [this] { previous(); });
  connect(next_, &QPushButton::clicked, this, [this] { next(); });
  connect(exclude_, &QPushButton::clicked, this, [this] { toggle(); });
  const auto addKey = [&](Qt::Key key, void (BinReview::*action)()) {
    auto* shortcut = new QShortcut(QKeySequence(key), keysIn);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, action);
  };
  for (const Qt::Key key : {Qt::Key_N, Qt::Key_PageDown}) addKey(key, &BinReview::next);
  for (const Qt::Key key : {Qt::Key_P, Qt::Key_PageUp}) addKey(key, &BinReview::previous);
  addKey(Qt::Key_X, &BinReview::toggle);
  follow();
}

bool BinReview::showBin(std::int32_t row) {
  link_.look();
  const auto bands = link_.bands();
  const auto found = std::ranges::find(*bands, row, &BinBand::row);
  if (found == bands->end()) return false;
  show(*found);
  return true;
}

void BinReview::show(const BinBand& band) {
  current_ = band;
  link_.select(band.row);
  tell();
  Q_EMIT shown(*current_);
}

// The nearest visible row above or below one, which itself may be hidden by now.
const BinBand* BinReview::neighbour(std::int32_t row, int direction) const {
  const BinBand* found = nullptr;
  for (const BinBand& band : *link_.bands()) {
    if (band.isHidden || (band.row - row) * direction <= 0) continue;
    if (found == nullptr || (found->row - band.row) * direction > 0) found = &band;
  }
  return found;
}

void BinReview::step(int direction) {
  link_.look();
  const auto bands = link_.bands();  // kept: showing a bin may bring others
  const auto beyond = static_cast<std::int32_t>(bands->size()) + 1;
  const std::int32_t from = current_ ? current_->row : direction > 0 ? 0 : beyond;
  if (const BinBand* band = neighbour(from, direction))
    show(*band);
  else
    tell(direction > 0 ? QStringLiteral("This is the last bin.") : QStringLiteral("This is the first bin."));
}

void BinReview::toggle() {
  if (!current_ || current_->isHidden) return;
  link_.toggleExcluded(current_->row);
  if (!current_ || !current_->isHidden) return;
  // The table shows no excluded bins: the review goes on.
  const auto bands = link_.bands();
  const BinBand* band = neighbour(current_->row, 1);
  if (band == nullptr) band = neighbour(current_->row, -1);
  if (band != nullptr) show(*band);
}

void BinReview::follow() {
  if (current_) {
    const auto bands = link_.bands();
    const auto found = std::ranges::find(*bands, current_->key, &BinBand::key);
    if (found == bands->end())
      current_.reset();
    else
      current_ = *found;
    Q_EMIT marked(current_);
  }
  tell();
}

void BinReview::tell(const QString& more) {
  const bool hasBins = !link_.bands()->empty();
  previous_->setEnabled(hasBins);
  next_->setEnabled(hasBins);
  exclude_->setEnabled(current_ && !current_->isHidden);
  exclude_->setText(current_ && current_->excluded ? QStringLiteral("&Bring Back")
                                                   : QStringLiteral("E&xclude Bin"));
  QString text = QStringLiteral("No table of these samples is open, so there are no bins to review.");
  if (hasBins) text = QStringLiteral("Go to a bin to review it.");
  if (current_) text = describe(*current_);
  if (current_ && current_->isHidden) text += QStringLiteral("; its row is hidden");
  status_->setText(more.isEmpty() ? text : text + QStringLiteral(". ") + more);
}

}  // namespace banddesk::desktop
