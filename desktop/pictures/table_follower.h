// Follows the table of one analysis for a picture of it: its values whenever they change, and the samples
// that are selected, both ways. The table may be closed and opened again; meanwhile there is none.
#pragma once

#include <QObject>
#include <QTimer>
#include <memory>

#include "desktop/pictures/picture_context.h"
#include "host/framework/host.h"
#include "host/framework/plain_table.h"
#include "host/grid/grid_control.h"

namespace banddesk::desktop {

class TableFollower final : public QObject {
  Q_OBJECT

 public:
  // Host and selection outlive it.
  TableFollower(host::Host& host, std::shared_ptr<AFLP> analysis, StudySelection& selection, QObject* parent);

  const std::shared_ptr<AFLP>& analysis() const { return analysis_; }
  // Looks for the table and reads it now.
  void look();
  bool isOpen() const { return page() != nullptr; }
  // As it was read last; null before that.
  const std::shared_ptr<const host::PlainTable>& table() const { return table_; }
  // The table goes to the bin and the sample.
  void show(std::int32_t bin, std::int32_t result);

 Q_SIGNALS:
  void changed();  // other values, or the table was opened or closed

 private:
  std::shared_ptr<host::HostPage> page() const;
  void follow(const std::shared_ptr<host::HostPage>& page);
  bool read();
  void pull();
  void push();

  host::Host& host_;
  std::shared_ptr<AFLP> analysis_;
  StudySelection& selection_;
  std::weak_ptr<host::HostPage> page_;
  std::shared_ptr<const host::PlainTable> table_;
  std::set<std::int32_t> seen_;  // what was selected in the table last
  QTimer later_;                 // a table repaints many times in one piece of work
  Connections connections_;
  Connection selectionChanged_;
};

}  // namespace banddesk::desktop
