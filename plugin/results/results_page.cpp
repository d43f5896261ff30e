#include "plugin/results/results_page.h"

#include <cmath>

#include "plugin/base/numbers.h"
#include "plugin/base/text.h"
#include "plugin/table/page_guards.h"

namespace banddesk {
namespace {

constexpr std::int32_t kEnterKey = 13;
constexpr double kDesignWidth = 800;

}  // namespace

AFLPResultsPage::AFLPResultsPage(MGlobals& globals)
    : page_(globals.services()), grdAFLP(page_.services.NewGrid("grdAFLP")), table_(page_, grdAFLP) {
  if (grdAFLP) {
    grdAFLP->Width = kDesignWidth;
    grdAFLP->Height = kDesignGridHeight;
    controlSet_.add(*grdAFLP);
  }
  controls_.addTo(controlSet_);
  controlSet_.add(pending_.ctlTimer);
}

void AFLPResultsPage::UserControl_Initialize() {
  page_.frame.handler("UserControl_Initialize", [&] {
    page_.m_oPageBase = page_.services.NewPageBase();
    listenToHost();
    table_.makeObjects();
    lowestEdge();
    sizing_.m_lTrackedCol = -1;
    table_.grid().SetRowCount(0);
    table_.grid().SetColCount(0);
    listenToControls();
    listenToMenus();
    listenToGrid();
  });
}

std::shared_ptr<PageBase> AFLPResultsPage::IPageAccess_Page() {
  return page_.frame.procedure("IPageAccess_Page (Get)", [&] { return page_.m_oPageBase; });
}

void AFLPResultsPage::lowestEdge() {
  double lowest = 0;
  for (const ui::Control* control : controlSet_.all()) {
    try {
      if (control->hasPlace()) lowest = page_.framework().Max(lowest, control->Top + control->Height);
    } catch (...) {
      // A control that does not tell its place does not count.
    }
  }
  m_lLastHeight = roundToLong(lowest);
}

void AFLPResultsPage::UserControl_Resize(double scaleWidth, double scaleHeight) {
  page_.frame.handler("UserControl_Resize", [&] {
    UpdateLock lock(table_.grid());
    const std::int32_t delta = roundToLong(scaleHeight - m_lLastHeight);
    if (delta != 0) {
      for (ui::Control* control : controlSet_.all()) {
        try {
          resizeControl(*control, delta);
        } catch (...) {
          // One control that cannot move keeps none of the others.
        }
      }
      m_lLastHeight = roundToLong(scaleHeight);
    }
    table_.grid().Width = scaleWidth;
    sizing_.ResizeCols();
    lock.restore();
  });
}

void AFLPResultsPage::resizeControl(ui::Control& control, std::int32_t delta) {
  if (equalsIgnoringCase(control.Name(), "grdAFLP")) {
    resizeGrid(delta);
  } else if (control.hasPlace()) {
    control.Top = control.Top + delta;
  }
}

// What the grid could not give up is a debt that growth pays back first.
void AFLPResultsPage::resizeGrid(std::int32_t delta) {
  Grid& grid = table_.grid();
  const auto change = static_cast<float>(delta);
  if (m_sGridHeightDebt != 0) {
    const float rest = m_sGridHeightDebt + change;
    if (rest < 0) {
      m_sGridHeightDebt = rest;
    } else {
      grid.Height = rest;
      m_sGridHeightDebt = 0;
    }
    return;
  }
  const double height = grid.Height + delta;
  if (height < 0) {
    m_sGridHeightDebt = static_cast<float>(height);
    grid.Height = 0;
  } else {
    grid.Height = height;
  }
}

void AFLPResultsPage::UserControl_KeyDown(std::int32_t& key) {
  page_.frame.handler("UserControl_KeyDown", [&] {
    if (key != kEnterKey) return;
    key = 0;
    Analyze(false);
  });
}

void AFLPResultsPage::UserControl_KeyPress(std::int32_t& key) {
  page_.frame.handler("UserControl_KeyPress", [&] {
    if (key == kEnterKey) key = 0;
  });
}

}  // namespace banddesk
