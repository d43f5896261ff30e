// The files of `banddesk export --format`: read from the command line, and made.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/analysis_request.h"
#include "host/formats/format.h"

namespace banddesk::cli {

struct FormatRequest {
  const host::formats::Format* format;
  std::filesystem::path out;
};

// The words behind each --format, one after the other: a format and a file. Raises an Error where a format is
// unknown or has no file.
std::vector<FormatRequest> formatRequests(const std::vector<std::string>& words);

// Every file, those beside the ones asked for too.
std::vector<ReadyOutput> formatOutputs(const std::vector<FormatRequest>& requests,
                                       const host::statistics::BandMatrix& bands);
std::vector<ReadyOutput> readyOutputs(const host::formats::Parts& parts, const std::filesystem::path& out);

// A line a format: its name, for what, and whether it was checked.
std::string formatList();

}  // namespace banddesk::cli
