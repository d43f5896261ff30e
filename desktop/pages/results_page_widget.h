// The page of an analysis' results: the grid above, its controls in a panel of three lines below, which flow
// into more where the window is narrow. The page itself decides how high the grid is and where the panel
// stands; this widget tells it the size it has and follows.
#pragma once

#include <QScrollArea>

#include "desktop/pages/bound_page.h"

namespace banddesk::desktop {

class ResultsPageWidget final : public BoundPage {
  Q_OBJECT

 public:
  ResultsPageWidget(host::Host& host, host::HostPage& page, WidgetRegistry& registry, PageActions actions,
                    QWidget* parent);
  ~ResultsPageWidget() override;

  QSize minimumSizeHint() const override;

 protected:
  bool isEditing() const override { return grid_->user().isEditing(); }
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  // How high the page's design has the panel, and how far its first control stands below the grid.
  struct Design {
    double panelHeight = 0;
    double gap = 0;
    const ui::Control* first = nullptr;
  };
  // What the page was told last.
  struct Told {
    QSize size;
    int panelHeight = -1;
    friend bool operator==(const Told&, const Told&) = default;
  };

  void readDesign();
  void makePanel();
  QWidget* makeNumbers(QWidget* parent);
  QWidget* makeSampleAxis(QWidget* parent);
  QWidget* makeOptions(QWidget* parent);
  QWidget* makeFilters(QWidget* parent);
  QWidget* makeLabels(QWidget* parent);
  QWidget* check(const char* name, QWidget* parent);
  QWidget* shown(const std::string& control) const;
  int panelHeight() const;
  void follow();
  void placeParts(int panelHeight);

  host::GridControl* grid_;
  QWidget* gridWidget_;
  QScrollArea* panel_ = nullptr;
  Design design_;
  Told told_;
};

}  // namespace banddesk::desktop
