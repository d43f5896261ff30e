#include "host/import/sample_assembler.h"

#include <algorithm>
#include <fmt/format.h>
#include <span>

#include "host/import/text_scan.h"

namespace banddesk::host::import {
namespace {

constexpr std::array<std::string_view, 12> extensions{".fsa", ".fsb", ".ab1", ".abi", ".abd", ".hid",
                                                      ".scf", ".esd", ".rsd", ".smd", ".smr", ".frf"};
constexpr std::array<std::string_view, 6> tableExtensions{".txt", ".csv", ".tsv", ".tab", ".dat", ".xlsx"};
constexpr std::size_t notesInFull = 5;
// No run has more peaks of a dye; a greater number is no peak number.
constexpr std::uint32_t greatestPeakNumber = 100'000;

/// ".A01_12345678AB": the well and time stamp that instruments put at the end of a run's name.
bool hasRunSuffix(std::string_view name) {
  constexpr std::string_view shape = ".?00_00000000??";
  if (name.size() <= shape.size()) return false;
  name.remove_prefix(name.size() - shape.size());
  return std::ranges::equal(
      name, shape, [](char c, char like) { return like == '?' || (like == '0' ? isDigit(c) : c == like); });
}

bool alreadySeen(std::vector<std::uint64_t>& seen, std::uint32_t number) {
  const std::size_t word = number / 64;
  const std::uint64_t bit = std::uint64_t{1} << (number % 64);
  if (word >= seen.size()) seen.resize(word + 1);
  const bool was = (seen[word] & bit) != 0;
  seen[word] |= bit;
  return was;
}

bool hasPeak(const DyePeaks& peaks, double size, double height) {
  for (std::size_t i = 0; i < peaks.sizes.size(); ++i)
    if (peaks.sizes[i] == size && peaks.heights[i] == height) return true;
  return false;
}

// Without the first of these that ends it, case not minded.
std::string_view withoutEnd(std::string_view text, std::span<const std::string_view> ends) {
  for (const std::string_view end : ends) {
    if (text.size() <= end.size()) continue;
    const std::string_view last = text.substr(text.size() - end.size());
    if (std::ranges::equal(last, end, {}, [](char c) { return lowerAscii(c); }))
      return text.substr(0, text.size() - end.size());
  }
  return text;
}

}  // namespace

// Others look for a well and time stamp at the very end of a name.
std::string markedName(const std::string& name, std::size_t number) {
  constexpr std::size_t suffixLength = 15;
  const std::size_t at = hasRunSuffix(name) ? name.size() - suffixLength : name.size();
  return fmt::format("{} ({}){}", name.substr(0, at), number, name.substr(at));
}

std::string runName(std::string_view text) {
  // Only known extensions: what follows the last point may be a well and time stamp, or part of the name.
  return std::string(trimmed(withoutEnd(trimmed(text), extensions)));
}

std::string runNameOfFile(const std::filesystem::path& file) {
  return runName(withoutEnd(trimmed(file.filename().string()), tableExtensions));
}

void SampleAssembler::beginFile(const std::filesystem::path& file, FileReport& report) {
  file_ = file.string();
  report_ = &report;
  runsByKey_.clear();
  runs_.clear();
  lastFile_.clear();
  lastName_.clear();
  firstOfFile_ = samples_.size();
  toldApart_ = 0;
}

SampleAssembler::Run* SampleAssembler::runOf(const Field& sampleFile, const Field& sampleName) {
  if (!runs_.empty() && sampleFile.text == lastFile_ && sampleName.text == lastName_) return &runs_[lastRun_];
  Run* run = findRun(sampleFile, sampleName);
  if (!run) return nullptr;
  lastFile_ = sampleFile.text;
  lastName_ = sampleName.text;
  lastRun_ = static_cast<std::size_t>(run - runs_.data());
  return run;
}

SampleAssembler::Run* SampleAssembler::findRun(const Field& sampleFile, const Field& sampleName) {
  key_.assign(sampleFile.text).append(1, '\n').append(sampleName.text);
  const auto found = runsByKey_.find(std::string_view(key_));
  if (found != runsByKey_.end()) return &runs_[found->second];
  const auto isNothing = [](const Field& field) { return field.text.empty() || field.text == "NA"; };
  if (isNothing(sampleFile) && isNothing(sampleName)) return nullptr;
  Run run;
  run.name = runName(plainText(isNothing(sampleFile) ? sampleName : sampleFile));
  run.sample = newSample(run.name);
  runsByKey_.emplace(key_, runs_.size());
  return &runs_.emplace_back(std::move(run));
}

std::size_t SampleAssembler::newSample(const std::string& name) {
  std::string freeName = name;
  for (std::size_t number = 2; samplesByName_.contains(freeName); ++number)
    freeName = markedName(name, number);
  if (freeName != name) noteToldApart(name, freeName, samples_[samplesByName_.at(name)].sourceFile);
  samplesByName_.emplace(freeName, samples_.size());
  Sample& sample = samples_.emplace_back();
  sample.name = freeName;
  sample.sourceFile = file_;
  return samples_.size() - 1;
}

void SampleAssembler::noteToldApart(const std::string& name, const std::string& freeName,
                                    const std::string& otherFile) {
  if (++toldApart_ > notesInFull) return;
  const std::string where = otherFile == file_ ? "earlier in this file" : otherFile;
  report_->notes.push_back(fmt::format("a sample named \"{}\" stands in {} too; the one here is named \"{}\"",
                                       name, where, freeName));
}

SampleAssembler::Added SampleAssembler::add(Run& run, const DyeCell& cell, double size, double height) {
  const Dye dye = *cell.dye;
  if (cell.number != 0 && cell.number <= greatestPeakNumber &&
      alreadySeen(run.numbersSeen[indexOf(dye)], cell.number)) {
    if (hasPeak(samples_[run.sample].peaks(dye), size, height)) return Added::Repeated;
    run.sample = newSample(run.name);
    for (auto& seen : run.numbersSeen) seen.clear();
    alreadySeen(run.numbersSeen[indexOf(dye)], cell.number);
  }
  DyePeaks& peaks = samples_[run.sample].peaks(dye);
  peaks.sizes.push_back(size);
  peaks.heights.push_back(height);
  return Added::Peak;
}

void SampleAssembler::endFile() {
  std::size_t withoutPeaks = 0;
  for (std::size_t i = firstOfFile_; i < samples_.size(); ++i) {
    bool hasPeaks = false;
    for (DyePeaks& peaks : samples_[i].dyes) {
      peaks.sizes.shrink_to_fit();
      peaks.heights.shrink_to_fit();
      hasPeaks = hasPeaks || !peaks.sizes.empty();
    }
    if (!hasPeaks) ++withoutPeaks;
  }
  if (withoutPeaks != 0) report_->notes.push_back(fmt::format("samples without a peak: {}", withoutPeaks));
  if (toldApart_ > notesInFull)
    report_->notes.push_back(
        fmt::format("{} more samples of equal names are told apart likewise", toldApart_ - notesInFull));
}

}  // namespace banddesk::host::import
