// What the user is told of the pages' boxes for numbers: which values they take, and which of them hold one
// that they refuse. The pages judge; this only puts it in words.
#pragma once

#include <QString>
#include <string>

#include "plugin/banddesk.h"

namespace banddesk::desktop {

// "from 0.05 to 10"; empty for any other control.
QString allowedIn(const std::string& box);

// A line for each box that the page has marked: its name, its value, what is allowed. Empty without one.
QString invalidValues(const IPageControl& page);

}  // namespace banddesk::desktop
