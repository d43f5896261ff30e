// Pictures of a table as pages: they follow it, share its selection, calculate beside the window, and become
// files; and the files for other programs.
#include <QApplication>
#include <QDoubleSpinBox>
#include <QFile>
#include <QLabel>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <algorithm>
#include <atomic>
#include <gmock/gmock.h>
#include <thread>

#include "desktop/base/qt_text.h"
#include "desktop/pictures/format_dialog.h"
#include "desktop/pictures/picture_file.h"
#include "desktop/pictures/picture_page.h"
#include "host/pictures/svg.h"
#include "tests/plugin/desk.h"
#include "tests/support/test_folder.h"

namespace banddesk::desktop {
namespace {

using host::pictures::Box;
using host::pictures::BoxKind;
using testing::ElementsAre;
using testing::HasSubstr;

// Five samples in the wells A01 to A05; bins at 100, 150, 200 and 250 nt.
std::vector<host::NewResult> results() {
  const std::vector<std::vector<double>> sizes = {
      {200.1, 100, 150}, {100.2, 250}, {150.1, 200}, {100.1, 250.2}, {250}};
  std::vector<host::NewResult> made;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    host::NewResult& result = made.emplace_back();
    result.sampleName = (i < 2 ? "oak_A0" : "elm_A0") + std::to_string(i + 1);
    result.fragments.dyes[0] = {sizes[i],
                                std::vector<double>(sizes[i].size(), 300 + 200 * static_cast<double>(i))};
  }
  return made;
}

class Pictures : public testing::Test {
 protected:
  Pictures() { desk.newAnalysis(); }

  PicturePage& open(const char* name) {
    const auto page = host.pages().OpenPage(name, analysis(), nullptr, true, true, true, true, true, true,
                                            nullptr, true, 0);
    opened.emplace_back(makePicturePage(host, *cast<host::HostPage>(page, "Page"), context, nullptr));
    auto& picture = dynamic_cast<PicturePage&>(*opened.back());
    picture.resize(900, 700);
    picture.show();
    EXPECT_TRUE(isDrawn(picture)) << name;
    return picture;
  }
  static bool isDrawn(const PicturePage& picture) {
    return QTest::qWaitFor([&] { return !picture.work().isRunning() && !picture.isOutOfDate(); });
  }
  std::shared_ptr<AFLP> analysis() { return host.study().Study()->AFLPs.Item(1); }
  IAFLPResultsPage& table() { return desk.page(); }
  std::int32_t column(std::int32_t result) { return table().Col("-" + std::to_string(result)); }
  std::set<std::int32_t> selected() const { return context.selection().results(); }
  // Those that the table shows as selected.
  std::set<std::int32_t> selectedColumns() {
    std::set<std::int32_t> found;
    for (std::int32_t each = 1; each <= table().NumCols(); ++each) {
      const bool isRow = table().Transpose();
      if (desk.grid().selection().contains(isRow ? each : 1, isRow ? 1 : each)) found.insert(each);
    }
    return found;
  }
  static const Box& boxOf(const PicturePage& picture, BoxKind kind, std::size_t sample) {
    for (const Box& box : picture.view().drawing().boxes) {
      if (box.kind == kind && box.sample == sample) return box;
    }
    throw std::logic_error("no such box");
  }
  static void click(const PicturePage& picture, host::pictures::Point at, Qt::KeyboardModifiers keys = {}) {
    QTest::mouseClick(picture.view().viewport(), Qt::LeftButton, keys, picture.view().shown(at).toPoint());
  }
  void toggleBin(std::int32_t row) {
    desk.chooseAt(row, 1, "mnuExcludeBin");
    desk.wait();
  }

