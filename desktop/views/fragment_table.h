// The fragments of one sample as a table's model: dye, size, height and the bin they lie in.
#pragma once

#include <QAbstractTableModel>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/views/trace_model.h"

namespace banddesk::desktop {

class FragmentTable final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kDye, kSize, kHeight, kBin, kColumns };

  FragmentTable(std::shared_ptr<const TraceSet> traces, std::size_t sample, QObject* parent);

  void setDyes(const Dyes& dyes);  // of the others no fragments are listed
  void setBands(std::shared_ptr<const std::vector<BinBand>> bands);
  std::optional<PeakPlace> peakAt(int row) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 private:
  void fill();
  double size(const PeakPlace& peak) const { return trace(peak).sizes[peak.peak]; }
  double height(const PeakPlace& peak) const { return trace(peak).heights[peak.peak]; }
  const DyeTrace& trace(const PeakPlace& peak) const { return traces_->samples[peak.sample].dyes[peak.dye]; }
  QString binName(const PeakPlace& peak) const;

  std::shared_ptr<const TraceSet> traces_;
  std::size_t sample_;
  Dyes dyes_{};
  std::shared_ptr<const std::vector<BinBand>> bands_;
  std::vector<PeakPlace> rows_;
  int sortColumn_ = kSize;
  Qt::SortOrder order_ = Qt::AscendingOrder;
};

}  // namespace banddesk::desktop
