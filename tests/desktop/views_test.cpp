// The views of results: what a plot shows and how it moves, the pages over a real table, and the review of
// bins, which must change that table as a user of its menu would.
#include <QLabel>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>
#include <cmath>
#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include "desktop/base/qt_text.h"
#include "desktop/views/envelope.h"
#include "desktop/views/result_views.h"
#include "tests/plugin/desk.h"
#include "tests/support/test_folder.h"

namespace banddesk::desktop {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// ---- axes

double between(double low, double high) { return low + (high - low) * *rc::gen::inRange(0, 1000001) / 1e6; }

RC_GTEST_PROP(PlotAxes, SizesNeverLeaveTheWholeAndTheOneZoomedAboutStays, ()) {
  SizeAxis axis;
  const double low = between(-5, 300);
  axis.setWhole({low, low + between(1, 500)});
  for (int step = 0; step < 20; ++step) {
    const double about = between(axis.shown().low, axis.shown().high);
    const double share = (about - axis.shown().low) / axis.shown().length();
    if (*rc::gen::arbitrary<bool>()) {
      const double factor = between(1, 3);
      axis.zoom(factor, about);
      if (axis.shown().length() > SizeAxis::kShortest)
        RC_ASSERT(std::abs(axis.shown().low + share * axis.shown().length() - about) < 1e-6);
    } else {
      axis.zoom(between(0.3, 1), about);
      axis.shift(between(-400, 400));
    }
    RC_ASSERT(axis.shown().low >= axis.whole().low - 1e-9);
    RC_ASSERT(axis.shown().high <= axis.whole().high + 1e-9);
    RC_ASSERT(axis.shown().length() >= SizeAxis::kShortest - 1e-9);
  }
}

TEST(PlotAxes, TicksAreRoundAndNoMoreThanThereIsRoomFor) {
  EXPECT_THAT(roundTicks({0, 500}, 5), ElementsAre(0, 200, 400));
  EXPECT_THAT(roundTicks({0, 500}, 6), ElementsAre(0, 100, 200, 300, 400, 500));
  EXPECT_THAT(roundTicks({-40, 110}, 4), ElementsAre(0, 50, 100));
  const auto fine = roundTicks({80.92, 81.21}, 3);
  ASSERT_EQ(fine.size(), 3U);
  EXPECT_EQ(tickText(fine[0], fine), QStringLiteral("81.0"));
  EXPECT_TRUE(roundTicks({5, 5}, 3).empty());
}

// ---- traces

DyeTrace somePeaks() {
  DyeTrace trace;
  for (int i = 0; i < 300; ++i) {
    trace.sizes.push_back(50 + i * 1.5 + 0.4 * std::sin(i * 7.0));
    trace.heights.push_back(500 + 450 * std::sin(i * 3.0));
  }
  trace.sizes[100] = trace.sizes[99] + 0.01;  // two under one pixel
  return trace;
}

double plainHeight(const DyeTrace& trace, double nt) {
  double height = 0;
  for (std::size_t i = 0; i < trace.sizes.size(); ++i) {
    height = std::max(height, bell(nt - trace.sizes[i], trace.heights[i], trace.width(i)));
  }
  return height;
}

TEST(Envelope, TellsTheHeightsOfAPlainDrawingAtEveryZoom) {
  DyeTrace trace = somePeaks();
  for (const bool hasWidths : {false, true}) {
    if (hasWidths) trace.widths.assign(trace.sizes.size(), 1.7);
    for (const Span sizes : {Span{40, 520}, Span{100, 130}, Span{118.2, 119}}) {
      constexpr std::size_t kColumns = 200;
      constexpr int kDense = 400;  // plain samples a column
      const PlotTransform map({sizes, {0, 1000}}, QRectF(0, 0, kColumns, 400));
      Envelope envelope(map, kColumns);
      envelope.take(trace);
      for (std::size_t column = 0; column < kColumns; column += 3) {
        double highest = 0;
        for (int i = 0; i <= kDense; ++i)
          highest =
              std::max(highest, plainHeight(trace, map.nt(static_cast<double>(column) + i / double{kDense})));
        ASSERT_NEAR(envelope.highest(column), highest, 2.5 + 0.01 * highest)
            << sizes.low << " column " << column;
      }
    }
  }
}

TEST(Envelope, OfACurveKeepsItsDipsAndSpikesBetweenPixels) {
  DyeTrace trace;
  for (int i = 0; i <= 10000; ++i) {
    trace.curveX.push_back(i * 0.05);
    trace.curveY.push_back(100 + 20 * std::sin(i * 0.001));
  }
  trace.curveY[5003] = 900;
  trace.curveY[5005] = -80;
  Envelope envelope(PlotTransform({{0, 500}, {-100, 1000}}, QRectF(0, 0, 100, 400)), 100);
  envelope.take(trace);
  EXPECT_EQ(envelope.highest(50), 900);
  EXPECT_EQ(envelope.lowest(50), -80);
  EXPECT_NEAR(envelope.lowest(20), 110, 10);
  EXPECT_EQ(heightExtent(trace, {0, 500}), (Span{-80, 900}));
}

TEST(Traces, SortFragmentsAndLeaveOutWhatIsNoNumber) {
  const std::vector<double> sizes = {200, std::nan(""), 100, 150};
  const std::vector<double> heights = {2, 9, 1, INFINITY};
  const DyeTrace trace = dyeTrace({sizes, heights});
  EXPECT_THAT(trace.sizes, ElementsAre(100, 200));
  EXPECT_THAT(trace.heights, ElementsAre(1, 2));
}

RC_GTEST_PROP(Traces, TheNearestPeakIsTheNearestOfAll, ()) {
  TraceSet set;
  set.samples.resize(3);
  const std::vector<std::size_t> shown = {0, 2};
  const Dyes dyes = {true, false, true, true};
  const PeakSearch search{between(50, 90), between(0, 900), between(1, 50), between(0.01, 1),
                          between(5, 900)};
  std::vector<std::pair<double, PeakPlace>> near;
  for (std::size_t sample = 0; sample < set.samples.size(); ++sample) {
    for (std::size_t dye = 0; dye < dyes.size(); ++dye) {
      DyeTrace& trace = set.samples[sample].dyes[dye];
      for (double nt = 50; nt < 90; nt += between(0.5, 9)) {
        const double x = (nt - search.size) * search.unitsPerNt;
        if (std::abs(std::abs(x) - search.reach) < 1e-9) continue;  // rounding decides there
        trace.sizes.push_back(nt);
        trace.heights.push_back(between(10, 900));
        const double y = (trace.heights.back() - search.height) * search.unitsPerRfu;
        if (sample != 1 && dyes[dye] && std::abs(x) <= search.reach)
          near.push_back({std::hypot(x, y), {sample, dye, trace.sizes.size() - 1}});
      }
    }
  }
  const auto nearest = std::ranges::min_element(near, {}, [](const auto& each) { return each.first; });
  const auto found = nearestPeak(set, shown, dyes, search);
  RC_ASSERT(found.has_value() == (nearest != near.end()));
  if (found) RC_ASSERT(*found == nearest->second);
}

// ---- a plot

std::shared_ptr<const TraceSet> traceSet(std::size_t samples) {
  auto set = std::make_shared<TraceSet>();
  for (std::size_t i = 0; i < samples; ++i) {
    TraceSample& sample = set->samples.emplace_back();
    sample.name = "sample " + std::to_string(i + 1);
    sample.dyes[0] = somePeaks();
    for (double& height : sample.dyes[0].heights) height *= 1 + 0.1 * static_cast<double>(i);
  }
  set->dyes[0] = {"D1", 0xFFA060, true};
  return set;
}

class Plot : public testing::Test {
 protected:
  Plot() {
    axis->setWhole({40, 540});
    prepare(view);
  }
  static void prepare(PlotView& plot) {
    plot.resize(700, 400);
    plot.setDyes({true, false, false, false});
    plot.setTraces(traceSet(2), {0, 1});
    auto bands = std::make_shared<std::vector<BinBand>>();
    bands->push_back({100, 112, 0, true, 1, "D1-106", "D1-106.00"});
    bands->push_back({140, 144, 0, false, 2, "D1-142", "D1-142.00"});
    plot.setBands(bands);
  }
  void wheel(QPoint at, int steps, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWheelEvent event(at, at, {}, QPoint(0, 120 * steps), Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view, &event);
  }

