// Printing: how a job is divided into pages, and what stands in the PDF that is read back.
#include <QProcess>
#include <fmt/format.h>
#include <map>
#include <random>

#include "desktop/base/qt_text.h"
#include "desktop/print/page_output.h"
#include "desktop/print/page_painter.h"
#include "tests/desktop/modal.h"

namespace banddesk::desktop {
namespace {

using host::PrintCell;
using host::PrintJob;

// A job of random size whose cells are merged here and there, each text once.
PrintJob randomJob(std::mt19937& random, std::size_t rows, std::size_t columns) {
  PrintJob job;
  StyleAttributes large;
  large.font = GridFont{14};
  job.looks = {StyleAttributes{}, large};
  job.repeatsFirstRow = random() % 2 == 0;
  for (std::size_t column = 0; column < columns; ++column) {
    job.columnWidths.push_back(static_cast<std::int32_t>(random() % 400));
  }
  std::vector<std::size_t> freeFrom(columns);  // the row from which a column is free again
  for (std::size_t row = 0; row < rows; ++row) {
    auto& cells = job.rows.emplace_back();
    for (std::size_t column = 0; column < columns; ++column) {
      if (freeFrom[column] > row) continue;
      std::size_t wide = 1;
      while (random() % 4 == 0 && column + wide < columns && freeFrom[column + wide] <= row) ++wide;
      const bool mayBeHigh = random() % 8 == 0 && (row > 0 || !job.repeatsFirstRow);
      const std::size_t high = mayBeHigh ? 1 + random() % std::min<std::size_t>(6, rows - row) : 1;
      for (std::size_t i = 0; i < wide; ++i) freeFrom[column + i] = row + high;
      cells.push_back({fmt::format("{}.{}", row, column), static_cast<std::uint32_t>(random() % 2),
                       static_cast<std::uint32_t>(column), static_cast<std::uint32_t>(wide),
                       static_cast<std::uint32_t>(high)});
    }
  }
  return job;
}

struct Coverage {
  std::map<std::pair<std::size_t, std::size_t>, int> parts;  // how often each line's crossing was drawn
  std::map<const PrintCell*, int> texts;
};

Coverage coverageOf(const PrintLayout& layout) {
  Coverage coverage;
  for (std::size_t page = 0; page < layout.pageCount(); ++page) {
    layout.visit(page, [&](const PlacedCell& placed) {
      if (placed.holdsText) ++coverage.texts[placed.cell];
      for (std::size_t row = placed.lines.firstRow; row < placed.lines.endRow; ++row) {
        for (std::size_t column = placed.lines.firstColumn; column < placed.lines.endColumn; ++column) {
          ++coverage.parts[{row, column}];
        }
      }
      EXPECT_GE(placed.place.left, 0);
      EXPECT_LE(placed.place.left + placed.place.width, layout.room().width + 0.01);
      EXPECT_GE(placed.place.top, layout.headerHeight());
    });
  }
  return coverage;
}

TEST(PrintLayoutTest, PagesCoverEachCellOnceAndRepeatOnlyTheColumnHeader) {
  std::mt19937 random(3);
  for (int round = 0; round < 200; ++round) {
    const PrintJob job = randomJob(random, 1 + random() % 40, 1 + random() % 20);
    const PageRoom room{100 + static_cast<double>(random() % 500), 60 + static_cast<double>(random() % 300),
                        0.75};
    const PrintLayout layout(job, room);
    Coverage coverage = coverageOf(layout);
    const int repeats = static_cast<int>(layout.pagesDown());
    for (std::size_t row = 0; row < job.rows.size(); ++row) {
      const int expected = row == 0 && job.repeatsFirstRow ? repeats : 1;
      for (std::size_t column = 0; column < job.columnWidths.size(); ++column) {
        ASSERT_EQ((coverage.parts[{row, column}]), expected) << round << ": " << row << ' ' << column;
      }
      for (const PrintCell& cell : job.rows[row]) ASSERT_EQ(coverage.texts.at(&cell), expected) << cell.text;
    }
  }
}

PrintJob plainJob(std::size_t rows, std::size_t columns) {
  PrintJob job;
  job.looks.resize(2);
  job.looks[1].interior = GridBrush{0, 0x0000FF, 0x0000FF};
  job.looks[1].textColor = 0xFF0000;
  job.repeatsFirstRow = true;
  job.columnWidths.assign(columns, 60);
  for (std::size_t row = 0; row < rows; ++row) {
    auto& cells = job.rows.emplace_back();
    for (std::size_t column = 0; column < columns; ++column) {
      const std::string text = row == 0 ? fmt::format("Head{}", column) : fmt::format("r{}c{}", row, column);
      cells.push_back({text, 0, static_cast<std::uint32_t>(column), 1, 1});
    }
  }
  StyleAttributes title;
  title.value = "AFLP - Primula";
  title.font = GridFont{14};
  StyleAttributes foot;
  foot.value = "Study - Alps";
  job.header = {{1, 2, title}};
  job.footer = {{1, 2, foot}};
  return job;
}

TEST(PrintLayoutTest, APageBreaksBeforeAMergedCellThatFitsAndNeverStandsStill) {
  PrintJob job = plainJob(10, 6);
  for (std::size_t row = 0; row < 10; ++row) job.rows[row].resize(1);
  job.rows[5][0].rows = 3;  // rows 5 to 7
  const double line = lineHeight(kDefaultFontPoints);
  const PrintLayout probe(job, {300, 1000, 0.75});
  const double fixed = probe.headerHeight() + probe.footerHeight();
  const PrintLayout layout(job, {300, fixed + 7 * line, 0.75});  // the column header and six rows
  EXPECT_EQ(layout.lines(0).endRow, 5U);
  EXPECT_EQ(layout.lines(layout.pagesAcross()).firstRow, 5U);
  const PrintLayout tiny(job, {1, 1, 0.75});
  EXPECT_EQ(tiny.pagesDown(), 9U) << "a row a page where not even one fits";
  EXPECT_EQ(tiny.pagesAcross(), 6U);
  EXPECT_EQ(PrintLayout(PrintJob{}, {300, 300, 0.75}).pageCount(), 1U);
}

class Pdf : public OwnFolder {
 protected:
  // The text of the pages, counted from 1.
  static QString textOf(const QString& file, int first = 1, int last = 9999) {
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"),
                 {QStringLiteral("-layout"), QStringLiteral("-f"), QString::number(first),
                  QStringLiteral("-l"), QString::number(last), file, QStringLiteral("-")});
    EXPECT_TRUE(reader.waitForFinished());
    return QString::fromUtf8(reader.readAllStandardOutput());
  }

