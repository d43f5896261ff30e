// The study's objects over a fragment source: samples that load their fragments when asked and let them go
// again. What changes a study (exclusions, imports, colours) is the study service's work.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/study/fault_injector.h"
#include "host/study/fragments.h"
#include "host/study/joined_table.h"
#include "plugin/shell/persistent.h"

namespace banddesk::host {

inline constexpr char kNoDye = '-';  // the slot waits for an import to fill it

struct DyeRecord {
  Colour color = ui::kWhite;
  bool isVisible = false;
  char letter = kNoDye;  // of the tables' dye that the slot holds
  friend bool operator==(const DyeRecord&, const DyeRecord&) = default;
};

// A blank is a run without DNA: it counts in no figure, and bins with a peak in it are doubtful. A reference
// is a sample that is run again and again.
enum class SampleRole { Sample, Blank, Reference };

// What the user says of a sample; empty: nothing.
struct SampleFacts {
  SampleRole role = SampleRole::Sample;
  std::string group;       // population
  std::string individual;  // of which it is a run
  std::string primerPair;
  std::string note;
  friend bool operator==(const SampleFacts&, const SampleFacts&) = default;
};

struct ResultRecord {
  std::int32_t id = 0;  // positive
  std::string sampleName;
  bool isExcluded = false;
  bool isDeleted = false;
  SampleFacts facts = {};
  friend bool operator==(const ResultRecord&, const ResultRecord&) = default;
};

// What the user has settled for the whole study.
struct StudySettings {
  std::int16_t displayViewIndex = 0;
  friend bool operator==(const StudySettings&, const StudySettings&) = default;
};

// All of a study but its fragments and analyses.
struct StudyRecord {
  std::string name;
  std::int32_t ownerId = 1;
  std::int32_t resultStamp = 1;  // grows with each change of the results
  std::array<DyeRecord, kDyeCount> dyes;
  std::vector<ResultRecord> results;
  StudySettings settings;
  std::vector<JoinedTable> joined;
  friend bool operator==(const StudyRecord&, const StudyRecord&) = default;
};

// A result that is not in a study yet.
struct NewResult {
  std::string sampleName;
  SampleFragments fragments;
};

// Four dyes in the default colours, none of them visible: B, G, Y and a slot for the next.
std::array<DyeRecord, kDyeCount> defaultDyes();
// Makes the dyes visible that the results have fragments of.
void showDyesOf(const std::vector<NewResult>& results, std::array<DyeRecord, kDyeCount>& dyes);

// What the views of a single sample show.
class SampleRecord final : public Object {
 public:
  SampleRecord(std::string sampleName, std::shared_ptr<const SampleFragments> sampleFragments)
      : name(std::move(sampleName)), fragments(std::move(sampleFragments)) {}
  const std::string name;
  const std::shared_ptr<const SampleFragments> fragments;
};

// The fragments are read when somebody asks for those of a dye, not before.
class HostSample final : public Sample, private SampleData, private FragmentTable, private FragmentHolder {
 public:
  HostSample(std::int32_t resultId, std::shared_ptr<FragmentSource> source, FaultInjector& faults)
      : resultId_(resultId), source_(std::move(source)), faults_(faults) {}
  HostSample(const HostSample&) = delete;
  HostSample& operator=(const HostSample&) = delete;
  ~HostSample() override { unload(); }

  SampleData& Data() override;
  void Unload() override;
  bool isLoaded() const { return fragments_ != nullptr; }
  // Its study is closed: whoever still holds the sample keeps neither its fragments nor the store.
  void leaveStudy();

 private:
  void letGo() const override { fragments_.reset(); }
  void unload();
  const FragmentTable& Fragments() override;
  DyeFragments OfDye(std::int16_t dye) const override { return load()->OfDye(dye); }
  ObjectRef Record() override;
  const std::shared_ptr<const SampleFragments>& load() const;

  std::int32_t resultId_;
  std::shared_ptr<FragmentSource> source_;
  FaultInjector& faults_;
  mutable std::shared_ptr<const SampleFragments> fragments_;
};

// The objects of a stored study, its analyses left out. They are neither new nor dirty. A result that was
// deleted is none of the study's results any more: it lies among those that were removed, for the analyses
// that were made of it.
std::shared_ptr<Study> makeStudy(const StudyRecord& record, const std::shared_ptr<FragmentSource>& source,
                                 FaultInjector& faults);
std::shared_ptr<Result> makeResult(const ResultRecord& record, const std::shared_ptr<FragmentSource>& source,
                                   FaultInjector& faults);
// All results, the deleted ones last.
void visitResults(Study& study, const std::function<void(const std::shared_ptr<Result>&)>& visit);
// Also a deleted one; null if there is none.
std::shared_ptr<Result> resultOf(Study& study, std::int32_t id);
// The record of a study as its objects stand; they know neither its settings nor its dyes' letters.
StudyRecord recordOf(Study& study);

}  // namespace banddesk::host