  std::shared_ptr<SizeAxis> axis = std::make_shared<SizeAxis>();
  PlotView view{axis};
};

TEST_F(Plot, PannedLooksAsIfDrawnThereAtOnce) {
  axis->show({90, 190});
  view.showHeights({0, 1000});
  view.grab();
  for (const double pixels : {-7.0, 30.0, -112.0, 1.0, 64.0}) {
    view.panBy(pixels);
    const QImage moved = view.grab().toImage();
    PlotView fresh{axis};
    prepare(fresh);
    fresh.showHeights({0, 1000});
    const QImage whole = fresh.grab().toImage();
    int different = 0;
    for (int y = 0; y < whole.height(); ++y) {
      for (int x = 0; x < whole.width(); ++x) {
        const QColor a = moved.pixelColor(x, y);
        const QColor b = whole.pixelColor(x, y);
        const int far =
            std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue());
        different += far > 120 ? 1 : 0;
      }
    }
    // A hatch line that was cut off at the border may begin a pixel further on.
    EXPECT_LT(different, 60) << "after " << pixels;
  }
}

TEST_F(Plot, MovesByWheelMouseAndKeys) {
  const QPoint at(400, 200);
  const double nt = view.transform().nt(at.x());
  wheel(at, 4);
  EXPECT_NEAR(view.transform().nt(at.x()), nt, 1e-6);
  EXPECT_NEAR(axis->shown().length(), 500 / std::pow(1.25, 4), 1e-6);

  const Span before = axis->shown();
  QTest::mousePress(&view, Qt::LeftButton, {}, at);
  QTest::mouseMove(&view, at + QPoint(50, 0));
  QTest::mouseRelease(&view, Qt::LeftButton, {}, at + QPoint(50, 0));
  const double pixel = 1 / view.transform().perNt();
  EXPECT_NEAR(axis->shown().low, before.low - 50 * pixel, pixel);
  EXPECT_TRUE(view.isAutomaticHeight());

  const Span heights = view.range().heights;
  wheel(at, 2, Qt::ControlModifier);
  EXPECT_NEAR(view.range().heights.high, heights.high / 1.5625, 1e-6);
  EXPECT_FALSE(view.isAutomaticHeight());

  const PlotTransform map = view.transform();
  QTest::mousePress(&view, Qt::LeftButton, Qt::ShiftModifier, {300, 100});
  QTest::mouseMove(&view, {420, 220});
  QTest::mouseRelease(&view, Qt::LeftButton, Qt::ShiftModifier, {420, 220});
  EXPECT_NEAR(map.x(axis->shown().low), 300, 1e-6);
  EXPECT_NEAR(map.x(axis->shown().high), 420, 1e-6);
  EXPECT_NEAR(map.y(view.range().heights.low), 220, 1e-6);

  QTest::mouseDClick(&view, Qt::LeftButton, {}, at);
  EXPECT_EQ(axis->shown(), axis->whole());
  EXPECT_TRUE(view.isAutomaticHeight());
  for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Plus, Qt::Key_Right, Qt::Key_Up})
    QTest::keyClick(&view, key);
  EXPECT_GT(axis->shown().middle(), axis->whole().middle());
  QTest::keyClick(&view, Qt::Key_Home);
  EXPECT_EQ(axis->shown(), axis->whole());
}

