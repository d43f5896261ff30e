#include "host/history/step_labels.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <map>

#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

std::string counted(std::size_t count, const char* one, const char* many) {
  return count == 1 ? std::string(one) : fmt::format("{} {}", count, many);
}

// Of things that came to be something, or else ceased to be it.
struct Turned {
  std::size_t on = 0, off = 0;
  void count(bool before, bool after) {
    on += !before && after ? 1 : 0;
    off += before && !after ? 1 : 0;
  }
  std::string label(const char* turnOn, const char* turnOff, const char* one, const char* many) const {
    if (on > 0) return fmt::format("{} {}", turnOn, counted(on, one, many));
    return off > 0 ? fmt::format("{} {}", turnOff, counted(off, one, many)) : std::string();
  }
};

const ResultRecord* find(const StudyRecord& record, std::int32_t id) {
  const auto found = std::ranges::find(record.results, id, &ResultRecord::id);
  return found == record.results.end() ? nullptr : &*found;
}

std::size_t lacking(const StudyRecord& record, const StudyRecord& other) {
  return static_cast<std::size_t>(std::ranges::count_if(
      other.results, [&](const ResultRecord& each) { return find(record, each.id) == nullptr; }));
}

std::string ofResults(const StudyRecord& before, const StudyRecord& after) {
  if (const std::size_t added = lacking(before, after); added > 0)
    return fmt::format("Import {}", counted(added, "1 Result", "Results"));
  if (const std::size_t gone = lacking(after, before); gone > 0)
    return fmt::format("Take {} Back", counted(gone, "1 Result", "Results"));
  Turned deleted, excluded, renamed;
  for (const ResultRecord& each : after.results) {
    const ResultRecord& former = *find(before, each.id);
    deleted.count(former.isDeleted, each.isDeleted);
    excluded.count(former.isExcluded, each.isExcluded);
    renamed.count(false, former.sampleName != each.sampleName);
  }
  for (const auto& label : {deleted.label("Delete", "Bring Back", "a Result", "Results"),
                            excluded.label("Exclude", "Include", "a Result", "Results"),
                            renamed.label("Rename", "", "a Result", "Results")}) {
    if (!label.empty()) return label;
  }
  return {};
}

std::string ofStudy(const StudyRecord& before, const StudyRecord& after) {
  if (std::string label = ofResults(before, after); !label.empty()) return label;
  for (std::size_t i = 0; i < after.dyes.size(); ++i) {
    if (before.dyes[i].color != after.dyes[i].color) return fmt::format("Colour of Dye {}", i + 1);
    if (before.dyes[i].isVisible != after.dyes[i].isVisible)
      return fmt::format("{} Dye {} in the Study", after.dyes[i].isVisible ? "Show" : "Hide", i + 1);
  }
  return "Change the Study's Settings";
}

std::string ofParameters(const AnalysisSnapshot& a, const AnalysisSnapshot& b) {
  if (a.isPending != b.isPending || a.resultIds != b.resultIds || a.resultStamp != b.resultStamp)
    return "Analyse Again";
  if (a.maxBinWidth != b.maxBinWidth) return fmt::format("Bins up to {} nt", generalText(b.maxBinWidth));
  if (a.yThreshold != b.yThreshold) return fmt::format("Threshold of {} RFU", b.yThreshold);
  return {};
}

std::string ofBoxes(const AnalysisSnapshot& a, const AnalysisSnapshot& b) {
  struct Box {
    bool AnalysisSnapshot::*field;
    const char* on;
    const char* off;
  };
  constexpr std::array kBoxes{
      Box{&AnalysisSnapshot::excludeFullBins, "Exclude Full Bins", "Keep Full Bins"},
      Box{&AnalysisSnapshot::excludeEmptySamples, "Exclude Empty Samples", "Keep Empty Samples"},
      Box{&AnalysisSnapshot::showExcluded, "Show Excluded", "Hide Excluded"},
      Box{&AnalysisSnapshot::showTimestamp, "Show Time Stamps", "Hide Time Stamps"},
      Box{&AnalysisSnapshot::showWellID, "Show Wells", "Hide Wells"},
      Box{&AnalysisSnapshot::samplesInRows, "Samples in Rows", "Samples in Columns"}};
  constexpr std::array kCells{"Show Counts", "Show Presence", "Show Heights"};
  for (const Box& box : kBoxes) {
    if (a.*box.field != b.*box.field) return b.*box.field ? box.on : box.off;
  }
  if (a.sampleBinOption == b.sampleBinOption) return {};
  const auto option = static_cast<std::size_t>(std::clamp(b.sampleBinOption, 0, 2));
  return kCells[option];
}

