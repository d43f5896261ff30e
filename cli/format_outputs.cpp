#include "cli/format_outputs.h"

#include <fmt/format.h>

#include "plugin/base/error.h"

namespace banddesk::cli {

using host::formats::Format;
using host::formats::Missing;

std::vector<FormatRequest> formatRequests(const std::vector<std::string>& words) {
  std::vector<FormatRequest> requests;
  for (std::size_t i = 0; i < words.size(); i += 2) {
    const Format& format = host::formats::formatNamed(words[i]);
    if (i + 1 == words.size() || words[i + 1].empty())
      raise(ErrorNumber::InvalidArgument, "Export", fmt::format("--format {}: name a file too", words[i]));
    requests.push_back({&format, words[i + 1]});
  }
  return requests;
}

std::vector<ReadyOutput> readyOutputs(const host::formats::Parts& parts, const std::filesystem::path& out) {
  std::vector<ReadyOutput> outputs;
  for (const auto& part : parts) outputs.push_back({host::formats::pathOf(part, out), part.content});
  return outputs;
}

std::vector<ReadyOutput> formatOutputs(const std::vector<FormatRequest>& requests,
                                       const host::statistics::BandMatrix& bands) {
  std::vector<ReadyOutput> outputs;
  for (const auto& [format, out] : requests) {
    const auto parts = host::formats::write(*format, bands, out.filename().string());
    for (ReadyOutput& output : readyOutputs(parts, out)) outputs.push_back(std::move(output));
  }
  return outputs;
}

std::string formatList() {
  std::string text;
  for (const Format& format : host::formats::allFormats()) {
    text += fmt::format("{:<13} {}; {}{}\n", format.name, format.title, format.note(),
                        format.missing == Missing::Refused ? "; without missing bands" : "");
  }
  return text;
}

}  // namespace banddesk::cli
