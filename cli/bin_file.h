// A table of bins: dye, from, to and name a line, with tabs between them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/binning/calculator_settings.h"

namespace banddesk::cli {

// Dyes are D1 to D4 or 1 to 4, sizes in nt; the name may be absent, and a first line of headings is passed
// over. Raises an Error that names the line which is no bin, or where two bins of a dye meet.
std::vector<host::GivenBin> readBinFile(const std::filesystem::path& file);

}  // namespace banddesk::cli
