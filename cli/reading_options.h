// The options that say how peak tables are read, the same for every command that reads them.
#pragma once

#include <string>

#include "host/import/read_files.h"

namespace CLI {
class App;
}

namespace banddesk::cli {

// `options` must outlive the parsing.
void addReadingOptions(CLI::App& command, host::import::Options& options);

// "B,G,Y,R", four different dyes, as "BGYR". Throws CLI::ValidationError naming --dyes.
std::string readDyeLetters(const std::string& text);

}  // namespace banddesk::cli
