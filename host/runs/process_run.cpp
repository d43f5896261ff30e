#include "host/runs/process_run.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <map>
#include <mutex>
#include <thread>

#include "host/runs/run_error.h"
#include "host/runs/run_work.h"

namespace banddesk::host::runs {
namespace {

constexpr std::size_t kFilesThatDecide = 3;  // of a run at most, until one has a good ladder

/// Calls `work(i)` for all i below `count` on several threads; the first exception ends it and is thrown.
void inParallel(std::size_t count, std::size_t jobs, const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next{0};
  std::exception_ptr failure;
  std::mutex mutex;
  const auto loop = [&] {
    try {
      for (std::size_t i = next++; i < count; i = next++) work(i);
    } catch (...) {
      next = count;
      const std::scoped_lock lock(mutex);
      if (!failure) failure = std::current_exception();
    }
  };
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 1; i < std::min(jobs, count); ++i) threads.emplace_back(loop);
    loop();
  }
  if (failure) std::rethrow_exception(failure);
}

class Batch {
 public:
  Batch(std::size_t count, const RunLoader& load, const RunSettings& settings, const BatchOptions& options,
        const RunProgress& progress)
      : load_(load),
        settings_(settings),
        options_(options),
        jobs_(options.jobs > 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency())),
        progress_(progress),
        outcomes_(count),
        works_(count) {}

  std::vector<RunOutcome> run() {
    inParallel(outcomes_.size(), jobs_, [&](std::size_t i) { read(i); });
    formGroups();
    inParallel(groups_.size(), jobs_, [&](std::size_t i) { decide(groups_[i]); });
    inParallel(outcomes_.size(), jobs_, [&](std::size_t i) { findLadder(i); });
    chooseNeighbours();
    inParallel(outcomes_.size(), jobs_, [&](std::size_t i) { finish(i); });
    return std::move(outcomes_);
  }

 private:
  struct Group {
    std::vector<std::size_t> files;
    std::optional<SizeStandard> standard;
    std::vector<const LadderAssignment*> good;
    std::vector<LadderAssignment> ladders;  // what `good` points to
  };

  void read(std::size_t i) {
    try {
      works_[i].emplace(load_(i), settings_, i < options_.edits.size() ? options_.edits[i] : RunEdits{});
    } catch (const RunError& error) {
      outcomes_[i].error = error.message;
    }
  }

  void formGroups() {
    std::map<std::string, std::size_t> byName;
    groupOf_.assign(works_.size(), 0);
    for (std::size_t i = 0; i < works_.size(); ++i) {
      if (!works_[i]) continue;
      const auto [found, isNew] = byName.try_emplace(works_[i]->group(), groups_.size());
      if (isNew) groups_.emplace_back();
      groups_[found->second].files.push_back(i);
      groupOf_[i] = found->second;
    }
  }

  void decide(Group& group) {
    for (std::size_t k = 0; k < std::min(kFilesThatDecide, group.files.size()) && !group.standard; ++k) {
      RunWork& work = *works_[group.files[k]];
      work.findLadder();
      if (work.ladder().quality == LadderQuality::Sized) group.standard = work.ladder().standard;
    }
  }

  void findLadder(std::size_t i) {
    if (!works_[i] || works_[i]->ladder().channel != 0) return;
    const Group& group = groups_[groupOf_[i]];
    works_[i]->findLadder(group.standard ? &*group.standard : nullptr);
  }

  void chooseNeighbours() {
    for (Group& group : groups_) {
      for (const std::size_t i : group.files)
        if (works_[i]->ladder().quality == LadderQuality::Sized) group.ladders.push_back(works_[i]->ladder());
      std::ranges::stable_sort(group.ladders, std::greater<>{}, &LadderAssignment::score);
      for (const LadderAssignment& ladder : group.ladders) group.good.push_back(&ladder);
    }
  }

  void finish(std::size_t i) {
    if (works_[i]) {
      const Group& group = groups_[groupOf_[i]];
      if (works_[i]->ladder().quality != LadderQuality::Sized) works_[i]->askNeighbours(group.good);
      outcomes_[i].processed = works_[i]->finish();
      works_[i].reset();
      handOutTraces(outcomes_[i]);
    }
    if (!progress_) return;
    const std::scoped_lock lock(mutex_);
    progress_(++done_, outcomes_.size());
  }

  void handOutTraces(RunOutcome& outcome) const {
    if (options_.traces == TracesOut::Whole) return;
    for (RunDye& dye : outcome.processed->run.dyes) {
      if (options_.traces == TracesOut::Packed) outcome.traces.push_back(packTrace(dye.trace));
      dye.trace = {};
    }
  }

  const RunLoader& load_;
  const RunSettings& settings_;
  const BatchOptions& options_;
  std::size_t jobs_;
  const RunProgress& progress_;
  std::vector<RunOutcome> outcomes_;
  std::vector<std::optional<RunWork>> works_;
  std::vector<Group> groups_;
  std::vector<std::size_t> groupOf_;
  std::mutex mutex_;
  std::size_t done_ = 0;
};

}  // namespace

ProcessedRun processRun(RunFile run, const RunSettings& settings, const RunEdits& edits) {
  RunWork work(std::move(run), settings, edits);
  work.findLadder();
  return work.finish();
}

ProcessedRun processRunWithLadder(RunFile run, const RunSettings& settings, LadderAssignment ladder) {
  RunWork work(std::move(run), settings);
  work.setLadder(std::move(ladder));
  return work.finish();
}

std::vector<RunOutcome> processRuns(std::size_t count, const RunLoader& load, const RunSettings& settings,
                                    const BatchOptions& options, const RunProgress& progress) {
  return Batch(count, load, settings, options, progress).run();
}

std::vector<RunOutcome> processRuns(std::span<const std::string> paths, const RunSettings& settings,
                                    std::size_t jobs, const RunProgress& progress) {
  auto outcomes = processRuns(
      paths.size(), [&](std::size_t i) { return readRunFile(paths[i]); }, settings, {.jobs = jobs}, progress);
  for (std::size_t i = 0; i < paths.size(); ++i) outcomes[i].path = paths[i];
  return outcomes;
}

}  // namespace banddesk::host::runs