TEST_F(Plot, ReadsOutThePeakUnderThePointerAndTheNextOnesByKeys) {
  axis->show({140, 150});
  const DyeTrace& trace = view.scene().traces->samples[1].dyes[0];
  const auto peak =
      static_cast<std::size_t>(std::ranges::lower_bound(trace.sizes, 141) - trace.sizes.begin());
  const QPointF top = view.transform().at(trace.sizes[peak], trace.heights[peak]);
  // At once: a move of the real pointer waits for the window to be in sight.
  const auto moveTo = [&](const QPointF& at) {
    QMouseEvent move(QEvent::MouseMove, at, view.mapToGlobal(at), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &move);
  };
  moveTo(top);
  EXPECT_THAT(toText(view.readout()),
              testing::AllOf(HasSubstr("sample 2, D1: "), HasSubstr(" RFU"), HasSubstr("bin D1-142.00")));
  const QString first = view.readout();
  QTest::keyClick(&view, Qt::Key_Right, Qt::ControlModifier);
  EXPECT_NE(view.readout(), first);
  QTest::keyClick(&view, Qt::Key_Left, Qt::ControlModifier);
  EXPECT_EQ(view.readout(), first);
  moveTo({2, 2});
  EXPECT_TRUE(view.readout().isEmpty());
}

