// The dyes of a run and how they are spelled in peak tables. Not the dyes of a study, which have records
// of their own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace banddesk::host::import {

enum class Dye : std::uint8_t { B, G, Y, R, O, P };

inline constexpr std::size_t dyeCount = 6;
inline constexpr std::array<Dye, dyeCount> allDyes{Dye::B, Dye::G, Dye::Y, Dye::R, Dye::O, Dye::P};

constexpr std::size_t indexOf(Dye dye) { return static_cast<std::size_t>(dye); }
constexpr char letterOf(Dye dye) { return "BGYROP"[indexOf(dye)]; }

/// Reads "B", "b" or "Blue"; nothing for any other text.
std::optional<Dye> dyeOf(std::string_view letterOrWord);

/// What a dye cell says: `B`, `B,1`, `B, 1`, `Blue` or any other `name`. `number` is the peak's number within
/// its dye, 0 when none is given.
struct DyeCell {
  std::optional<Dye> dye;
  std::uint32_t number = 0;
  std::string_view name = {};  // in the cell
};

DyeCell readDyeCell(std::string_view cell);

}  // namespace banddesk::host::import
