// One function for each format, each in a file of its own, and what they share. Only format.cpp asks for
// them.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "host/formats/format.h"

namespace banddesk::host::formats {

Format rFormat();
Format genalexFormat();
Format genalexSpreadsheetFormat();
Format structureFormat();
Format nexusFormat();
Format mrBayesFormat();
Format phylipFormat();
Format spagediFormat();
Format bayescanFormat();
Format popgeneFormat();
Format arlequinFormat();
Format aflpSurvFormat();
Format darwinFormat();
Format newHybridsFormat();
Format hickoryFormat();
Format bapsFormat();
Format detselFormat();

struct NameChange {
  const char* kind;  // "sample"
  const std::vector<std::string>& before;
  const std::vector<std::string>& after;
};
// The table of names in the study and in the file, where any was changed.
void appendNameTable(Parts& parts, const std::vector<NameChange>& changes);

// What stands for a band that is absent, present, missing: in the order of Band.
using Codes = std::array<std::string_view, 3>;

// The cells of a line with `separator` before each but the first.
std::string cells(std::span<const Band> line, const Codes& codes, std::string_view separator = "");
std::string joined(const std::vector<std::string>& texts, std::string_view separator);
// A field of a table with commas, quoted where it must be.
std::string csvField(std::string_view text);

struct BandCount {
  std::size_t present = 0;
  std::size_t known = 0;
};
// Of a locus in each group.
std::vector<BandCount> countsOfLocus(const Sheet& sheet, std::size_t locus);
// How many samples each group has.
std::vector<std::size_t> groupSizes(const Sheet& sheet);

}  // namespace banddesk::host::formats
