#include "host/import/read_files.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/import/dye_names.h"
#include "host/import/input_file.h"
#include "host/import/ladder.h"
#include "host/import/report_text.h"
#include "host/import/row_reader.h"
#include "host/import/sample_assembler.h"
#include "host/import/table_text.h"

namespace banddesk::host::import {
namespace {

namespace fs = std::filesystem;

struct Source {
  fs::path file;
  std::uint64_t size = 0;
  bool ofFolder = false;
};

std::uint64_t sizeOf(const fs::path& file) {
  std::error_code failed;
  const auto size = fs::file_size(file, failed);
  return failed ? 0 : size;  // reading the file will say what is wrong with it
}

void appendFolder(const fs::path& folder, std::vector<Source>& sources) {
  std::vector<fs::path> files;
  std::error_code failed;
  for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed)) {
    std::error_code unknown;
    if (entry->is_regular_file(unknown) && !entry->path().filename().string().starts_with('.'))
      files.push_back(entry->path());
  }
  if (failed) throw ImportError({folder, 0, {}}, "the folder cannot be read: " + failed.message());
  if (files.empty()) throw ImportError({folder, 0, {}}, "the folder has no files");
  std::ranges::sort(files);
  for (const fs::path& file : files) sources.push_back({file, sizeOf(file), true});
}

std::vector<Source> sourcesOf(std::span<const fs::path> files) {
  std::vector<Source> sources;
  for (const fs::path& file : files) {
    std::error_code unknown;
    if (fs::is_directory(file, unknown)) {
      appendFolder(file, sources);
    } else {
      sources.push_back({file, sizeOf(file), false});
    }
  }
  if (sources.empty()) throw ImportError({{}, 0, {}}, "no file to import is given");
  return sources;
}

class Reading {
 public:
  Reading(std::vector<Source> sources, const Options& options, const Progress& progress)
      : sources_(std::move(sources)), options_(options), progress_(progress), assembler_(table_.samples) {
    for (const Source& source : sources_) {
      total_ += source.size;
      ++filesOfSize_[source.size];
    }
  }

  PeakTable run() {
    table_.report.dyeNames = gatherDyeNames();
    table_.report.files.reserve(sources_.size());
    for (const Source& source : sources_) {
      readOne(source);
      if (!isRun(source)) done_ += source.size;
      tell(0);
    }
    const bool hasTables = filesRead_ > 0;
    readAllRuns();
    if (filesRead_ == 0 && filesKnown_ == 0)
      throw ImportError({sources_.front().file.parent_path(), 0, {}},
                        "no peak table and no run in the folder");
    requirePeaks();
    if (hasTables && !options_.ladder) table_.report.ladder = proposeLadder(table_.samples);
    return std::move(table_);
  }

 private:
  void readOne(const Source& source) {
    FileReport report;
    report.file = source.file;
    if (source.ofFolder && source.size == 0 && !isRun(source)) {
      report.form = "empty file, passed over";
    } else {
      readTable(source, report);
    }
    table_.report.files.push_back(std::move(report));
  }

  void readTable(const Source& source, FileReport& report) {
    if (isKnown(source, report)) {
      ++filesKnown_;
      report.form = "passed over";
      report.notes.emplace_back("the study has this file's content from an earlier import");
      return;
    }
    if (const fs::path* twin = sameContent(source)) {
      report.form = "same content as another file";
      report.notes.push_back(fmt::format("the same content as {}; read once", twin->string()));
      return;
    }
    if (isRun(source)) {
      runs_.push_back(source);
      return;
    }
    std::optional<TableText> text;
    try {
      text.emplace(source.file, options_);
    } catch (const ImportError& error) {
      if (!source.ofFolder) throw;
      report.form = "no peak table, passed over";
      report.notes.push_back(error.message);
      return;
    }
    readRows(source, *text, report);
    report.form = text->description();
  }

  // Only tables whose first dye is a name are read twice. What is wrong with a file, its own reading says.
  std::string gatherDyeNames() {
    std::filesystem::path named;
    for (const Source& source : sources_) {
      if (isRun(source)) continue;
      try {
        TableText text(source.file, options_);
        if (noteDyeNames(source.file.string(), text, names_) && named.empty()) named = source.file;
      } catch (const ImportError&) {
        continue;
      }
    }
    try {
      names_.assign();
    } catch (const std::runtime_error& error) {
      throw ImportError({named, 0, {}}, error.what());
    }
    return names_.description();
  }

