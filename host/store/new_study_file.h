// Files of studies that are made anew: each is written beside its place and takes it when it is complete, on
// the disk. Error 70 if there is such a file already or its folder may not be written.
#pragma once

#include <string>

#include "host/store/sqlite.h"

namespace banddesk::host {

// All that the study holds, in a new file.
void copyStudy(const sqlite::Database& study, const std::string& file);

// The same beside the study, under its name and ".bak", with a number where that is taken; returns the name.
std::string keepCopy(const sqlite::Database& study);

}  // namespace banddesk::host