  test::Desk desk{results()};
  host::Host& host = desk.host;
  mutable PictureContext context;
  std::vector<std::unique_ptr<QWidget>> opened;
};

TEST_F(Pictures, SelectWhatIsSelectedInAnyOfThemAndInTheTableWhicheverWayItLies) {
  const PicturePage& scatter = open("PrincipalCoordinates");
  const PicturePage& plates = open("Plates");
  for (const bool isTransposed : {false, true}) {
    if (isTransposed) desk.choose("mnuTransposeCell");
    ASSERT_EQ(table().Transpose(), isTransposed);
    const auto& marks = scatter.view().drawing().marks;
    const QPointF at = scatter.view().shown(marks[3].at);
    QWidget* const viewport = scatter.view().viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, (at - QPointF(12, 12)).toPoint());
    for (const QPointF corner : {QPointF(12, -12), QPointF(12, 12), QPointF(-12, 12)}) {
      const QPointF to = at + corner;
      QMouseEvent move(QEvent::MouseMove, to, viewport->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
      QApplication::sendEvent(viewport, &move);
    }
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, (at - QPointF(12, -12)).toPoint());
    // Samples with the same bands lie on one point.
    EXPECT_THAT(selected(), ElementsAre(2, 4));
    EXPECT_THAT(selectedColumns(), ElementsAre(column(2), column(4)));
    const Box& well = boxOf(plates, BoxKind::Place, 0);
    click(plates, {well.at.x + 5, well.at.y + 5}, Qt::ControlModifier);
    EXPECT_THAT(selectedColumns(), ElementsAre(column(1), column(2), column(4)));
    isTransposed ? desk.grid().user().selectRows(column(5), column(5))
                 : desk.grid().user().selectCols(column(5), column(5));
    EXPECT_TRUE(QTest::qWaitFor([&] { return selected() == std::set{5}; }));
    QTest::keyClick(&plates.view(), Qt::Key_Escape);
    EXPECT_THAT(selectedColumns(), testing::IsEmpty());
  }
}

TEST_F(Pictures, OfAGelLeadToBinAndSampleAndFollowTheTableUntilItIsClosed) {
  const PicturePage& gel = open("PseudoGel");
  const auto bins = [&] { return std::ranges::count(gel.view().drawing().boxes, BoxKind::Bin, &Box::kind); };
  ASSERT_EQ(bins(), 4);
  table().SortCol(table().Col("8"));
  const Box& fragment = boxOf(gel, BoxKind::Ink, 1);
  ASSERT_THAT(fragment.name, HasSubstr("oak_A02, D1: 100.20 nt, 500 RFU, bin D1_100"));
  click(gel, {fragment.at.x + 3, fragment.at.y + 0.5});
  EXPECT_EQ(table().CellText("6", desk.grid().currentRow()), "100");
  EXPECT_EQ(desk.grid().currentCol(), column(2));
  EXPECT_THAT(selected(), ElementsAre(2));
  toggleBin(desk.grid().currentRow());  // acts on that bin alone, though a sample is selected
  EXPECT_TRUE(QTest::qWaitFor([&] { return bins() == 3; })) << "an excluded bin is none of the picture's";
  host.pages().end(desk.pageNamed("AFLP"), false);
  const auto says = [&](const char* text) {
    return std::ranges::any_of(gel.findChildren<QLabel*>(), [&](const QLabel* label) {
      return label->text().contains(QLatin1String(text));
    });
  };
  EXPECT_TRUE(QTest::qWaitFor([&] { return says("the table is closed"); }));
  EXPECT_EQ(bins(), 3);
}

TEST_F(Pictures, ShareGroupsAndTellWhereTheyDoNotFit) {
  const PicturePage& scatter = open("PrincipalCoordinates");
  const PicturePage& tree = open("Dendrogram");
  context.setGroups({GroupSource::Kind::Pattern, "^([a-z]+)_"});
  EXPECT_EQ(scatter.view().drawing().marks.size(), 5U + 2U) << "with the legend";
  EXPECT_EQ(tree.view().drawing().marks.size(), 5U + 2U);
  context.setGroups({GroupSource::Kind::Pattern, "(beech)"});
  EXPECT_EQ(scatter.trouble(), QStringLiteral("The pattern \"(beech)\" matches no sample's name."));
  EXPECT_EQ(scatter.view().drawing().marks.size(), 5U);
}

