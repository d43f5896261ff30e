#include "cli/statistics_commands.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/format_outputs.h"
#include "cli/output_file.h"
#include "cli/progress_line.h"
#include "cli/say.h"
#include "host/formats/newick.h"
#include "host/formats/phylip.h"
#include "host/pictures/dendrogram.h"
#include "host/pictures/scatter.h"
#include "host/pictures/svg.h"
#include "host/statistics/amova.h"
#include "host/statistics/diversity.h"
#include "plugin/base/error.h"

namespace banddesk::cli {
namespace {

using namespace host::statistics;
using nlohmann::ordered_json;
namespace fs = std::filesystem;

// The outputs of one command: named before the work, written after it, all or none.
class Results {
 public:
  explicit Results(const BandArguments& arguments, std::vector<std::optional<fs::path>> others = {})
      : arguments_(arguments) {
    others.push_back(arguments.json);
    std::vector<fs::path> outputs;
    for (const auto& path : others) {
      if (path) outputs.push_back(*path);
    }
    requireDistinct(outputs, {arguments.study});
  }

  void add(const std::optional<fs::path>& path, std::string content) {
    if (path) ready_.push_back({*path, std::move(content)});
  }
  void add(const std::optional<fs::path>& path, const host::formats::Parts& parts) {
    if (!path) return;
    for (ReadyOutput& output : readyOutputs(parts, *path)) ready_.push_back(std::move(output));
  }
  void addJson(const ordered_json& json) {
    add(arguments_.json, json.dump(1, ' ', false, ordered_json::error_handler_t::replace) + '\n');
  }

  void write() const {
    std::vector<fs::path> paths;
    for (const ReadyOutput& output : ready_) paths.push_back(output.path);
    requireDistinct(paths, {arguments_.study});
    OutputFiles files;
    for (const ReadyOutput& output : ready_)
      files.writeText(output.path, [&](std::ostream& out) { out << output.content; });
    files.commit();
  }

 private:
  const BandArguments& arguments_;
  std::vector<ReadyOutput> ready_;
};

// Shows on the terminal how far the work is.
class Bar {
 public:
  explicit Bar(const char* what) { line_.begin(what); }
  Progress progress() {
    return [this](double share) {
      line_.show(share);
      return true;
    };
  }

