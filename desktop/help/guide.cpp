#include "desktop/help/guide.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <array>

#include "desktop/base/qt_text.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

QString startPage() { return QStringLiteral("index.md"); }

struct Topic {
  const char* name;
  const char* file;
  const char* heading;
};

constexpr std::array<Topic, 8> kTopics = {{
    {names::kParametersPage, "new-analysis.md", ""},
    {names::kResultsPage, "results.md", ""},
    {"AFLPWarning", "results.md", "Decisions by hand"},
    {"ColumnSelector", "columns.md", ""},
    {"ColumnSort", "columns.md", "Sorting by columns"},
    {"SingleSample", "views.md", ""},
    {"OverlayGraphView", "views.md", ""},
    {"StackedView", "views.md", ""},
}};

QString textOf(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
  return QString::fromUtf8(file.readAll());
}

QString titleOf(const QString& folder, const QString& file) {
  static const QRegularExpression kHeading(QStringLiteral("^# +(.+)$"), QRegularExpression::MultilineOption);
  const QString title = kHeading.match(textOf(QDir(folder).filePath(file))).captured(1).trimmed();
  return title.isEmpty() ? file : title;
}

}  // namespace

QString guideFolder(const std::string& programs) {
  const QString installed = QDir(toQString(programs)).filePath(QStringLiteral("../../share/banddesk/guide"));
  if (QFile::exists(QDir(installed).filePath(startPage()))) return QDir::cleanPath(installed);
  return QStringLiteral(BANDDESK_GUIDE_SOURCE);
}

QList<GuidePage> guidePages(const QString& folder) {
  QStringList files{startPage()};
  static const QRegularExpression kLink(QStringLiteral("\\]\\(([\\w-]+\\.md)"));
  for (auto links = kLink.globalMatch(textOf(QDir(folder).filePath(startPage()))); links.hasNext();) {
    files << links.next().captured(1);
  }
  files << QDir(folder).entryList({QStringLiteral("*.md")}, QDir::Files, QDir::Name);
  files.removeDuplicates();
  QList<GuidePage> pages;
  for (const QString& file : files) {
    if (QFile::exists(QDir(folder).filePath(file))) pages.push_back({file, titleOf(folder, file)});
  }
  return pages;
}

GuidePlace placeOf(const std::string& topic, const QString& folder) {
  const auto known = std::ranges::find_if(kTopics, [&](const Topic& each) { return topic == each.name; });
  const bool isKnown = known != kTopics.end();
  const QString file = isKnown ? QLatin1String(known->file) : toQString(topic) + QStringLiteral(".md");
  static const QRegularExpression kPageName(QStringLiteral("^[\\w-]+\\.md$"));
  if (!kPageName.match(file).hasMatch() || !QFile::exists(QDir(folder).filePath(file)))
    return {startPage(), {}};
  return {file, isKnown ? QString(QLatin1String(known->heading)) : QString()};
}

}  // namespace banddesk::desktop
