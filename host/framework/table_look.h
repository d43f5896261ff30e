// How a table stands on its open page beyond what is stored of its analysis: the order of its rows among
// equals, what is hidden, widths, frozen lines, the grey of headers. They depend on the way that the user
// took, so a page that is opened anew from its analysis needs them to stand as it did. As bytes, to be kept.
#pragma once

#include <string>
#include <string_view>

#include "host/grid/grid_control.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

std::string lookOf(IAFLPResultsPage& page, const GridControl& grid);

// Nothing where the table has other bins or other columns. Error 51 for bytes that are no look.
void showLook(std::string_view look, IAFLPResultsPage& page, GridControl& grid);

}  // namespace banddesk::host
