#include "cli/bin_file.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <optional>
#include <tuple>

#include "host/import/field_file.h"
#include "plugin/base/error.h"

namespace banddesk::cli {
namespace {

std::optional<double> sizeIn(const std::string& text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool isSize = error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
  return isSize ? std::optional(value) : std::nullopt;
}

std::optional<int> dyeIn(const std::string& text) {
  const std::string digit = text.starts_with('D') ? text.substr(1) : text;
  if (digit.size() != 1 || digit[0] < '1' || digit[0] > '4') return std::nullopt;
  return digit[0] - '1';
}

std::optional<host::GivenBin> binIn(const host::import::FieldLine& line) {
  if (line.fields.size() < 3 || line.fields.size() > 4) return std::nullopt;
  const auto dye = dyeIn(line.fields[0]);
  const auto from = sizeIn(line.fields[1]), to = sizeIn(line.fields[2]);
  if (!dye || !from || !to || *from > *to) return std::nullopt;
  return host::GivenBin{*dye, *from, *to, line.fields.size() > 3 ? line.fields[3] : std::string()};
}

}  // namespace

std::vector<host::GivenBin> readBinFile(const std::filesystem::path& file) {
  const auto refuse = [&](std::size_t line, const char* why) {
    raise(ErrorNumber::InvalidArgument, "Bins", fmt::format("{}, line {}: {}", file.string(), line, why));
  };
  std::vector<std::pair<host::GivenBin, std::size_t>> bins;
  for (const host::import::FieldLine& line : host::import::readFields(file)) {
    const auto bin = binIn(line);
    if (!bin && line.number == 1) continue;
    if (!bin) refuse(line.number, "expected a dye, two sizes in nt and a name, with tabs between them");
    bins.emplace_back(*bin, line.number);
  }
  if (bins.empty()) refuse(1, "there are no bins");
  std::ranges::sort(bins, {}, [](const auto& bin) { return std::tuple(bin.first.dye, bin.first.from); });
  std::vector<host::GivenBin> given;
  for (const auto& [bin, line] : bins) {
    if (!given.empty() && given.back().dye == bin.dye && bin.from <= given.back().to)
      refuse(line, "the bin meets another one of its dye");
    given.push_back(bin);
  }
  return given;
}

}  // namespace banddesk::cli
