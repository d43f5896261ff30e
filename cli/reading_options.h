// The options that say how peak tables are read, the same for every command that reads them.
#pragma once

#include "host/import/read_files.h"

namespace CLI {
class App;
}

namespace banddesk::cli {

// `options` must outlive the parsing.
void addReadingOptions(CLI::App& command, host::import::Options& options);

}  // namespace banddesk::cli