  bool isRun(const Source& source) {
    const auto [found, isNew] = isRun_.try_emplace(source.file.string(), false);
    if (isNew) found->second = isRunFile(source.file);
    return found->second;
  }

  // All runs together, after the tables: a run's capillaries help each other.
  void readAllRuns() {
    if (runs_.empty()) return;
    std::vector<fs::path> files;
    std::vector<FileReport*> reports;
    for (const Source& run : runs_) {
      files.push_back(run.file);
      reports.push_back(&*std::ranges::find(table_.report.files, run.file, &FileReport::file));
    }
    const std::uint64_t before = done_;
    readRuns(files, options_.runs, reports, table_, [&](std::size_t done, std::size_t total) {
      done_ = before + (total_ - before) * done / total;
      tell(0);
    });
    filesRead_ += files.size();
  }

  // Runs that are kept can be sized later.
  void requirePeaks() const {
    if (!table_.runs.empty()) return;
    const auto peaksOf = [](const FileReport& file) {
      return std::accumulate(file.peaks.begin(), file.peaks.end(), std::size_t{0});
    };
    const FileReport* most = nullptr;
    for (const FileReport& file : table_.report.files) {
      if (peaksOf(file) != 0) return;
      if (file.rows != 0 && (most == nullptr || file.rows > most->rows)) most = &file;
    }
    if (most == nullptr) return;
    std::vector<std::string> reasons;
    reasons.reserve(most->leftOut.size());
    for (const LeftOut& leftOut : most->leftOut)
      reasons.push_back(fmt::format("{} ({})", leftOut.count, reasonText(leftOut)));
    throw ImportError({most->file, 0, {}}, fmt::format("no peak is left of its {} rows; left out: {}",
                                                       most->rows, fmt::join(reasons, ", ")));
  }

  bool isKnown(const Source& source, FileReport& report) const {
    report.size = source.size;
    if (!options_.isKnown) return false;
    report.hash = contentHash(source.file);
    return options_.isKnown(report.size, report.hash);
  }

  void readRows(const Source& source, TableText& text, FileReport& report) {
    const std::size_t before = table_.samples.size();
    assembler_.beginFile(source.file, report);
    RowReader reader(text.form(), source.file, {names_, options_.ladder, options_.dye}, assembler_, report);
    std::string_view piece = text.rows();
    do {
      reader.read(piece);
      tell(text.bytesDone());
      piece = text.next();
    } while (!piece.empty());
    if (report.rows == 0) throw ImportError({source.file, 0, {}}, "has a header but no rows");
    assembler_.endFile();
    report.samples = table_.samples.size() - before;
    ++filesRead_;
  }

  /// The file read earlier that has the same bytes. Only files of equal size are compared at all.
  const fs::path* sameContent(const Source& source) {
    if (source.size == 0 || filesOfSize_[source.size] < 2) return nullptr;
    const auto [at, isNew] = contents_.try_emplace({source.size, contentHash(source.file)}, source.file);
    return isNew ? nullptr : &at->second;
  }

  void tell(std::uint64_t bytesOfFile) {
    if (progress_) progress_(std::min(done_ + bytesOfFile, total_), total_);
  }

  std::vector<Source> sources_;
  const Options& options_;
  const Progress& progress_;
  PeakTable table_;
  DyeNames names_;
  std::vector<Source> runs_;
  std::map<std::string, bool> isRun_;
  SampleAssembler assembler_;
  std::map<std::uint64_t, std::size_t> filesOfSize_;
  std::map<std::pair<std::uint64_t, std::uint64_t>, fs::path> contents_;
  std::uint64_t done_ = 0;
  std::uint64_t total_ = 0;
  std::size_t filesRead_ = 0;
  std::size_t filesKnown_ = 0;
};

}  // namespace

PeakTable readFiles(std::span<const fs::path> files, const Options& options, const Progress& progress) {
  return Reading(sourcesOf(files), options, progress).run();
}

}  // namespace banddesk::host::import
