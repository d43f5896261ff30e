#include "desktop/views/fragment_table.h"

#include <algorithm>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {

FragmentTable::FragmentTable(std::shared_ptr<const TraceSet> traces, std::size_t sample, QObject* parent)
    : QAbstractTableModel(parent), traces_(std::move(traces)), sample_(sample) {}

void FragmentTable::setDyes(const Dyes& dyes) {
  dyes_ = dyes;
  fill();
}

void FragmentTable::setBands(std::shared_ptr<const std::vector<BinBand>> bands) {
  bands_ = std::move(bands);
  if (!rows_.empty()) Q_EMIT dataChanged(index(0, kBin), index(rowCount() - 1, kBin));
}

void FragmentTable::fill() {
  beginResetModel();
  rows_.clear();
  for (std::size_t dye = 0; dye < dyes_.size(); ++dye) {
    const std::size_t count = dyes_[dye] ? traces_->samples[sample_].dyes[dye].sizes.size() : 0;
    for (std::size_t peak = 0; peak < count; ++peak) rows_.push_back({sample_, dye, peak});
  }
  endResetModel();
  sort(sortColumn_, order_);
}

std::optional<PeakPlace> FragmentTable::peakAt(int row) const {
  if (row < 0 || row >= rowCount()) return std::nullopt;
  return rows_[static_cast<std::size_t>(row)];
}

int FragmentTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int FragmentTable::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : kColumns; }

QString FragmentTable::binName(const PeakPlace& peak) const {
  if (!bands_) return {};
  Dyes dye{};
  dye[peak.dye] = true;
  const BinBand* band = bandAt(*bands_, size(peak), dye);
  if (band == nullptr) return {};
  return toQString(band->name) + (band->excluded ? QStringLiteral(" (excluded)") : QString());
}

QVariant FragmentTable::data(const QModelIndex& index, int role) const {
  const auto peak = peakAt(index.row());
  if (!peak) return {};
  if (role == Qt::TextAlignmentRole) {
    const bool isNumber = index.column() == kSize || index.column() == kHeight;
    return QVariant::fromValue(Qt::Alignment(isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  }
  if (role != Qt::DisplayRole) return {};
  switch (index.column()) {
    case kDye:
      return toQString(traces_->dyes[peak->dye].name);
    case kSize:
      return QString::number(size(*peak), 'f', 2);
    case kHeight:
      return QString::number(height(*peak), 'f', 0);
    default:
      return binName(*peak);
  }
}

QVariant FragmentTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) {
    return QAbstractTableModel::headerData(section, orientation, role);
  }
  switch (section) {
    case kDye:
      return QStringLiteral("Dye");
    case kSize:
      return QStringLiteral("Size (nt)");
    case kHeight:
      return QStringLiteral("Height (RFU)");
    default:
      return QStringLiteral("Bin");
  }
}

void FragmentTable::sort(int column, Qt::SortOrder order) {
  sortColumn_ = column;
  order_ = order;
  const auto value = [&](const PeakPlace& peak) -> std::pair<double, double> {
    if (column == kHeight) return {height(peak), size(peak)};
    if (column == kSize) return {size(peak), static_cast<double>(peak.dye)};
    return {static_cast<double>(peak.dye), size(peak)};  // bins are told apart by these two
  };
  Q_EMIT layoutAboutToBeChanged();
  std::ranges::stable_sort(rows_, {}, value);
  if (order == Qt::DescendingOrder) std::ranges::reverse(rows_);
  Q_EMIT layoutChanged();
}

}  // namespace banddesk::desktop
