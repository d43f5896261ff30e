#include <QHeaderView>

#include "desktop/base/qt_text.h"
#include "desktop/views/result_views.h"

namespace banddesk::desktop {

SingleSampleView::SingleSampleView(host::Host& host, ViewContent content, ViewActions actions,
                                   QWidget* parent)
    : ResultViewPage(host, std::move(content), std::move(actions), parent),
      plot_(makePlot(this)),
      table_(new QTableView(this)),
      fragments_(new FragmentTable(this->content().traces, 0, this)) {
  plot_->setTraces(this->content().traces, everySample());
  plot_->setTitle(toQString(traces().samples.front().name));
  table_->setModel(fragments_);
  table_->setAccessibleName(QStringLiteral("Fragments"));
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  table_->setSortingEnabled(true);
  table_->setTabKeyNavigation(false);
  table_->verticalHeader()->hide();
  table_->horizontalHeader()->setStretchLastSection(true);
  table_->horizontalHeader()->setResizeContentsPrecision(0);
  table_->sortByColumn(FragmentTable::kSize, Qt::AscendingOrder);
  connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& current) {
            if (const auto peak = fragments_->peakAt(current.row())) plot_->pointOut(*peak);
          });
  auto* splitter = new QSplitter(this);
  splitter->addWidget(plot_);
  splitter->addWidget(table_);
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 1);
  splitter->setChildrenCollapsible(false);
  splitter->setSizes({3000, 1200});
  column().addWidget(splitter, 1);
  tableShown_ = addCheck(QStringLiteral("Fragment &Table"), QStringLiteral("The fragments in a table"),
                         [this](bool isShown) { setViewIndex(isShown ? 1 : 2); });
  setViewIndex(this->content().viewIndex);
  dyesChanged();
  table_->resizeColumnsToContents();
}

void SingleSampleView::setViewIndex(int index) {
  plot_->setVisible(index > 0);
  table_->setVisible(index <= 1);
  const QSignalBlocker quiet(tableShown_);
  tableShown_->setChecked(index <= 1);
}

void SingleSampleView::bandsChanged() {
  ResultViewPage::bandsChanged();
  fragments_->setBands(link().bands());
}

void SingleSampleView::dyesChanged() {
  ResultViewPage::dyesChanged();
  fragments_->setDyes(dyes());
}

Figure SingleSampleView::figure() const {
  return {1, panelSize(*plot_), content().caption,
          [this](QPainter& painter, const QRectF& place, int, double columnsPerUnit) {
            plot_->paintFigure(painter, place, columnsPerUnit);
          }};
}

}  // namespace banddesk::desktop