TEST(BackgroundWork, AnswersOnceInTheWindowsThreadOrNotAtAllWhenCancelled) {
  BackgroundWork work(nullptr);
  const auto window = std::this_thread::get_id();
  std::string told;
  QObject::connect(&work, &BackgroundWork::failed, [&](const Error& error) { told += error.description(); });
  const auto answering = [&](const char* text) {
    return [&told, text, window](const host::statistics::Progress&) -> BackgroundWork::Answer {
      EXPECT_NE(std::this_thread::get_id(), window);
      return [&told, text, window] {
        EXPECT_EQ(std::this_thread::get_id(), window);
        told += text;
      };
    };
  };
  auto hasEnded = std::make_shared<std::atomic<bool>>(false);
  work.start([hasEnded](const host::statistics::Progress& progress) -> BackgroundWork::Answer {
    while (progress(0.5)) std::this_thread::yield();
    *hasEnded = true;
    return [] { FAIL() << "it was cancelled"; };
  });
  ASSERT_TRUE(QTest::qWaitFor([&] { return work.share() == 0.5; }));
  work.start(answering("done."));
  EXPECT_TRUE(QTest::qWaitFor([&] { return *hasEnded && !work.isRunning(); }));
  work.start(
      [](const auto&) -> BackgroundWork::Answer { raise(ErrorNumber::InvalidArgument, "x", "failed."); });
  EXPECT_TRUE(QTest::qWaitFor([&] { return !work.isRunning(); }));
  EXPECT_EQ(told, "done.failed.");
}

QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST_F(Pictures, AreWrittenAsWideAsWanted) {
  const auto& drawing = open("HeatMap").view().drawing();
  const QString folder = QString::fromStdString(test::testFolder().string()) + QLatin1Char('/');
  const double aspect = drawing.height / drawing.width;
  writePicture(drawing, {}, folder + QStringLiteral("a.png"), {{}, 127, 200});
  const QImage image(folder + QStringLiteral("a.png"));
  EXPECT_EQ(image.width(), 1000);
  EXPECT_NEAR(image.height(), 1000 * aspect, 3);
  EXPECT_NEAR(image.dotsPerMeterX(), 7874, 1);
  EXPECT_NE(image.convertToFormat(QImage::Format_RGB32), QImage(image.size(), QImage::Format_RGB32));
  writePicture(drawing, {}, folder + QStringLiteral("a.svg"), {{}, 127, 200});
  EXPECT_EQ(contentOf(folder + QStringLiteral("a.svg")).toStdString(), svgOf(drawing, 127));
  EXPECT_TRUE(contentOf(folder + QStringLiteral("a.svg")).contains("width=\"127mm\""));
  writePicture(drawing, {}, folder + QStringLiteral("a.pdf"), {{}, 127, 200});
  EXPECT_THAT(contentOf(folder + QStringLiteral("a.pdf")).toStdString(), HasSubstr("/MediaBox [0 0 360.0"));
  EXPECT_THROW(writePicture(drawing, {}, folder + QStringLiteral("none/a.svg"), {}), Error);
}

TEST_F(Pictures, FilesForOtherProgramsAreAsTheirPreviewAndRefusedWithAReason) {
  auto values = std::make_shared<const host::PlainTable>(host::plainTable(*analysis(), table()));
  context.setGroups({GroupSource::Kind::Pattern, "^([a-z]+)_"});
  FormatDialog dialog(values, context, QStringLiteral("First"), nullptr);
  dialog.chooseFormat("baps");
  const QString path = QString::fromStdString((test::testFolder() / "First.txt").string());
  dialog.writeTo(path);
  const auto parts = dialog.parts(path);
  ASSERT_GE(parts.size(), 3U);
  const auto* tabs = dialog.findChild<QTabWidget*>();
  ASSERT_EQ(tabs->count(), static_cast<int>(parts.size()));
  for (int i = 0; i < tabs->count(); ++i) {
    const auto& part = parts[static_cast<std::size_t>(i)];
    EXPECT_EQ(contentOf(toQString(pathOf(part, toText(path)).string())).toStdString(), part.content);
    EXPECT_EQ(toText(qobject_cast<QPlainTextEdit*>(tabs->widget(i))->toPlainText()), part.content);
  }
  dialog.chooseFormat("aflp-surv");
  dialog.findChild<QDoubleSpinBox*>()->setValue(350);
  EXPECT_EQ(tabs->count(), 0);
  const auto labels = dialog.findChildren<QLabel*>();
  EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* label) {
    return label->text() ==
           QStringLiteral("The format aflp-surv has no code for missing bands, and the table has 3.");
  }));
  EXPECT_THROW(dialog.writeTo(path + QStringLiteral("2")), Error);
  EXPECT_FALSE(QFile::exists(path + QStringLiteral("2")));
}

}  // namespace
}  // namespace banddesk::desktop
