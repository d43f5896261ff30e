#include "host/framework/study_service.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <utility>

#include "host/framework/first_failure.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

ResultRecord& resultIn(StudyRecord& record, std::int32_t resultId) {
  const auto found = std::ranges::find(record.results, resultId, &ResultRecord::id);
  if (found == record.results.end()) {
    raise(ErrorNumber::InvalidArgument, "StudyService", fmt::format("The study has no result {}.", resultId));
  }
  return *found;
}

}  // namespace

HostStudyService::HostStudyService(FaultInjector& faults, HostObjectManager& objects, FrontSeat& seat)
    : faults_(faults), objects_(objects), seat_(seat), options_(faults) {}

std::shared_ptr<banddesk::Study> HostStudyService::Study() {
  faults_.check("StudyService", "Study");
  return study_;
}

bool HostStudyService::IsStudyOpen() {
  faults_.check("StudyService", "IsStudyOpen");
  return isOpen_;
}

banddesk::Options& HostStudyService::Options() {
  faults_.check("StudyService", "Options");
  return options_;
}

std::int16_t HostStudyService::DisplayViewIndex() {
  faults_.check("StudyService", "DisplayViewIndex");
  return settings_.displayViewIndex;
}

// The stamp of an analysis that is to be redone becomes the study's: it will be of the present results.
std::int32_t HostStudyService::CheckAnalysis(std::shared_ptr<AFLP>& analysis) {
  constexpr std::int32_t kOpenAsStored = 1;
  faults_.check("StudyService", "CheckAnalysis");
  const AFLP& checked = required(analysis, "AFLP");
  const std::int32_t stamp = required(study_, "Study").ResultStamp;
  if (checked.IsPending || checked.ResultStamp == stamp) return kOpenAsStored;
  switch (seat_.front().decideStale(analysis)) {
    case StaleAnalysis::DoNotOpen:
      return kDoNotOpen;
    case StaleAnalysis::Redo:
      required(analysis, "AFLP").ResultStamp = stamp;
      return kRedo;
    case StaleAnalysis::OpenAsStored:
      break;
  }
  return kOpenAsStored;
}

void HostStudyService::open(std::shared_ptr<Store> store) {
  if (isOpen_) raise(ErrorNumber::InvalidArgument, "StudyService", "Another study is open.");
  store_ = std::move(store);
  FirstFailure failure;
  failure.run([&] {
    const StudyRecord stored = required(store_, "Store").readStudy();
    keep(stored);
    study_ = makeStudy(stored, store_, faults_);
    objects_.attach(store_, study_);
  });
  if (failure) drop();
  failure.raise();
  isOpen_ = true;
  StudyOpened.raise(study_);
}

void HostStudyService::close() {
  if (!isOpen_) return;
  isOpen_ = false;
  FirstFailure failure;
  failure.run([&] { StudyClosed.raise(); });
  drop();
  failure.raise();
}

// Explorer items of the plug-in live on until the next study; they must not keep this one's file open.
void HostStudyService::drop() {
  objects_.detach();
  if (study_) {
    visitResults(*study_, [](const std::shared_ptr<Result>& result) {
      if (auto* sample = dynamic_cast<HostSample*>(result->Sample.get())) sample->leaveStudy();
    });
  }
  study_.reset();
  store_.reset();
}

// What of a record no object of the study holds.
void HostStudyService::keep(const StudyRecord& record) {
  settings_ = record.settings;
  joined_ = record.joined;
  facts_.clear();
  for (const ResultRecord& result : record.results) keepFacts(result);
  dyeLetters_.clear();
  for (const DyeRecord& dye : record.dyes) dyeLetters_ += dye.letter;
}

StudyRecord HostStudyService::record() const {
  StudyRecord record = recordOf(required(study_, "Study"));
  record.settings = settings_;
  for (ResultRecord& result : record.results) result.facts = factsOf(result.id);
  record.joined = joined_;
  const std::vector<std::int32_t> kept = store_->analysisIds();
  for (JoinedTable& table : record.joined) {
    std::erase_if(table.parts, [&](const JoinedPart& part) {
      return std::ranges::find(kept, part.analysisId) == kept.end();
    });
  }
  for (std::size_t slot = 0; slot < kDyeCount; ++slot) record.dyes[slot].letter = dyeLetters_.at(slot);
  return record;
}

void HostStudyService::setDisplayViewIndex(std::int16_t index) {
  settings_.displayViewIndex = index;
  if (!isOpen_ || !whyReadOnly().empty()) return;
  store([&] { store_->writeStudy(record()); });
  Changed.raise();
}

void HostStudyService::store(const std::function<void()>& write) {
  Changing.raise();
  write();
}

void HostStudyService::copyTo(const std::string& file) const { required(store_, "Study").copyTo(file); }

void HostStudyService::saveAs(const std::string& file) { required(store_, "Study").saveAs(file); }

std::vector<ImportRecord> HostStudyService::imports() { return required(store_, "Study").readImports(); }