  const QString pdf = path("out.pdf");
  QString error;
};

TEST_F(Pdf, EachPageHasTitleStudyNumberAndColumnHeader) {
  const PrintJob job = plainJob(200, 4);
  PaperChoice choice = usualPaper(job);
  ASSERT_EQ(writePdf(pdf, job, choice, {}, error), OutputEnd::Done) << toText(error);
  const std::size_t pages = PaperLayout(job, choice).layout.pageCount();
  ASSERT_GT(pages, 2U);
  for (int page = 1; page <= static_cast<int>(pages); ++page) {
    const QString text = textOf(pdf, page, page);
    for (const QString& part :
         {QStringLiteral("AFLP - Primula"), QStringLiteral("Study - Alps"), QStringLiteral("Head3"),
          QStringLiteral("Page %1 of %2").arg(page).arg(pages)}) {
      EXPECT_TRUE(text.contains(part)) << toText(part) << " on page " << page;
    }
  }
  const QString all = textOf(pdf);
  EXPECT_EQ(all.count(QStringLiteral("r199c3")), 1);
  EXPECT_FALSE(all.contains(QChar(0x2026))) << "no text is cut";
}

TEST_F(Pdf, AnOutputThatIsStoppedOrFailsLeavesTheFormerFile) {
  const PrintJob job = plainJob(200, 4);
  QFile file(pdf);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("before");
  file.close();
  EXPECT_EQ(writePdf(
                pdf, job, usualPaper(job), [](std::size_t done) { return done < 2; }, error),
            OutputEnd::Stopped);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), QByteArray("before"));
  EXPECT_EQ(writePdf(path("no/such/folder.pdf"), job, usualPaper(job), {}, error), OutputEnd::Failed);
  EXPECT_FALSE(error.isEmpty());
}

TEST_F(Pdf, OnePageWideShrinksTheTableToThePaper) {
  const PrintJob job = plainJob(5, 60);
  PaperChoice choice = usualPaper(job);
  EXPECT_EQ(choice.page.orientation(), QPageLayout::Landscape) << "a wide table lies across";
  EXPECT_GT(PaperLayout(job, choice).layout.pagesAcross(), 1U);
  choice.scale = 0;
  EXPECT_EQ(PaperLayout(job, choice).layout.pagesAcross(), 1U);
}

TEST_F(Pdf, BlackAndWhiteHasNoColourInTextOrGround) {
  PrintJob job = plainJob(3, 3);
  job.rows[1][1].look = 1;
  for (const bool isBlackWhite : {false, true}) {
    job.isBlackWhite = isBlackWhite;
    const PaperLayout paper(job, usualPaper(job));
    QImage image(600, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    PagePainter(paper.layout).paint(painter, 0);
    painter.end();
    int coloured = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) coloured += QColor(image.pixel(x, y)).saturation() > 40 ? 1 : 0;
    }
    EXPECT_EQ(coloured == 0, isBlackWhite);
  }
}

}  // namespace
}  // namespace banddesk::desktop
