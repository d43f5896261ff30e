// The user's guide as it lies on the disk: a folder of Markdown pages, and which of them answers for what.
#pragma once

#include <QList>
#include <QString>
#include <string>

#include "host/framework/component.h"

namespace banddesk::desktop {

struct GuidePage {
  QString file;  // within the folder
  QString title;
};

struct GuidePlace {
  QString file;
  QString heading;  // where on the page; empty: at its start
};

// Of an installed program, by the folder that it runs in; else in the tree that it was built from.
QString guideFolder(const std::string& programs = host::besideExecutable(""));

// The start page first, then the others in the order in which it names them, then the rest.
QList<GuidePage> guidePages(const QString& folder);

// A topic is the name of a page or window of the program, or of a page of the guide. What is not known is
// answered by the start page.
GuidePlace placeOf(const std::string& topic, const QString& folder);

}  // namespace banddesk::desktop
