// Which part of the tree may include which, read from the source text alone.
// It knows nothing of the compiler: an include counts even where the preprocessor would skip it.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace banddesk::layering {

/// The text of each C++ file by its path from the repository root, with forward slashes.
using Tree = std::map<std::string, std::string>;

Tree readTree(const std::string& root);

/// One line for each include that breaks a rule ("file:line: why") and for each circle of includes.
std::vector<std::string> violations(const Tree& tree);

}  // namespace banddesk::layering
