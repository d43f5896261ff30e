// The options that say how runs of instruments are analysed, the same for every command that does.
#pragma once

#include <functional>
#include <span>

#include "host/runs/run_settings.h"

namespace CLI {
class App;
}

namespace banddesk::cli {

// What an option does to settings. `standards` are those that can be named.
using SettingsChange = std::function<void(host::runs::RunSettings& settings,
                                          std::span<const host::runs::SizeStandard> standards)>;

// `take` gets a change for each option that is given, while the command line is parsed.
void addRunSettingOptions(CLI::App& command, const std::function<void(SettingsChange)>& take);
void addJobsOption(CLI::App& command, std::size_t& jobs);

}  // namespace banddesk::cli
