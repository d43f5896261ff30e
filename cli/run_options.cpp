#include "cli/run_options.h"

#include <CLI/CLI.hpp>
#include <array>
#include <fmt/format.h>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace banddesk::cli {
namespace {

using namespace host::runs;
using Take = std::function<void(SettingsChange)>;

SizeStandard readStandard(const std::string& text, std::span<const SizeStandard> standards) {
  if (const SizeStandard* known = findStandard(standards, text)) return *known;
  try {
    return standardOfSizes("own sizes", text);
  } catch (const std::invalid_argument& error) {
    std::string names;
    for (const SizeStandard& standard : standards) names += (names.empty() ? "" : ", ") + standard.name;
    throw CLI::ValidationError(
        "--standard",
        fmt::format("\"{}\" is neither a list of sizes ({}) nor one of {}", text, error.what(), names));
  }
}

double readNumber(const char* option, const std::string& text, double least, double most) {
  double number = 0;
  if (!CLI::detail::lexical_cast(text, number) || !(number >= least && number <= most))
    throw CLI::ValidationError(option, fmt::format("\"{}\" is no number from {} to {}", text, least, most));
  return number;
}

double readHeight(const std::string& text) {
  return readNumber("--least-height", text, std::numeric_limits<double>::min(), 1e9);
}

/// "50", or "B=50,G=100": the dyes' letters in the order of their channels.
void readLeastHeights(const std::string& text, std::array<double, kMostDyes>& heights) {
  constexpr std::string_view letters = "BGYROP";
  if (text.find('=') == std::string::npos) return heights.fill(readHeight(text));
  for (const std::string& part : CLI::detail::split(text, ',')) {
    const std::size_t at = part.size() > 2 && part[1] == '=' ? letters.find(part[0]) : std::string_view::npos;
    if (at == std::string_view::npos)
      throw CLI::ValidationError("--least-height", fmt::format("\"{}\" is not such as B=50", part));
    heights[at] = readHeight(part.substr(2));
  }
}

/// "50-500"
void readSizes(const std::string& text, PeakSettings& peaks) {
  const std::size_t dash = text.find('-');
  if (dash == std::string::npos)
    throw CLI::ValidationError("--sizes", fmt::format("\"{}\" is not such as 50-500", text));
  peaks.leastSize = readNumber("--sizes", text.substr(0, dash), 0, 1e6);
  peaks.largestSize = readNumber("--sizes", text.substr(dash + 1), peaks.leastSize, 1e6);
}

template <class Choice>
Choice readChoice(const char* option, const std::string& text,
                  const std::vector<std::pair<const char*, Choice>>& choices) {
  std::string names;
  for (const auto& [name, choice] : choices) {
    if (text == name) return choice;
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  throw CLI::ValidationError(option, fmt::format("\"{}\" is none of {}", text, names));
}

// An option with a value; the value is read at once, so that a wrong one is a fault of the command line.
void addOption(CLI::App& command, const Take& take, const char* name, const char* type, const char* help,
               const std::function<void(const std::string&, RunSettings&)>& read) {
  command
      .add_option_function<std::string>(
          name,
          [take, read](const std::string& text) {
            RunSettings tried;
            read(text, tried);
            take([read, text](RunSettings& settings, auto) { read(text, settings); });
          },
          help)
      ->type_name(type);
}

void addPeakOptions(CLI::App& command, const Take& take) {
  addOption(command, take, "--least-height", "RFU",
            "Of runs: the least height of a peak, for all dyes or such as B=50,G=100 [50]",
            [](const std::string& text, RunSettings& to) { readLeastHeights(text, to.peaks.leastHeight); });
  addOption(command, take, "--least-width", "SCANS", "Of runs: the least width of a peak at half height [2]",
            [](const std::string& text, RunSettings& to) {
              to.peaks.leastWidth = readNumber("--least-width", text, 0, 1000);
            });
  addOption(command, take, "--sizes", "FROM-TO", "Of runs: the sizes of the peaks that are kept, in nt [all]",
            [](const std::string& text, RunSettings& to) { readSizes(text, to.peaks); });
  addOption(command, take, "--smoothing", "HOW", "Of runs: none, light or heavy [none]",
            [](const std::string& text, RunSettings& to) {
              to.peaks.smoothing = readChoice<Smoothing>(
                  "--smoothing", text,
                  {{"none", Smoothing::None}, {"light", Smoothing::Light}, {"heavy", Smoothing::Heavy}});
            });
  addOption(command, take, "--baseline-window", "SCANS", "Of runs: the window of the baseline [51]",
            [](const std::string& text, RunSettings& to) {
              to.peaks.baselineWindow = static_cast<int>(readNumber("--baseline-window", text, 3, 9999));
            });
  addOption(command, take, "--peak-window", "SCANS",
            "Of runs: the window of the polynomial that finds peaks [15, more where peaks are wide]",
            [](const std::string& text, RunSettings& to) {
              to.peaks.polynomialWindow = static_cast<int>(readNumber("--peak-window", text, 5, 999));
              to.peaks.doesWindowFollowWidth = false;
            });
  addOption(command, take, "--peak-degree", "N", "Of runs: the degree of that polynomial [3]",
            [](const std::string& text, RunSettings& to) {
              to.peaks.polynomialDegree = static_cast<int>(readNumber("--peak-degree", text, 2, 5));
            });
}

void addFlag(CLI::App& command, const Take& take, const char* name, const char* help,
             void (*change)(RunSettings&)) {
  command.add_flag_callback(
      name, [take, change] { take([change](RunSettings& settings, auto) { change(settings); }); }, help);
}

}  // namespace

void addRunSettingOptions(CLI::App& command, const Take& take) {
  command
      .add_option_function<std::string>(
          "--standard",
          [take](const std::string& text) {
            take([text](RunSettings& settings, std::span<const SizeStandard> standards) {
              settings.ladder.standard.reset();
              if (text != "found") settings.ladder.standard = readStandard(text, standards);
            });
          },
          "Of runs: the size standard, by name or as a list of its sizes, or \"found\" [found]")
      ->type_name("NAME|SIZES");
  addFlag(command, take, "--with-250",
          "Of runs: size with the standard's 250 (and 340) nt too, which run unreliably",
          [](RunSettings& settings) { settings.ladder.usesUnreliable = true; });
  addFlag(command, take, "--without-250", "Of runs: size without them, as is usual",
          [](RunSettings& settings) { settings.ladder.usesUnreliable = false; });
  addFlag(command, take, "--beyond-standard", "Of runs: size peaks outside the standard by straight lines",
          [](RunSettings& settings) { settings.outside = OutsideLadder::StraightLine; });
  addFlag(command, take, "--within-standard", "Of runs: no sizes outside the standard, as is usual",
          [](RunSettings& settings) { settings.outside = OutsideLadder::NoSize; });
  addOption(command, take, "--size-method", "HOW",
            "Of runs: southern (local) or cubic (third order) [southern]",
            [](const std::string& text, RunSettings& to) {
              to.method = readChoice<SizeMethod>(
                  "--size-method", text,
                  {{"southern", SizeMethod::LocalSouthern}, {"cubic", SizeMethod::ThirdOrder}});
            });
  addOption(command, take, "--normalise-run", "WHEN",
            "Of runs: scale heights to the standard: file, always or never [file]",
            [](const std::string& text, RunSettings& to) {
              to.normalisation = readChoice<Normalisation>("--normalise-run", text,
                                                           {{"file", Normalisation::AsTheFileSays},
                                                            {"always", Normalisation::Always},
                                                            {"never", Normalisation::Never}});
            });
  addPeakOptions(command, take);
}

void addJobsOption(CLI::App& command, std::size_t& jobs) {
  command.add_option("--jobs", jobs, "Of runs: how many are analysed at once [as many as there are cores]")
      ->type_name("N");
}

}  // namespace banddesk::cli