std::string ofDecisions(const AnalysisSnapshot& a, const AnalysisSnapshot& b) {
  std::map<std::string, std::pair<BinSnapshot, BinSnapshot>> bins;
  for (const BinSnapshot& bin : a.bins) bins[bin.key].first = bin;
  for (const BinSnapshot& bin : b.bins) bins[bin.key].second = bin;
  Turned excluded, included;
  for (const auto& [key, bin] : bins) {
    excluded.count(bin.first.manuallyExcluded, bin.second.manuallyExcluded);
    included.count(bin.first.manuallyIncluded, bin.second.manuallyIncluded);
  }
  std::string label = excluded.label("Exclude", "Include", "a Bin", "Bins");
  return label.empty() ? included.label("Include", "Exclude", "a Bin", "Bins") : label;
}

// Of the columns that both layouts have.
std::string ofLayout(const LayoutSnapshot& a, const LayoutSnapshot& b, const char* one, const char* many) {
  std::map<std::string_view, const ColumnSnapshot*> former;
  for (const ColumnSnapshot& column : a.columns) former[column.key] = &column;
  Turned excluded, shown, sorted, moved, sized, painted;
  for (const ColumnSnapshot& column : b.columns) {
    if (!former.contains(column.key)) continue;
    const ColumnSnapshot& was = *former[column.key];
    excluded.count(was.isExcluded, column.isExcluded);
    shown.count(was.isVisible, column.isVisible);
    sorted.count(false, was.sortOrder != column.sortOrder || was.sortPriority != column.sortPriority);
    moved.count(false, was.columnOrder != column.columnOrder);
    sized.count(false, was.width != column.width);
    painted.count(false, was != column);
  }
  if (std::string label = excluded.label("Exclude", "Include", one, many); !label.empty()) return label;
  if (std::string label = shown.label("Show", "Hide", one, many); !label.empty()) return label;
  if (sorted.on > 0) return "Sort";
  if (moved.on > 0) return "Move Columns";
  if (sized.on > 0) return "Column Width";
  if (a.lockedKey != b.lockedKey) return b.lockedKey.empty() ? "Unlock the Column" : "Lock a Column";
  return painted.on > 0 || a.columns.size() != b.columns.size() ? "Change Styles" : std::string();
}

std::string ofAnalysis(const AnalysisSnapshot& a, const AnalysisSnapshot& b) {
  if (a.name != b.name) return fmt::format("Rename to \"{}\"", b.name);
  for (const auto& label :
       {ofParameters(a, b), ofDecisions(a, b), ofBoxes(a, b), ofLayout(a.dyeGrid, b.dyeGrid, "a Dye", "Dyes"),
        ofLayout(a.binGrid, b.binGrid, "a Column", "Columns"),
        ofLayout(a.sampleGrid, b.sampleGrid, "a Sample", "Samples"),
        ofLayout(a.styleGrid, b.styleGrid, "a Style", "Styles")}) {
    if (!label.empty()) return label;
  }
  return {};
}

// Nothing where no analysis has come or gone.
std::string ofAnalyses(const StudyState& before, const StudyState& after) {
  for (const AnalysisState& each : after.analyses) {
    if (before.find(each.id) == nullptr) return fmt::format("New Analysis \"{}\"", unpacked(each).name);
  }
  for (const AnalysisState& each : before.analyses) {
    if (after.find(each.id) == nullptr) return fmt::format("Delete \"{}\"", unpacked(each).name);
  }
  return {};
}

}  // namespace

std::string stepLabel(const StudyState& before, const StudyState& after) {
  if (!haveSameBytes(before.record, after.record))
    return ofStudy(unpackedRecord(before.record), unpackedRecord(after.record));
  if (std::string label = ofAnalyses(before, after); !label.empty()) return label;
  for (const AnalysisState& each : after.analyses) {
    const AnalysisState& former = *before.find(each.id);
    if (former.holdsSameAs(each)) continue;
    if (std::string label = ofAnalysis(unpacked(former), unpacked(each)); !label.empty()) return label;
  }
  return "Change the Table";
}

}  // namespace banddesk::host
