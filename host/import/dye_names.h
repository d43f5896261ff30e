// The dyes of kits by name (6-FAM, VIC, ROX ...) and the colour that each has in the run at hand. A name
// alone does not decide: HEX is green beside FAM and NED, but yellow beside TET. So all names are gathered
// before the rows are read.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/import/dye.h"

namespace banddesk::host::import {

/// A cell's dye name as it is compared: "6-FAM (B)" has the name "6FAM" and the mark B. Empty where no dye
/// has the name.
struct KitDye {
  std::string name;
  std::optional<Dye> mark;
  auto operator<=>(const KitDye&) const = default;
};

std::optional<KitDye> kitDyeOf(std::string_view text);

class DyeNames {
 public:
  /// Says that a sample has peaks of this dye. Samples of all files of an import count together.
  void note(const std::string& sample, const KitDye& dye);

  /// Gives each name its colour. Dyes of one sample never share one; beyond that each comes as near as can be
  /// to its usual colour, in the order of wavelengths. Throws std::runtime_error, naming the dyes, where that
  /// is impossible.
  void assign();

  /// The dye of a cell in any spelling: letter, word or name of a kit's dye; nothing for any other text.
  std::optional<Dye> dyeOf(std::string_view text) const;

  /// "dyes by name: 6FAM as B, HEX as Y"; empty without names.
  std::string description() const;

 private:
  std::map<std::string, std::vector<KitDye>> bySample_;
  std::map<KitDye, Dye> colours_;
};

}  // namespace banddesk::host::import
