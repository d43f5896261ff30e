// The guide: which page answers for what, that its links lead somewhere, and the window that shows it.
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

#include "desktop/base/help_topic.h"
#include "desktop/base/qt_text.h"
#include "desktop/help/help_window.h"
#include "tests/desktop/modal.h"
#include "tests/support/test_folder.h"

namespace banddesk::desktop {
namespace {

const QString kFolder = QStringLiteral(BANDDESK_SOURCE_DIR "/docs/guide");

TEST(GuideTest, ATopicOpensItsPageAndAnUnknownOneTheStart) {
  const std::pair<const char*, const char*> cases[] = {{"", "index.md"},
                                                       {"AFLPWarning", "results.md"},
                                                       {"ColumnSort", "columns.md"},
                                                       {"export", "export.md"},
                                                       {"../notes", "index.md"}};
  for (const auto& [topic, file] : cases)
    EXPECT_EQ(placeOf(topic, kFolder).file, QLatin1String(file)) << topic;
}

TEST(GuideTest, EachLinkLeadsToAPageOrPictureAndEachPageIsLinkedFromTheStart) {
  static const QRegularExpression kLink(QStringLiteral("\\]\\(([^):]+)\\)"));
  QStringList linked{QStringLiteral("index.md")};
  QStringList pages;
  for (const GuidePage& page : guidePages(kFolder)) {
    pages << page.file;
    QFile file(QDir(kFolder).filePath(page.file));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    for (auto links = kLink.globalMatch(QString::fromUtf8(file.readAll())); links.hasNext();) {
      const QString target = links.next().captured(1);
      if (pages.size() == 1 && target.endsWith(QStringLiteral(".md"))) linked << target;
      EXPECT_TRUE(QFile::exists(QDir(kFolder).filePath(target)))
          << toText(page.file) << " links to " << toText(target);
    }
  }
  linked.removeDuplicates();
  EXPECT_EQ(pages, linked);
}

TEST(GuideTest, LiesBesideTheProgramsOfAnInstalledCopy) {
  const QDir prefix(QString::fromStdString(test::testFolder().string()));
  const QString guide = prefix.filePath(QStringLiteral("share/banddesk/guide"));
  ASSERT_TRUE(QDir().mkpath(guide) && QDir().mkpath(prefix.filePath(QStringLiteral("libexec/banddesk"))));
  const std::string programs = toText(prefix.filePath(QStringLiteral("libexec/banddesk/")));
  EXPECT_EQ(guideFolder(programs), kFolder);
  ASSERT_TRUE(QFile::copy(kFolder + QStringLiteral("/index.md"), guide + QStringLiteral("/index.md")));
  EXPECT_EQ(guideFolder(programs), guide);
}

// Of each picture on the page: what the browser draws, in its own units; empty for a missing file.
QList<QSizeF> picturesOn(const QTextBrowser& browser) {
  QList<QSizeF> sizes;
  for (QTextBlock block = browser.document()->begin(); block.isValid(); block = block.next()) {
    for (auto part = block.begin(); !part.atEnd(); ++part) {
      if (!part.fragment().charFormat().isImageFormat()) continue;
      const QTextImageFormat format = part.fragment().charFormat().toImageFormat();
      const auto drawn = browser.document()->resource(QTextDocument::ImageResource, QUrl(format.name()));
      sizes << drawn.value<QImage>().deviceIndependentSize();
    }
  }
  return sizes;
}

TEST(HelpWindowTest, PicturesFitThePageAtEveryWidth) {
  HelpWindow window(kFolder, nullptr);
  qsizetype count = 0;
  for (const GuidePage& page : guidePages(kFolder)) {
    window.resize(1200, 700);
    window.showTopic(toText(page.file.chopped(3)));
    ASSERT_EQ(window.browser().source().fileName(), page.file);
    QApplication::processEvents();
    EXPECT_EQ(window.browser().horizontalScrollBar()->maximum(), 0) << toText(page.file);
    const QList<QSizeF> wide = picturesOn(window.browser());
    count += wide.size();
    window.resize(600, 700);
    const QList<QSizeF> narrow = picturesOn(window.browser());
    for (qsizetype i = 0; i < wide.size(); ++i) {
      EXPECT_GT(wide[i].width(), 400) << toText(page.file) << ", picture " << i;
      EXPECT_LT(narrow[i].width(), window.browser().viewport()->width());
      EXPECT_NEAR(narrow[i].height() / narrow[i].width(), wide[i].height() / wide[i].width(), 0.02);
    }
  }
  EXPECT_EQ(count, QDir(kFolder + QStringLiteral("/pictures")).entryList(QDir::Files).size())
      << "a picture that no page shows, or one that two show";
}

TEST(HelpWindowTest, ShowsTheTopicsHeadingGoesBackAndFindsText) {
  HelpWindow window(kFolder, nullptr);
  window.showTopic("");
  window.showTopic("AFLPWarning");
  EXPECT_TRUE(window.browser().source().fileName() == QStringLiteral("results.md"));
  EXPECT_EQ(window.browser().textCursor().block().text(), QStringLiteral("Decisions by hand"));
  auto* contents = window.findChild<QListWidget*>();
  EXPECT_EQ(contents->currentItem()->text(), QStringLiteral("The results"));
  window.findChild<QTextBrowser*>()->backward();
  EXPECT_EQ(contents->currentRow(), 0);
  contents->setCurrentRow(3);
  EXPECT_EQ(window.browser().source().fileName(), QStringLiteral("new-analysis.md"));
  auto* search = window.findChild<QLineEdit*>();
  QTest::keyClicks(search, QStringLiteral("scatter"));
  QTest::keyClick(search, Qt::Key_Return);
  EXPECT_EQ(window.browser().textCursor().selectedText(), QStringLiteral("scatter"));
}

TEST(HelpDeskTest, OpensOneWindowButInADialogItsOwnByTheTopicAroundTheFocus) {
  HelpDesk desk(kFolder);
  const HelpWindow& plain = desk.show("");
  QDialog dialog;
  QLineEdit inside(&dialog);
  const auto help = [&] { return dialog.findChild<HelpWindow*>(); };
  onNextDialog<QDialog>([&](QDialog&) {
    QTest::keyClick(&inside, Qt::Key_F1);
    EXPECT_EQ(help(), nullptr) << "no topic, no help";
    setHelpTopic(dialog, QStringLiteral("files"));
    QTest::keyClick(&inside, Qt::Key_F1);
    ASSERT_NE(help(), nullptr);
    EXPECT_EQ(help()->browser().source().fileName(), QStringLiteral("files.md"));
  });
  dialog.exec();
  EXPECT_EQ(&desk.show("AFLP"), &plain);
}

}  // namespace
}  // namespace banddesk::desktop
