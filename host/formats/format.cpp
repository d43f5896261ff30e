#include "host/formats/format.h"

#include <algorithm>
#include <fmt/format.h>

#include "host/formats/writers.h"
#include "plugin/base/error.h"

namespace banddesk::host::formats {
namespace {

[[noreturn]] void refuse(const std::string& why) { raise(ErrorNumber::InvalidArgument, "Formats", why); }

// A field of the table of names.
std::string plainField(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
  return text;
}

void requireCodes(const Format& format, const BandMatrix& bands) {
  const auto missing = std::ranges::count(bands.cells, Band::Missing);
  if (missing > 0 && format.missing == Missing::Refused)
    refuse(fmt::format("The format {} has no code for missing bands, and the table has {}.", format.name,
                       missing));
}

// A table without groups is one group, whatever the order.
BandMatrix ordered(const Format& format, const BandMatrix& bands) {
  return format.order == Order::ByGroup || bands.groups.empty() ? orderedByGroup(bands) : bands;
}

}  // namespace

std::filesystem::path pathOf(const Part& part, const std::filesystem::path& out) {
  std::filesystem::path path = out;
  if (part.replacesEnding) path.replace_extension();
  return path += part.suffix;
}

std::string Format::note() const {
  return checkedBy.empty() ? "not checked by the program itself" : fmt::format("read by {}", checkedBy);
}

std::span<const Format> allFormats() {
  static const std::array formats = {rFormat(),         genalexFormat(),    genalexSpreadsheetFormat(),
                                     structureFormat(), nexusFormat(),      mrBayesFormat(),
                                     phylipFormat(),    spagediFormat(),    bayescanFormat(),
                                     popgeneFormat(),   arlequinFormat(),   aflpSurvFormat(),
                                     darwinFormat(),    newHybridsFormat(), hickoryFormat(),
                                     bapsFormat(),      detselFormat()};
  return formats;
}

const Format& formatNamed(std::string_view name) {
  const auto found = std::ranges::find(allFormats(), name, &Format::name);
  if (found != allFormats().end()) return *found;
  std::string names;
  for (const Format& format : allFormats())
    names += fmt::format("{}{}", names.empty() ? "" : ", ", format.name);
  refuse(fmt::format("\"{}\" is none of the formats {}.", name, names));
}

Parts write(const Format& format, const BandMatrix& bands, const std::string& fileName) {
  requireSound(bands);
  requireCodes(format, bands);
  const BandMatrix table = ordered(format, bands);
  std::vector<std::string> loci;
  loci.reserve(table.loci.size());
  for (const statistics::Locus& locus : table.loci) loci.push_back(locus.name());
  const Sheet sheet{fitNames(table.samples, format.samples), fitNames(table.groups, format.groups),
                    fitNames(loci, format.loci), table.groupOf, table};
  Parts parts = format.write(sheet, fileName);
  std::vector<NameChange> changes = {{"sample", table.samples, sheet.samples}, {"bin", loci, sheet.loci}};
  if (!bands.groups.empty()) changes.push_back({"group", table.groups, sheet.groups});
  appendNameTable(parts, changes);
  return parts;
}

// ---- What the formats share

void appendNameTable(Parts& parts, const std::vector<NameChange>& changes) {
  std::string text = "Kind\tIn the study\tIn the file\n";
  bool isChanged = false;
  for (const NameChange& change : changes) {
    isChanged |= change.before != change.after;
    for (std::size_t i = 0; i < change.before.size(); ++i)
      text += fmt::format("{}\t{}\t{}\n", change.kind, plainField(change.before[i]), change.after[i]);
  }
  if (isChanged) parts.push_back({".names.tsv", text});
}

std::string cells(std::span<const Band> line, const Codes& codes, std::string_view separator) {
  std::string text;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (i > 0) text += separator;
    text += codes[static_cast<std::size_t>(line[i])];
  }
  return text;
}

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
  return fmt::format("{}", fmt::join(texts, separator));
}

std::string csvField(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string field = "\"";
  for (const char c : text) field += c == '"' ? "\"\"" : std::string(1, c);
  return field + "\"";
}

std::vector<BandCount> countsOfLocus(const Sheet& sheet, std::size_t locus) {
  std::vector<BandCount> counts(sheet.groups.size());
  for (std::size_t sample = 0; sample < sheet.samples.size(); ++sample) {
    const Band band = sheet.line(sample)[locus];
    BandCount& count = counts[sheet.groupOf[sample]];
    count.present += band == Band::Present ? 1U : 0U;
    count.known += band == Band::Missing ? 0U : 1U;
  }
  return counts;
}

std::vector<std::size_t> groupSizes(const Sheet& sheet) {
  std::vector<std::size_t> sizes(sheet.groups.size());
  for (const std::size_t group : sheet.groupOf) ++sizes[group];
  return sizes;
}

}  // namespace banddesk::host::formats