TEST(Colours, StandOutFromTheirGroundInTheirOwnHue) {
  const QPalette dark(QColor(40, 40, 40), QColor(30, 30, 30));
  for (const ui::Colour colour : {0xFFA060U, 0x40C840U, 0x20D8F8U, 0x6060FFU, 0x800000U, 0U, 0xFFFFFFU}) {
    for (const PlotLook& look : {PlotLook::paper({}), PlotLook::ofPalette(dark, {})}) {
      const QColor curve = look.curve({"D1", colour, true});
      EXPECT_GT(std::abs(qGray(curve.rgb()) - qGray(look.ground.rgb())), 50) << colour;
      const QColor own = toQColor(colour);
      if (own.hslSaturation() > 0) {
        EXPECT_NEAR(curve.hslHue(), own.hslHue(), 3) << colour;
      }
    }
  }
}

// ---- over a table

// Four samples; the first dye has bins at 100, 150, 200 and 250 nt, the second one at 120.
class Table : public testing::Test {
 protected:
  Table() { desk.newAnalysis(); }
  static std::vector<host::NewResult> results() {
    const std::vector<std::vector<double>> sizes = {
        {200.1, 100, 150}, {100.2, 250}, {150.1, 200}, {100.1, 250.2}};
    std::vector<host::NewResult> made;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      host::NewResult& result = made.emplace_back();
      result.sampleName = "plant " + std::to_string(i + 1);
      result.fragments.dyes[0] = {sizes[i], std::vector<double>(sizes[i].size(), 700)};
      if (i < 2) result.fragments.dyes[1] = {{120}, {300}};
    }
    return made;
  }

  IAFLPResultsPage& table() { return desk.page(); }
  void showExcluded(bool isShown) {
    desk.control<ui::CheckBox>("chkShowExcluded").Value = isShown ? 1 : 0;
    desk.wait();
    QApplication::processEvents();
  }
  // As the table's menu opens it, with the samples of columns first to last.
  QWidget* open(const char* item, std::int32_t count) {
    auto& grid = desk.grid();
    const std::int32_t first = table().NumCols() - 3;
    if (table().Transpose())
      grid.user().selectRows(first, first + count - 1);
    else
      grid.user().selectCols(first, first + count - 1);
    desk.choose(item);
    opened.reset(makeViewPage(host, *host.pages().openPages().back(), nullptr));
    opened->resize(900, 600);
    opened->show();
    QApplication::processEvents();
    return opened.get();
  }
  OverlayView& overlay() { return dynamic_cast<OverlayView&>(*open("mnuOverlayCell", 3)); }
  std::int32_t rowNear(double nt) {
    for (std::int32_t row = 1; row <= table().NumRows(); ++row) {
      if (table().CellText("6", row) == std::to_string(std::lround(nt))) return row;
    }
    throw std::logic_error("no such bin");
  }

  test::Desk desk{results()};
  host::Host& host = desk.host;
  std::unique_ptr<QWidget> opened;
};

TEST_F(Table, TheReviewGoesOverTheVisibleBinsInTheTablesOrder) {
  table().SortCol(table().Col("8"));
  OverlayView& view = overlay();
  const Dyes dyes = view.dyes();
  const auto samples = view.plot().scene().samples;
  std::vector<std::string> seen;
  for (std::int32_t i = 0; i <= table().NumRows(); ++i) {
    QTest::keyClick(&view.plot(), i % 2 == 0 ? Qt::Key_N : Qt::Key_PageDown);
    const BinBand bin = view.review().current().value();
    const Span shown = view.axis().shown();
    EXPECT_LT(shown.low, bin.xMin);
    EXPECT_GT(shown.high, bin.xMax);
    EXPECT_LT(shown.length(), 10);
    EXPECT_NEAR(view.plot().range().heights.high, bin.dye == 0 ? 700 : 300, 60);
    seen.push_back(bin.name.substr(0, 6));
  }
  std::vector<std::string> rows;
  for (std::int32_t row = 1; row <= table().NumRows(); ++row)
    rows.push_back((table().CellText("7", row) + "-" + table().CellText("83", row)).substr(0, 6));
  rows.push_back(rows.back());  // there is no next one
  EXPECT_EQ(seen, rows);
  EXPECT_THAT(toText(view.review().status()), HasSubstr("last bin"));
  QTest::keyClick(&view.plot(), Qt::Key_P);
  EXPECT_EQ(view.review().current()->row, table().NumRows() - 1);
  EXPECT_EQ(view.plot().scene().samples, samples);
  EXPECT_NE(view.dyes(), dyes);
}

