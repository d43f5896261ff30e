// The samples of a view as a list: checked ones are shown, the selected one stands out.
#pragma once

#include <QListWidget>
#include <QWidget>
#include <optional>
#include <vector>

#include "desktop/views/trace_model.h"

namespace banddesk::desktop {

class SampleList final : public QWidget {
  Q_OBJECT

 public:
  SampleList(const TraceSet& traces, QWidget* parent);

  std::vector<std::size_t> checked() const;     // in the list's order
  std::optional<std::size_t> selected() const;  // if it is checked
  void checkAll(bool isChecked);
  // All samples in another order; those of `checked` are checked. Nobody is told.
  void arrange(const std::vector<std::size_t>& order, const std::vector<bool>& checked);

  QSize sizeHint() const override;

 Q_SIGNALS:
  void checksChanged();
  void selectionChanged();

 private:
  void fill(const TraceSet& traces);

  QListWidget* list_;
  bool isFilling_ = true;
};

}  // namespace banddesk::desktop