 private:
  ProgressLine line_;
};

ordered_json headOf(const BandMatrix& bands) {
  ordered_json json = {{"samples", bands.samples}, {"bins", bands.loci.size()}};
  if (bands.groups.empty()) return json;
  json["groups"] = ordered_json::array();
  for (const std::size_t group : bands.groupOf) json["groups"].push_back(bands.groups[group]);
  return json;
}

std::string sizeText(const BandMatrix& bands) {
  return fmt::format("{} samples, {} bins", bands.samples.size(), bands.loci.size());
}

std::vector<double> lineOf(const DistanceTable& table, std::size_t sample) {
  std::vector<double> line;
  for (std::size_t other = 0; other < table.samples(); ++other) line.push_back(table.at(sample, other));
  return line;
}

std::string tableText(const BandMatrix& bands, const DistanceTable& table) {
  std::string text = fmt::format("Sample\t{}\n", fmt::join(bands.samples, "\t"));
  for (std::size_t i = 0; i < table.samples(); ++i)
    text += fmt::format("{}\t{:.6f}\n", bands.samples[i], fmt::join(lineOf(table, i), "\t"));
  return text;
}

std::string axesText(const BandMatrix& bands, const Ordination& ordination) {
  std::string text = "Axis\tEigenvalue\tPercent\n";
  for (std::size_t axis = 0; axis < ordination.axes.size(); ++axis)
    text +=
        fmt::format("{}\t{:.6f}\t{:.2f}\n", axis + 1, ordination.eigenvalues[axis], ordination.percent(axis));
  if (ordination.negative > 0)
    text += fmt::format("{} eigenvalues are negative, down to {:.6f}: --square-root gives none\n",
                        ordination.negative, ordination.eigenvalues.back());
  text += "Sample";
  for (std::size_t axis = 0; axis < ordination.axes.size(); ++axis)
    text += fmt::format("\tAxis {}", axis + 1);
  text += '\n';
  for (std::size_t i = 0; i < bands.samples.size(); ++i) {
    text += bands.samples[i];
    for (const auto& axis : ordination.axes) text += fmt::format("\t{:.6f}", axis[i]);
    text += '\n';
  }
  return text;
}

ordered_json treeJson(const Tree& tree, const BandMatrix& bands) {
  ordered_json nodes = ordered_json::array();
  for (std::size_t at = 0; at < tree.nodes.size(); ++at) {
    const TreeNode& node = tree.nodes[at];
    ordered_json entry = {{"node", at}};
    if (at < tree.samples)
      entry["sample"] = bands.samples[at];
    else
      entry["children"] = node.children;
    if (at != tree.root()) entry["length"] = node.length;
    if (node.support) entry["support"] = *node.support;
    nodes.push_back(entry);
  }
  return nodes;
}

std::string diversityLine(const GroupDiversity& group) {
  return fmt::format("{}\t{}\t{}\t{}\t{:.2f}\t{:.4f}\t{:.4f}\n", group.name, group.samples, group.bands,
                     group.privateBands, group.polymorphicPercent, group.geneDiversity, group.shannon);
}

ordered_json diversityJson(const GroupDiversity& group) {
  return {{"name", group.name},
          {"samples", group.samples},
          {"bins", group.loci},
          {"bands", group.bands},
          {"privateBands", group.privateBands},
          {"polymorphicPercent", group.polymorphicPercent},
          {"geneDiversitySquareRoot", group.geneDiversity},
          {"shannon", group.shannon}};
}

std::string sourceLine(const char* name, const VarianceSource& source) {
  return fmt::format("{}\t{}\t{:.4f}\t{:.4f}\t{:.4f}\t{:.2f}\n", name, source.degrees, source.squares,
                     source.mean, source.variance, source.percent);
}

std::string amovaText(const Amova& amova) {
  std::string text = "Source\tdf\tSS\tMS\tVariance\tPercent\n" + sourceLine("Among groups", amova.among) +
                     sourceLine("Within groups", amova.within) + fmt::format("PhiPT {:.4f}", amova.phi);
  if (amova.probability)
    text += fmt::format(", p {:.4f} ({} permutations)", *amova.probability, amova.permutations);
  return text + '\n';
}

ordered_json sourceJson(const VarianceSource& source) {
  return {{"degrees", source.degrees},
          {"squares", source.squares},
          {"mean", source.mean},
          {"variance", source.variance},
          {"percent", source.percent}};
}

ordered_json amovaJson(const Amova& amova) {
  ordered_json json = {
      {"among", sourceJson(amova.among)}, {"within", sourceJson(amova.within)}, {"phi", amova.phi}};
  json["permutations"] = amova.permutations;
  if (amova.probability) json["probability"] = *amova.probability;
  return json;
}

// Nothing for one group, or groups of one sample each.
std::optional<Amova> varianceOf(const BandMatrix& bands, const DiversityArguments& arguments) {
  const std::size_t groups = orderedByGroup(bands).groups.size();
  if (groups < 2 || groups == bands.samples.size()) return {};
  Bar bar("Permuting");
  return amova(distances(bands, Measure::Euclidean), bands.groupOf, {arguments.permutations, arguments.seed},
               bar.progress());
}

}  // namespace

void runDistances(const DistancesArguments& arguments) {
  Results results(arguments, {arguments.phylip});
  const BandMatrix bands = openBands(arguments);
  const DistanceTable table = distances(bands, arguments.measure);
  results.add(arguments.phylip, host::formats::writePhylipDistances(bands.samples, table));
  ordered_json json = headOf(bands);
  json["measure"] = nameOf(arguments.measure);
  for (std::size_t i = 0; i < table.samples(); ++i) json["distances"].push_back(lineOf(table, i));
  results.addJson(json);
  results.write();
  say("{}, {} distances\n{}", sizeText(bands), nameOf(arguments.measure), tableText(bands, table));
}

void runPcoa(const PcoaArguments& arguments) {
  Results results(arguments, {arguments.svg});
  const BandMatrix bands = openBands(arguments);
  const std::size_t axes = std::max<std::size_t>(arguments.axes, arguments.svg ? 2 : 1);
  Bar bar("Finding axes");
  const Ordination ordination =
      principalCoordinates(distances(bands, arguments.measure), arguments.scale, axes, bar.progress());
  if (arguments.svg)
    results.add(arguments.svg, host::pictures::svgOf(host::pictures::scatterOf(ordination, bands)));
  ordered_json json = headOf(bands);
  json["measure"] = nameOf(arguments.measure);
  json["squareRoot"] = arguments.scale == Scale::SquareRoot;
  json["eigenvalues"] = ordination.eigenvalues;
  json["negativeEigenvalues"] = ordination.negative;
  for (std::size_t axis = 0; axis < ordination.axes.size(); ++axis)
    json["axes"].push_back({{"percent", ordination.percent(axis)}, {"coordinates", ordination.axes[axis]}});
  results.addJson(json);
  results.write();
  say("{}, {} distances{}\n{}", sizeText(bands), nameOf(arguments.measure),
      arguments.scale == Scale::SquareRoot ? ", their square roots" : "", axesText(bands, ordination));
}

void runTree(const TreeArguments& arguments) {
  Results results(arguments, {arguments.newick, arguments.svg});
  const BandMatrix bands = openBands(arguments);
  Bar bar("Drawing bins");
  const Tree tree = treeOf(bands, arguments.request, bar.progress());
  const auto correlation = copheneticCorrelation(distances(bands, arguments.request.measure), tree);
  const host::formats::Parts newick = host::formats::writeNewick(bands.samples, tree);
  results.add(arguments.newick, newick);
  if (arguments.svg)
    results.add(arguments.svg, host::pictures::svgOf(host::pictures::dendrogramOf(tree, bands)));
  ordered_json json = headOf(bands);
  json["measure"] = nameOf(arguments.request.measure);
  json["method"] = nameOf(arguments.request.method);
  json["bootstraps"] = arguments.request.bootstraps;
  json["copheneticCorrelation"] = correlation ? ordered_json(*correlation) : ordered_json();
  json["nodes"] = treeJson(tree, bands);
  results.addJson(json);
  results.write();
  say("{}, {} of {} distances, {} bootstraps\ncophenetic correlation: {}\n{}", sizeText(bands),
      nameOf(arguments.request.method), nameOf(arguments.request.measure), arguments.request.bootstraps,
      correlation ? fmt::format("{:.4f}", *correlation) : "-", newick.front().content);
}

void runDiversity(const DiversityArguments& arguments) {
  Results results(arguments);
  const BandMatrix bands = openBands(arguments);
  const Diversity diversity = diversityOf(bands, arguments.leastShare);
  const auto variance = varianceOf(bands, arguments);
  std::string text = "Group\tSamples\tBands\tPrivate\tPolymorphic %\tGene diversity (square root)\tShannon\n";
  ordered_json json = headOf(bands);
  for (const GroupDiversity& group : diversity.groups) {
    text += diversityLine(group);
    json["byGroup"].push_back(diversityJson(group));
  }
  json["all"] = diversityJson(diversity.all);
  if (diversity.groups.size() > 1) text += diversityLine(diversity.all);
  if (variance) json["amova"] = amovaJson(*variance);
  results.addJson(json);
  results.write();
  say("{}\n{}{}", sizeText(bands), text, variance ? amovaText(*variance) : "");
}

}  // namespace banddesk::cli
