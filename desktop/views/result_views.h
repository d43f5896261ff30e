// The three views of results. Each is a page under the common tools.
#pragma once

#include <QScrollBar>
#include <QSplitter>
#include <QTableView>
#include <QWidget>

#include "desktop/views/bin_review.h"
#include "desktop/views/fragment_table.h"
#include "desktop/views/result_view_page.h"
#include "desktop/views/sample_list.h"

namespace banddesk::desktop {

// One sample with all its dyes, and its fragments in a table beside. View index 0 is the table alone, 1 both,
// 2 the plot alone.
class SingleSampleView final : public ResultViewPage {
  Q_OBJECT

 public:
  SingleSampleView(host::Host& host, ViewContent content, ViewActions actions, QWidget* parent);
  void setViewIndex(int index) override;

 private:
  Figure figure() const override;
  void bandsChanged() override;
  void dyesChanged() override;

  PlotView* plot_;
  QTableView* table_;
  FragmentTable* fragments_;
  QAction* tableShown_ = nullptr;
};

// More samples over one another tell nothing any more.
inline constexpr std::size_t kOverlaySamples = 50;

// All samples in one plot, and the review of bins. Of very many samples a review draws, bin by bin, those
// that have a fragment there and some that have none.
class OverlayView final : public ResultViewPage {
  Q_OBJECT

 public:
  OverlayView(host::Host& host, ViewContent content, ViewActions actions, QWidget* parent);
  bool showBin(std::int32_t row) override { return review_->showBin(row); }
  BinReview& review() const { return *review_; }
  PlotView& plot() const { return *plot_; }

 private:
  Figure figure() const override;
  void bandsChanged() override;
  void zoomTo(const BinBand& band);
  void chooseSamples(const BinBand& band);
  void drawChecked(const QString& more = {});

  PlotView* plot_ = nullptr;
  SampleList* samples_ = nullptr;
  BinReview* review_ = nullptr;
};

// A strip for each sample. Only as many strips exist as are seen; scrolling hands them other samples.
class StackedView final : public ResultViewPage {
  Q_OBJECT

 public:
  StackedView(host::Host& host, ViewContent content, ViewActions actions, QWidget* parent);

 private:
  Figure figure() const override;
  void heightsChanged(const PlotView& plot) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void layOut();
  void assign();
  std::size_t stripsInView() const;
  void addScrollKey(Qt::Key key, int direction);

  QWidget* strips_;
  QScrollBar* scroll_;
  SampleList* samples_;
  std::vector<std::size_t> shown_;
  bool isSpreading_ = false;
};

}  // namespace banddesk::desktop