void HostStudyService::changeResults(const std::function<void(StudyRecord&)>& changeRecord,
                                     const std::function<void(banddesk::Study&)>& changeObjects) {
  const std::shared_ptr<banddesk::Study> study = study_;
  StudyRecord record = this->record();
  // Stamps are only compared for being the same.
  record.resultStamp =
      record.resultStamp == std::numeric_limits<std::int32_t>::max() ? 1 : record.resultStamp + 1;
  store([&] { changeRecord(record); });
  changeObjects(*study);
  study->ResultStamp = record.resultStamp;
  study->Persistent().IsDirty = false;
  study->ResultChanged.raise();
}

void HostStudyService::putBack(const StudyRecord& record) {
  const std::shared_ptr<banddesk::Study> study = study_;
  const bool hasOtherResults = this->record().results != record.results;
  store([&] { store_->writeStudy(record); });
  keep(record);
  study->ResultStamp = record.resultStamp;
  if (hasOtherResults) putResultsBack(record);
  putDyesBack(record);
  objects_.nameColumns();
  study->Persistent().IsDirty = false;
  if (hasOtherResults) study->ResultChanged.raise();
  Changed.raise();
}

// Analyses hold results: those that are still of the study stay the same objects. All are added in the
// record's order, since that is the order of the study's.
void HostStudyService::putResultsBack(const StudyRecord& record) {
  const FaultInjector::Pause pause(faults_);
  std::vector<std::shared_ptr<Result>> results;
  for (const ResultRecord& wanted : record.results) {
    const auto present = resultOf(*study_, wanted.id);
    results.push_back(present ? present : makeResult(wanted, store_, faults_));
    const auto put = [](auto& field, bool value) {
      if (field.get().value_or(false) != value) field = value;
    };
    put(results.back()->IsExcluded, wanted.isExcluded);
    put(results.back()->IsDeleted, wanted.isDeleted);
    results.back()->Sample->Name = wanted.sampleName;
    results.back()->Persistent().IsDirty = false;
  }
  auto& all = study_->Results;
  while (all.Count() > 0) all.Remove(all.Count());
  while (all.DeletedItems().Count() > 0) all.DeletedItems().Remove(all.DeletedItems().Count());
  for (std::size_t i = 0; i < results.size(); ++i) {
    all.Add(results[i]);
    if (record.results[i].isDeleted) all.Remove(all.Count());
  }
}

// The event carries a colour or a visibility, not both at once.
void HostStudyService::putDyesBack(const StudyRecord& record) {
  for (std::size_t i = 0; i < kDyeCount; ++i) {
    Dye& dye = *study_->Dyes.Item(integerText(static_cast<std::int64_t>(i)));
    const auto put = [&](auto& field, const auto& value) {
      if (field.get() == value) return;
      field = value;
      study_->DyeVisibibilityChanged.raise(dye);
    };
    put(dye.Color, record.dyes[i].color);
    put(dye.Visible, record.dyes[i].isVisible);
  }
}

void HostStudyService::addResults(const std::vector<NewResult>& results,
                                  const std::optional<ImportRecord>& import, const std::string& letters,
                                  const NewRuns& runs) {
  std::vector<ResultRecord> added;
  std::array<DyeRecord, kDyeCount> before{};
  std::array<DyeRecord, kDyeCount> after{};
  changeResults(
      [&](StudyRecord& record) {
        before = record.dyes;
        showDyesOf(results, record.dyes);
        for (std::size_t slot = 0; slot < letters.size(); ++slot) record.dyes.at(slot).letter = letters[slot];
        after = record.dyes;
        added = store_->addResults(record, results, import, runs);
        if (!letters.empty()) dyeLetters_ = letters;
      },
      [&](banddesk::Study& study) {
        for (const ResultRecord& record : added) study.Results.Add(makeResult(record, store_, faults_));
      });
  tellDyes(before, after);
}

void HostStudyService::tellDyes(const std::array<DyeRecord, kDyeCount>& before,
                                const std::array<DyeRecord, kDyeCount>& after) {
  for (std::size_t i = 0; i < kDyeCount; ++i) {
    if (before[i].isVisible == after[i].isVisible) continue;
    Dye& dye = *study_->Dyes.Item(integerText(static_cast<std::int64_t>(i)));
    dye.Visible = after[i].isVisible;
    study_->DyeVisibibilityChanged.raise(dye);
  }
  Changed.raise();
}