// The samples of the overlay have nothing at 250 nt; the bin is there all the same.
TEST_F(Table, TheReviewShowsTheBinsOwnPlaceBeyondItsSamples) {
  auto& view = dynamic_cast<OverlayView&>(*open("mnuOverlayCell", 1));
  ASSERT_LT(view.axis().whole().high, 250);
  ASSERT_TRUE(view.showBin(rowNear(250)));
  EXPECT_LT(view.axis().shown().low, 250);
  EXPECT_GT(view.axis().shown().high, 250.2);
}

// Of 70 samples every seventh one has a fragment at 300 nt, and all have one at 100.
TEST(Review, OfManySamplesDrawsThoseInTheBinFirstAndSomeThatAreNot) {
  std::vector<host::NewResult> results(70);
  for (std::size_t i = 0; i < results.size(); ++i) {
    results[i].sampleName = "plant " + std::to_string(i);
    results[i].fragments.dyes[0] = {{100}, {700}};
    if (i % 7 == 3) results[i].fragments.dyes[0] = {{100, 300}, {700, 500}};
  }
  test::Desk desk{results};
  desk.newAnalysis();
  desk.control<ui::CheckBox>("chkExcludeFullBins").Value = 0;  // they would leave nothing
  desk.wait();
  desk.grid().user().selectCols(desk.page().NumCols() - 69, desk.page().NumCols());
  desk.choose("mnuOverlayCell");
  const std::unique_ptr<QWidget> opened(
      makeViewPage(desk.host, *desk.host.pages().openPages().back(), nullptr));
  auto& view = dynamic_cast<OverlayView&>(*opened);
  const auto drawn = [&] {
    std::vector<std::size_t> inBin;
    for (const std::size_t i : view.plot().scene().samples) inBin.push_back(i % 7 == 3 ? 1 : 0);
    return inBin;
  };
  std::vector<std::size_t> wanted(20, 0);
  std::fill_n(wanted.begin(), 10, 1);
  ASSERT_TRUE(view.showBin(2));
  EXPECT_EQ(drawn(), wanted);
  EXPECT_THAT(toText(view.plot().scene().title), HasSubstr("20 of 70 samples"));
  ASSERT_TRUE(view.showBin(1));
  EXPECT_EQ(view.plot().scene().samples.size(), kOverlaySamples);
}

TEST_F(Table, ABinIsExcludedAndBroughtBackAsByTheMenuWhicheverWayTheTableLies) {
  for (const bool isTransposed : {false, true}) {
    table().SetTranspose(isTransposed);
    showExcluded(true);
    OverlayView& view = overlay();
    const auto isMarked = [&] {
      const std::int32_t row = view.review().current()->row;
      return desk.finished().markOf(row, table().Bin(row)) == BinMark::ExcludedByHand;
    };
    ASSERT_TRUE(view.showBin(rowNear(150)));
    desk.analysis().Persistent().IsDirty = false;
    QTest::keyClick(&view.plot(), Qt::Key_X);
    EXPECT_TRUE(isMarked()) << isTransposed;
    EXPECT_TRUE(desk.analysis().Persistent().IsDirty);
    EXPECT_EQ(view.review().current()->mark, BinMark::ExcludedByHand);
    EXPECT_THAT(toText(view.review().status()), HasSubstr("excluded by hand"));
    EXPECT_EQ(view.review().current()->row, rowNear(150));
    QTest::keyClick(&view.plot(), Qt::Key_X);
    EXPECT_FALSE(isMarked());
    EXPECT_EQ(view.review().current()->mark, BinMark::None);
    EXPECT_TRUE(host.framework().reports().empty());
  }
}

TEST_F(Table, ExcludingGoesOnWhereTheRowIsHidden) {
  OverlayView& view = overlay();
  const std::int32_t row = rowNear(150);
  ASSERT_TRUE(view.showBin(row));
  view.review().toggle();
  EXPECT_TRUE(table().IsRowHidden(row));
  EXPECT_EQ(view.review().current()->row, row + 1);
  view.review().previous();
  EXPECT_EQ(view.review().current()->row, row - 1);
  // What the user does in the table arrives too.
  showExcluded(true);
  view.review().next();
  EXPECT_EQ(view.review().current()->mark, BinMark::ExcludedByHand);
}

