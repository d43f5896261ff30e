// Bin review in place: goes over the visible bins of the table in its present order and excludes them or
// brings them back. Where a bin is shown is for the view to say.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <optional>

#include "desktop/views/table_link.h"

namespace banddesk::desktop {

class BinReview final : public QWidget {
  Q_OBJECT

 public:
  // The link outlives it. Its keys work wherever the focus is inside `keysIn`.
  BinReview(TableLink& link, QWidget* keysIn, QWidget* parent);

  // The bin of a logical row of the table; false if there is none.
  bool showBin(std::int32_t row);
  void next() { step(1); }
  void previous() { step(-1); }
  void toggle();
  void follow();  // the bins have changed

  const std::optional<BinBand>& current() const { return current_; }
  QString status() const { return status_->text(); }

 Q_SIGNALS:
  void shown(const BinBand& bin);                  // comes into view
  void marked(const std::optional<BinBand>& bin);  // otherwise than before, or it has gone

 private:
  void step(int direction);
  void show(const BinBand& band);
  void tell(const QString& more = {});
  const BinBand* neighbour(std::int32_t row, int direction) const;

  TableLink& link_;
  std::optional<BinBand> current_;
  QPushButton* previous_;
  QPushButton* next_;
  QPushButton* exclude_;
  QLabel* status_;
};

}  // namespace banddesk::desktop
