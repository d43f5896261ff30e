// The fragments of one dye of one result as the bytes that lie in a study file. Numbers come back exactly;
// those with few decimals, as instruments export them, take two or four bytes instead of eight.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "host/study/fragments.h"

namespace banddesk::host {

// Error 51 if sizes and heights are not equally many.
std::vector<std::byte> encodeFragments(const SampleFragments::Dye& dye);
// Nothing for bytes that encodeFragments did not make.
std::optional<SampleFragments::Dye> decodeFragments(std::span<const std::byte> bytes);

}  // namespace banddesk::host
