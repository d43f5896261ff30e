// The views of results as widgets: one sample, samples over one another, samples in a stack. What the three
// have in common stands here: tools, dyes, bins, export. What they show outlives the host's page.
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/views/plot_export.h"
#include "desktop/views/plot_view.h"
#include "desktop/views/table_link.h"
#include "host/framework/host.h"

namespace banddesk::desktop {

struct ViewActions {
  // Absent: a line in the view tells the error.
  std::function<void(const Error&)> showError;
};

// The widget of a page of "SingleSample", "OverlayGraphView" or "StackedView"; null for any other page. The
// host outlives it, the page need not.
QWidget* makeViewPage(host::Host& host, host::HostPage& page, QWidget* parent,
                      const ViewActions& actions = {});

// What a view is made of.
struct ViewContent {
  std::shared_ptr<const TraceSet> traces;
  QString caption;
  int viewIndex = 0;
};

class ResultViewPage : public QWidget {
  Q_OBJECT

 public:
  ResultViewPage(host::Host& host, ViewContent content, ViewActions actions, QWidget* parent);

  // A page's way of showing itself; which there are is the view's own matter.
  virtual void setViewIndex(int) {}
  // The bin of a logical row of the open table comes into view. False where there is none or no review.
  virtual bool showBin(std::int32_t) { return false; }

  void setDyes(const Dyes& dyes);
  Dyes dyes() const;
  TableLink& link() { return *link_; }
  SizeAxis& axis() { return *axis_; }
  // As PNG, SVG or PDF by the name's end. Errors go to who shows them.
  void exportTo(const QString& fileName, const FigureSize& size = {});
  void copyPicture();

 protected:
  virtual Figure figure() const = 0;
  virtual void bandsChanged();
  virtual void dyesChanged();
  virtual void heightsChanged(const PlotView& plot);

  // A plot under the page's tools; the page owns it.
  PlotView* makePlot(QWidget* parent);
  const std::vector<PlotView*>& plots() const { return plots_; }
  const TraceSet& traces() const { return *content_.traces; }
  const ViewContent& content() const { return content_; }
  std::vector<std::size_t> everySample() const;
  QVBoxLayout& column() { return *column_; }
  QAction* addCheck(const QString& text, const QString& tip, const std::function<void(bool)>& toggled);
  // A plot's own size on paper, or a usual one where it is too small.
  static QSize panelSize(const QWidget& plot);

  void showEvent(QShowEvent* event) override;

 private:
  void makeTools();
  void makeDyeBoxes();
  QAction* addTool(const QString& text, const QString& tip, const std::function<void()>& triggered);
  void exportAsked();
  void showError(const Error& error);
  void guarded(const std::function<void()>& work);

  ViewContent content_;
  ViewActions actions_;
  std::shared_ptr<SizeAxis> axis_ = std::make_shared<SizeAxis>();
  TableLink* link_;
  QVBoxLayout* column_;
  QToolBar* tools_;
  QLabel* trouble_;
  QCheckBox* automatic_;
  QAction* legend_ = nullptr;
  std::vector<PlotView*> plots_;
  std::array<QCheckBox*, host::kDyeCount> dyeBoxes_{};
};

}  // namespace banddesk::desktop
