#include "host/study/study.h"

#include <algorithm>

#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

void settle(PersistentObject& object, FaultInjector& faults) {
  object.Persistent() = {.IsNew = false, .IsDirty = false};
  object.setGuard(&faults);
}

std::shared_ptr<Dye> makeDye(std::size_t index, const DyeRecord& record, FaultInjector& faults) {
  auto dye = std::make_shared<Dye>();
  dye->Index = static_cast<std::int32_t>(index);
  dye->Color = record.color;
  dye->Visible = record.isVisible;
  settle(*dye, faults);
  return dye;
}

}  // namespace

// Light enough for black text on them: check boxes and cells carry these colours as their ground.
std::array<DyeRecord, kDyeCount> defaultDyes() {
  return {DyeRecord{0xFFA060, false, 'B'}, DyeRecord{0x40C840, false, 'G'}, DyeRecord{0x20D8F8, false, 'Y'},
          DyeRecord{0x6060FF, false}};
}

void showDyesOf(const std::vector<NewResult>& results, std::array<DyeRecord, kDyeCount>& dyes) {
  for (const NewResult& result : results) {
    for (std::size_t dye = 0; dye < kDyeCount; ++dye) {
      if (!result.fragments.dyes[dye].sizes.empty()) dyes[dye].isVisible = true;
    }
  }
}

SampleData& HostSample::Data() {
  faults_.check("Sample", "Data");
  return *this;
}

void HostSample::Unload() {
  faults_.check("Sample", "Unload");
  unload();
}

void HostSample::unload() {
  if (!fragments_) return;
  fragments_.reset();
  if (source_) source_->holdsNoMore(*this);
}

const FragmentTable& HostSample::Fragments() {
  faults_.check("SampleData", "Fragments");
  return *this;
}

ObjectRef HostSample::Record() {
  faults_.check("SampleData", "Record");
  return std::make_shared<SampleRecord>(Name, load());
}

void HostSample::leaveStudy() {
  unload();
  source_.reset();
}

const std::shared_ptr<const SampleFragments>& HostSample::load() const {
  if (!fragments_ && !source_)
    raise(ErrorNumber::ObjectNotSet, "Sample", "The study of the sample \"" + Name.get() + "\" is closed.");
  if (!fragments_) {
    fragments_ = source_->readFragments(resultId_);
    source_->holds(*this);
  }
  return fragments_;
}

std::shared_ptr<Result> makeResult(const ResultRecord& record, const std::shared_ptr<FragmentSource>& source,
                                   FaultInjector& faults) {
  auto sample = std::make_shared<HostSample>(record.id, source, faults);
  sample->Name = record.sampleName;
  settle(*sample, faults);
  auto result = std::make_shared<Result>();
  result->ResultID = record.id;
  result->Sample = std::move(sample);
  if (record.isExcluded) result->IsExcluded = true;
  if (record.isDeleted) result->IsDeleted = true;
  settle(*result, faults);
  return result;
}

std::shared_ptr<Study> makeStudy(const StudyRecord& record, const std::shared_ptr<FragmentSource>& source,
                                 FaultInjector& faults) {
  auto study = std::make_shared<Study>();
  study->Name = record.name;
  study->OwnerId = record.ownerId;
  study->ResultStamp = record.resultStamp;
  for (std::size_t i = 0; i < kDyeCount; ++i) study->Dyes.Add(makeDye(i, record.dyes[i], faults));
  for (const ResultRecord& result : record.results) {
    study->Results.Add(makeResult(result, source, faults));
    if (result.isDeleted) study->Results.Remove(integerText(result.id));
  }
  settle(*study, faults);
  return study;
}

StudyRecord recordOf(Study& study) {
  StudyRecord record;
  record.name = study.Name;
  record.ownerId = study.OwnerId;
  record.resultStamp = study.ResultStamp;
  for (const auto& dye : study.Dyes) {
    record.dyes[static_cast<std::size_t>(dye->Index.get())] = {dye->Color, dye->Visible};
  }
  visitResults(study, [&](const std::shared_ptr<Result>& result) {
    record.results.push_back({result->ResultID, result->Sample->Name,
                              result->IsExcluded.get().value_or(false),
                              result->IsDeleted.get().value_or(false)});
  });
  std::ranges::sort(record.results, {}, &ResultRecord::id);
  return record;
}

void visitResults(Study& study, const std::function<void(const std::shared_ptr<Result>&)>& visit) {
  for (const auto& result : study.Results) visit(result);
  for (const auto& result : study.Results.DeletedItems()) visit(result);
}

std::shared_ptr<Result> resultOf(Study& study, std::int32_t id) {
  const std::string key = integerText(id);
  if (study.Results.holdsKey(key)) return study.Results.Item(key);
  const auto& deleted = study.Results.DeletedItems();
  return deleted.holdsKey(key) ? deleted.Item(key) : nullptr;
}

}  // namespace banddesk::host