std::size_t HostStudyService::sizeAgain(const runs::RunSettings& settings,
                                        const std::vector<NewSizing>& sizings, const Resized& resized) {
  const bool addsResults =
      std::ranges::any_of(sizings, [](const auto& each) { return !each.sampleName.empty(); });
  if (resized.changed.empty() && !addsResults) {
    store_->writeSizings(record(), settings, sizings);
    return 0;
  }
  std::vector<ResultRecord> added;
  std::array<DyeRecord, kDyeCount> before{}, after{};
  changeResults(
      [&](StudyRecord& record) {
        before = record.dyes;
        for (std::size_t slot = 0; slot < kDyeCount; ++slot)
          record.dyes[slot].letter = resized.letters.at(slot);
        for (const NewSizing& sizing : sizings) showDyesOf({{{}, sizing.fragments}}, record.dyes);
        after = record.dyes;
        for (const std::int32_t id : resized.excluded) resultIn(record, id).isExcluded = true;
        for (const std::int32_t id : resized.included) resultIn(record, id).isExcluded = false;
        added = store_->writeSizings(record, settings, sizings);
        dyeLetters_ = resized.letters;
      },
      [&](banddesk::Study& study) {
        for (const std::int32_t id : resized.changed) resultOf(study, id)->Sample->Unload();
        for (const std::int32_t id : resized.excluded) resultOf(study, id)->IsExcluded = true;
        for (const std::int32_t id : resized.included) resultOf(study, id)->IsExcluded = false;
        for (const ResultRecord& record : added) study.Results.Add(makeResult(record, store_, faults_));
      });
  tellDyes(before, after);
  return added.size();
}

Store& HostStudyService::runs() { return required(store_, "Study"); }

void HostStudyService::setResultExcluded(std::int32_t resultId, bool isExcluded) {
  changeResults(
      [&](StudyRecord& record) {
        resultIn(record, resultId).isExcluded = isExcluded;
        store_->writeStudy(record);
      },
      [&](banddesk::Study& study) { study.Results.Item(integerText(resultId))->IsExcluded = isExcluded; });
  Changed.raise();
}

void HostStudyService::deleteResult(std::int32_t resultId) {
  changeResults(
      [&](StudyRecord& record) {
        resultIn(record, resultId).isDeleted = true;
        store_->writeStudy(record);
      },
      [&](banddesk::Study& study) {
        study.Results.Item(integerText(resultId))->IsDeleted = true;
        study.Results.Remove(integerText(resultId));
      });
  Changed.raise();
}

const SampleFacts& HostStudyService::factsOf(std::int32_t resultId) const {
  static const SampleFacts none;
  const auto found = facts_.find(resultId);
  return found == facts_.end() ? none : found->second;
}

void HostStudyService::keepFacts(const ResultRecord& result) {
  if (result.facts == SampleFacts())
    facts_.erase(result.id);
  else
    facts_[result.id] = result.facts;
}

// The columns of analyses carry the names of their samples.
void HostStudyService::changeSamples(const std::vector<SampleChange>& changes) {
  StudyRecord record = this->record();
  for (const SampleChange& change : changes) {
    ResultRecord& result = resultIn(record, change.resultId);
    result.sampleName = change.name;
    result.facts = change.facts;
  }
  store([&] { store_->writeStudy(record); });
  for (const SampleChange& change : changes) {
    const auto& result = resultIn(record, change.resultId);
    keepFacts(result);
    const auto sample = required(resultOf(*study_, change.resultId), "Result").Sample;
    if (sample->Name.get() == change.name) continue;
    sample->Name = change.name;
    sample->Persistent().IsDirty = false;
  }
  objects_.nameColumns();
  Changed.raise();
}

void HostStudyService::writeJoined(std::vector<JoinedTable> tables) {
  StudyRecord record = this->record();
  record.joined = std::move(tables);
  store([&] { store_->writeStudy(record); });
  joined_ = std::move(record.joined);
  Changed.raise();
}

void HostStudyService::keepJoinedTable(const JoinedTable& table) {
  std::vector<JoinedTable> tables = joined_;
  const auto same = std::ranges::find(tables, table.name, &JoinedTable::name);
  if (same == tables.end())
    tables.push_back(table);
  else
    *same = table;
  writeJoined(std::move(tables));
}

void HostStudyService::removeJoinedTable(const std::string& name) {
  std::vector<JoinedTable> tables = joined_;
  if (std::erase_if(tables, [&](const JoinedTable& each) { return each.name == name; }) > 0)
    writeJoined(std::move(tables));
}

void HostStudyService::changeDye(std::int32_t dye, const std::function<void(DyeRecord&)>& change) {
  const std::shared_ptr<banddesk::Study> study = study_;
  const std::shared_ptr<Dye> wanted = required(study, "Study").Dyes.Item(integerText(dye));
  StudyRecord record = this->record();
  DyeRecord& changed = record.dyes[static_cast<std::size_t>(dye)];
  change(changed);
  store([&] { store_->writeStudy(record); });
  wanted->Color = changed.color;
  wanted->Visible = changed.isVisible;
  study->DyeVisibibilityChanged.raise(*wanted);
  Changed.raise();
}

void HostStudyService::setDyeColor(std::int32_t dye, Colour color) {
  changeDye(dye, [&](DyeRecord& record) { record.color = color; });
}

void HostStudyService::setDyeVisible(std::int32_t dye, bool isVisible) {
  changeDye(dye, [&](DyeRecord& record) { record.isVisible = isVisible; });
}

}  // namespace banddesk::host
