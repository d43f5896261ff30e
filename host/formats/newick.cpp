#include "host/formats/newick.h"

#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {

// Each node's text is made of its children's, which stand before it.
Parts writeNewick(const std::vector<std::string>& samples, const statistics::Tree& tree) {
  const auto names = fitNames(samples, {.marks = "_.-"});
  std::vector<std::string> texts(tree.nodes.size());
  for (std::size_t at = 0; at < tree.nodes.size(); ++at) {
    const statistics::TreeNode& node = tree.nodes[at];
    std::string& text = texts[at];
    for (const std::size_t child : node.children) {
      text += (text.empty() ? "(" : ",") + texts[child];
      texts[child] = {};
    }
    text += at < tree.samples ? names[at] : ")";
    if (node.support) text += fmt::format("{:.0f}", *node.support);
    if (at != tree.root()) text += fmt::format(":{:.10g}", node.length);
  }
  Parts parts = {{"", texts[tree.root()] + ";\n"}};
  appendNameTable(parts, {{"sample", samples, names}});
  return parts;
}

}  // namespace banddesk::host::formats
