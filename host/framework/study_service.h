// The study that is open, and what is done to it: opening and closing, results coming, excluded and deleted,
// dyes shown and coloured. Each change is in the store before the objects tell of it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/framework/host_front.h"
#include "host/framework/object_manager.h"
#include "host/framework/services.h"
#include "host/store/store.h"
#include "host/study/fault_injector.h"
#include "plugin/shell/host_contract.h"

namespace banddesk::host {

class HostStudyService final : public StudyService {
 public:
  // All outlive it.
  HostStudyService(FaultInjector& faults, HostObjectManager& objects, FrontSeat& seat);

  std::shared_ptr<banddesk::Study> Study() override;
  bool IsStudyOpen() override;
  banddesk::Options& Options() override;
  std::int16_t DisplayViewIndex() override;
  std::int32_t CheckAnalysis(std::shared_ptr<AFLP>& analysis) override;

  // Error 5 while another study is open.
  void open(std::shared_ptr<Store> store);
  // Nothing while none is open.
  void close();
  bool isOpen() const { return isOpen_; }

  // The following need an open study (error 91).
  // `letters` are those of the slots from now on; empty: as before.
  void addResults(const std::vector<NewResult>& results,
                  const std::optional<ImportRecord>& import = std::nullopt, const std::string& letters = {},
                  const NewRuns& runs = {});
  std::vector<ImportRecord> imports();  // the earliest first
  // Where the runs of instruments lie.
  Store& runs();
  // What a sizing changes beside the runs.
  struct Resized {
    std::vector<std::int32_t> changed;   // results whose fragments are others
    std::vector<std::int32_t> excluded;  // that cannot be sized any more
    std::vector<std::int32_t> included;  // that can be sized again
    std::string letters;                 // of the dyes' slots
  };
  // How many results were added, of runs that could not be sized before. The study's results count as changed
  // only where some are.
  std::size_t sizeAgain(const runs::RunSettings& settings, const std::vector<NewSizing>& sizings,
                        const Resized& resized);
  void setResultExcluded(std::int32_t resultId, bool isExcluded);
  void deleteResult(std::int32_t resultId);
  // What is said of a sample; nothing for one that is not in the study.
  const SampleFacts& factsOf(std::int32_t resultId) const;
  // Names and facts of samples, all or none; a name as it is stands for no change.
  struct SampleChange {
    std::int32_t resultId;
    std::string name;
    SampleFacts facts;
  };
  void changeSamples(const std::vector<SampleChange>& changes);
  const std::vector<JoinedTable>& joinedTables() const { return joined_; }
  // Replaces the one of that name, or adds it.
  void keepJoinedTable(const JoinedTable& table);
  void removeJoinedTable(const std::string& name);  // nothing where there is none
  // All of the study but fragments and analyses, as it stands and as it is to be. What is put back is in the
  // store first; results come, go and change as the record says, and listeners hear of it.
  StudyRecord record() const;
  void putBack(const StudyRecord& record);
  void setDyeColor(std::int32_t dye, Colour color);
  void setDyeVisible(std::int32_t dye, bool isVisible);
  // The letters of the tables' dyes in the four slots; "-" for one that no import has filled.
  const std::string& dyeLetters() const { return dyeLetters_; }
  // Why the open study cannot be changed; empty where it can.
  std::string whyReadOnly() const { return store_ ? store_->whyReadOnly() : std::string(); }
  // Of the open study, as its store says.
  std::string formerCopy() const { return store_ ? store_->formerCopy() : std::string(); }
  // Whether the open study lies in this file, whatever name leads there.
  bool liesIn(const std::string& file) const { return store_ && store_->isFile(file); }

  // Makes a copy of all that is saved in a new file.
  void copyTo(const std::string& file) const;
  // Goes on in a new file with all that is saved; what is not is still to be saved, there.
  void saveAs(const std::string& file);

  // The user's, whichever study is open.
  HostOptions& options() { return options_; }
  // Kept with the study, if it can be written.
  void setDisplayViewIndex(std::int16_t index);

  Event<> Changing;  // something of the record is about to be stored
  Event<> Changed;   // and was

 private:
  void drop();
  void keep(const StudyRecord& record);
  void keepFacts(const ResultRecord& result);
  void writeJoined(std::vector<JoinedTable> tables);
  void store(const std::function<void()>& write);
  void putResultsBack(const StudyRecord& record);
  void putDyesBack(const StudyRecord& record);
  void changeResults(const std::function<void(StudyRecord&)>& changeRecord,
                     const std::function<void(banddesk::Study&)>& changeObjects);
  void tellDyes(const std::array<DyeRecord, kDyeCount>& before,
                const std::array<DyeRecord, kDyeCount>& after);
  void changeDye(std::int32_t dye, const std::function<void(DyeRecord&)>& change);

  FaultInjector& faults_;
  HostObjectManager& objects_;
  FrontSeat& seat_;
  HostOptions options_;
  std::shared_ptr<Store> store_;
  std::shared_ptr<banddesk::Study> study_;
  StudySettings settings_;
  std::map<std::int32_t, SampleFacts> facts_;  // of those of which something is said
  std::vector<JoinedTable> joined_;
  std::string dyeLetters_ = std::string(kDyeCount, kNoDye);
  bool isOpen_ = false;
};

}  // namespace banddesk::host
