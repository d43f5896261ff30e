// Which part of the tree may include which, read from the source text alone.
// It knows nothing of the compiler: an include counts even where the preprocessor would skip it.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace banddesk::layering {

/// The text of each C++ file by its path from the repository root, with forward slashes.
using Tree = std::map<std::string, std::string>;

Tree readTree(const std::string& root);

/// One line for each include that breaks a rule ("file:line: why") and for each circle of includes.
std::vector<std::string> violations(const Tree& tree);

/// Which modules each module includes.
using Arrows = std::map<std::string, std::set<std::string>>;

Arrows moduleArrows(const Tree& tree);

/// The modules that stand in a circle of arrows or above one; normally none.
std::set<std::string> modulesInCircles(Arrows arrows);

}  // namespace banddesk::layering
