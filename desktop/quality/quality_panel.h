// How good the table in front is: overall figures, the worst bins and samples, and how well replicates agree.
// It follows the table, and points at a row or column of it.
#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

#include "host/framework/pages.h"
#include "host/framework/shown_table.h"

class QFormLayout;
class QLabel;
class QLineEdit;
class QTreeWidget;

namespace banddesk::desktop {

class QualityPanel final : public QWidget {
  Q_OBJECT
 public:
  explicit QualityPanel(QWidget* parent);

  // The results page to follow; any other page, or none, empties the panel.
  void follow(const std::shared_ptr<host::HostPage>& page);

 Q_SIGNALS:
  void binChosen(std::int32_t row);     // logical
  void sampleChosen(std::int32_t col);  // logical

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  struct Figure {
    const char* name;
    QLabel* value;
  };

  QTreeWidget* makeList(const QStringList& header, const QString& name);
  void look();
  void show(const host::ShownTable& table);
  void showBins(const host::ShownTable& table, const host::Replicates& replicates);
  void showSamples(const host::ShownTable& table, const host::Replicates& replicates);
  void showPairs(const host::ShownTable& table, const host::TableQuality& quality,
                 const host::Replicates& replicates);
  void setFigure(int index, const QString& value);

  std::weak_ptr<host::HostPage> page_;
  Connection repaints_;
  QTimer changes_;  // the table changes in bursts
  bool isOutdated_ = true;
  std::vector<QLabel*> figures_;
  QLineEdit* suffix_;
  QLabel* replicates_;
  QTreeWidget* bins_;
  QTreeWidget* samples_;
  QTreeWidget* pairs_;
};

}  // namespace banddesk::desktop