TEST_F(Table, BandsEndWithTheTableAndFragmentsStay) {
  OverlayView& view = overlay();
  EXPECT_EQ(view.plot().scene().bands->size(), static_cast<std::size_t>(table().NumRows()));
  ASSERT_TRUE(view.showBin(1));
  const auto analysis = std::dynamic_pointer_cast<AFLP>(desk.pageNamed("AFLP")->bound());
  host.pages().endAll();
  EXPECT_TRUE(view.plot().scene().bands->empty());
  EXPECT_FALSE(view.review().current());
  EXPECT_FALSE(view.showBin(1));
  view.review().toggle();
  EXPECT_THAT(view.plot().scene().traces->samples[0].dyes[0].sizes, ElementsAre(100, 150, 200.1));
  host.service().OpenAFLP(analysis);
  EXPECT_TRUE(view.showBin(1));
}

TEST_F(Table, TheThreePagesShowTheirSamples) {
  auto* single = dynamic_cast<SingleSampleView*>(open("mnuSingleCell", 1));
  const auto* list = single->findChild<QTableView*>();
  EXPECT_EQ(list->model()->rowCount(), 4);
  EXPECT_TRUE(
      list->model()->index(0, FragmentTable::kBin).data().toString().startsWith(QLatin1String("D1-100")));
  single->setDyes({false, true, false, false});
  EXPECT_EQ(list->model()->rowCount(), 1);
  single->setViewIndex(0);
  EXPECT_FALSE(single->findChild<PlotView*>()->isVisible());
  EXPECT_TRUE(list->isVisible());

  auto* stack = dynamic_cast<StackedView*>(open("mnuEgramCell", 4));
  const auto strips = stack->findChildren<PlotView*>();
  ASSERT_GT(strips.size(), 1);
  stack->axis().show({110, 160});
  EXPECT_EQ(strips[1]->range().sizes, (Span{110, 160}));
  QTest::keyClick(strips[0], Qt::Key_Up);
  EXPECT_EQ(strips[0]->range().heights, strips[1]->range().heights);
  stack->resize(900, 200);
  stack->findChild<QScrollBar*>()->setValue(3);
  EXPECT_THAT(strips[0]->scene().samples, ElementsAre(3));
}

TEST_F(Table, APageWithoutSamplesSaysSoAndOneOfSomethingElseTellsTheError) {
  for (const bool isEmpty : {true, false}) {
    ObjectRef bound = desk.pageNamed("AFLP")->bound();
    if (isEmpty) bound = std::make_shared<Collection<std::shared_ptr<Result>>>();
    host.pages().OpenPage("StackedView", bound, nullptr, true, true, true, true, true, true, nullptr, false,
                          0);
    int errors = 0;
    ViewActions actions;
    actions.showError = [&](const Error&) { ++errors; };
    const std::unique_ptr<QWidget> quiet(
        makeViewPage(host, *host.pages().openPages().back(), nullptr, actions));
    ASSERT_NE(dynamic_cast<QLabel*>(quiet.get()), nullptr);
    EXPECT_EQ(errors, isEmpty ? 0 : 1);
  }
  EXPECT_EQ(makeViewPage(host, *desk.pageNamed("AFLP"), nullptr), nullptr);
}

TEST_F(Table, FiguresAreWrittenWholeOrNotAtAll) {
  const QDir folder(QString::fromStdString(test::testFolder().string()));
  const auto path = [&](const char* name) { return folder.filePath(QString::fromLatin1(name)); };
  auto* view = dynamic_cast<ResultViewPage*>(open("mnuEgramCell", 4));
  const std::vector<std::pair<const char*, QByteArray>> files = {
      {"a.png", "\x89PNG"}, {"a.svg", "<?xml"}, {"a.pdf", "%PDF"}};
  for (const auto& [name, start] : files) {
    view->exportTo(path(name));
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    const QByteArray all = file.readAll();
    EXPECT_TRUE(all.startsWith(start)) << name;
    EXPECT_GT(all.size(), 3000) << name;
    EXPECT_EQ(all.count("Size (nt)"), start == "<?xml" ? 4 : 0) << name;
  }
  EXPECT_TRUE(view->findChildren<QLabel*>().first()->isHidden());
  view->exportTo(path("a.bmp"));
  view->exportTo(path("nowhere/a.svg"));
  EXPECT_FALSE(view->findChildren<QLabel*>().first()->isHidden());
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 3);
}

}  // namespace
}  // namespace banddesk::desktop
