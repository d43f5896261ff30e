// The guide: which page answers for what, that its links lead somewhere, and the window that shows it.
#include <QDesktopServices>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTest>
#include <QTextBlock>

#include "desktop/base/qt_text.h"
#include "desktop/help/help_window.h"
#include "tests/desktop/modal.h"

namespace banddesk::desktop {
namespace {

const QString kFolder = QStringLiteral(BANDDESK_SOURCE_DIR "/docs/guide");

TEST(GuideTest, EveryTopicOpensItsPageAndAnUnknownOneTheStart) {
  const std::pair<const char*, const char*> cases[] = {{"", "index.md"},
                                                       {"AFLPParams", "new-analysis.md"},
                                                       {"AFLP", "results.md"},
                                                       {"AFLPWarning", "results.md"},
                                                       {"ColumnSort", "columns.md"},
                                                       {"export", "export.md"},
                                                       {"nothing", "index.md"},
                                                       {"../notes", "index.md"}};
  for (const auto& [topic, file] : cases)
    EXPECT_EQ(placeOf(topic, kFolder).file, QLatin1String(file)) << topic;
}

TEST(GuideTest, ThePagesAreListedInTheOrderOfTheStartPageAndTheirLinksExist) {
  const QList<GuidePage> pages = guidePages(kFolder);
  ASSERT_GE(pages.size(), 6);
  EXPECT_EQ(pages[0].title, QStringLiteral("Banddesk"));
  EXPECT_EQ(pages[1].file, QStringLiteral("new-analysis.md"));
  static const QRegularExpression kLink(QStringLiteral("\\]\\(([^):]+)\\)"));
  for (const GuidePage& page : pages) {
    QFile file(QDir(kFolder).filePath(page.file));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    for (auto links = kLink.globalMatch(QString::fromUtf8(file.readAll())); links.hasNext();) {
      const QString target = links.next().captured(1);
      EXPECT_TRUE(QFile::exists(QDir(kFolder).filePath(target)))
          << toText(page.file) << " links to " << toText(target);
    }
  }
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
  contents->setCurrentRow(1);
  EXPECT_EQ(window.browser().source().fileName(), QStringLiteral("new-analysis.md"));
  auto* search = window.findChild<QLineEdit*>();
  QTest::keyClicks(search, QStringLiteral("scatter"));
  QTest::keyClick(search, Qt::Key_Return);
  EXPECT_EQ(window.browser().textCursor().selectedText(), QStringLiteral("scatter"));
}

TEST(HelpWindowTest, ALinkIntoTheNetworkOpensOutside) {
  QTextBrowser outside;  // stands for the user's browser; it cannot fetch anything either
  QDesktopServices::setUrlHandler(QStringLiteral("https"), &outside, "setSource");
  HelpWindow window(kFolder, nullptr);
  window.showTopic("");
  auto* browser = window.findChild<QTextBrowser*>();
  const QUrl before = browser->source();
  browser->setHtml(QStringLiteral("<a href='https://example.org/'>outside</a>"));
  browser->setFocus();
  QTest::keyClick(browser, Qt::Key_Tab);
  QTest::keyClick(browser, Qt::Key_Return);
  QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
  EXPECT_EQ(outside.source(), QUrl(QStringLiteral("https://example.org/")));
  EXPECT_EQ(browser->source(), before);
}

TEST(HelpDeskTest, HelpOverAModalWindowBelongsToItSoThatItCanBeUsed) {
  HelpDesk desk(kFolder);
  HelpWindow& plain = desk.show("");
  EXPECT_EQ(&desk.show("AFLP"), &plain);
  QDialog dialog;
  onNextDialog<QDialog>([&](QDialog& modal) { EXPECT_EQ(desk.show("ColumnSort").parentWidget(), &modal); });
  dialog.exec();
  EXPECT_EQ(&desk.show(""), &plain);
}

}  // namespace
}  // namespace banddesk::desktop
