// The way from a view to the table that its samples stand in: the bins as they are now, and what is done to
// one of them, by the page's own operations. There may be no such table, or it may close; there are no bins
// then.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/views/trace_model.h"
#include "host/framework/host.h"
#include "host/grid/grid_control.h"

namespace banddesk::desktop {

class TableLink final : public QObject {
  Q_OBJECT

 public:
  // The host outlives it.
  TableLink(host::Host& host, std::vector<std::int32_t> resultIds, QObject* parent);

  // Follows the page opened last whose analysis has all the results, unless it follows one already.
  void look();
  bool isLinked() const { return page() != nullptr; }

  using Bands = std::vector<BinBand>;
  const std::shared_ptr<const Bands>& bands() const {
    return bands_;
  }                // in the order of the rows; never null
  void refresh();  // reads them now

  // Of each result, in the order given, whether it has a fragment in the row's bin. Empty without a table.
  std::vector<bool> samplesIn(std::int32_t row) const;

  // The table goes to the row and selects it, as a user would.
  void select(std::int32_t row);
  // The row's bin is excluded or brought back by the item of its menu.
  void toggleExcluded(std::int32_t row);

  std::function<void(const Error&)> showError;

 Q_SIGNALS:
  void changed();

 private:
  bool holdsResults(const host::HostPage& page) const;
  std::shared_ptr<host::HostPage> page() const;  // null once it has ended
  IAFLPResultsPage& table() const;
  host::GridControl& grid() const;
  void follow(const std::shared_ptr<host::HostPage>& page);
  void leave();
  void take(Bands bands);
  void guarded(const std::function<void()>& work) const;
  void chooseExclude(std::int32_t row);

  host::Host& host_;
  std::vector<std::int32_t> resultIds_;
  std::weak_ptr<host::HostPage> page_;
  std::shared_ptr<const Bands> bands_ = std::make_shared<Bands>();
  QTimer later_;  // a table repaints many times in one piece of work
  Connections connections_;
};

}  // namespace banddesk::desktop
