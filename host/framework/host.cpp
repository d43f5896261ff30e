#include "host/framework/host.h"

#include <cstdio>
#include <fmt/format.h>
#include <set>
#include <utility>

#include "host/binning/default_calculator.h"
#include "host/framework/analysis_report.h"
#include "host/framework/first_failure.h"
#include "host/framework/guarded_calculator.h"
#include "host/framework/rescoring.h"
#include "host/history/kept_steps.h"
#include "host/store/sqlite_store.h"
#include "plugin/page_names.h"

namespace banddesk::host {

Host::Host(HostSettings settings)
    : settings_(std::move(settings)),
      framework_(faults_, seat_, settings_.applicationPath),
      platform_(faults_, seat_, settings_.codeSet),
      progress_(faults_),
      gridUtilities_(faults_),
      reporting_(std::make_shared<HostReportingService>(
          faults_, seat_,
          [this](const ReportRequest& request) { return makeReport(cast<AFLP>(request.context, "AFLP")); })),
      registry_(faults_, reporting_),
      objects_(faults_, hooks_),
      studyService_(faults_, objects_, seat_),
      explorer_(faults_, registry_.itemDefinition()),
      pages_(faults_, platform_, seat_),
      rules_(pages_, platform_, studyService_) {
  platform_.whyNotInto = [this](const std::string& file) {
    return studyService_.liesIn(file) ? std::string("it is the open study") : std::string();
  };
  hooks_.open = [this](const std::shared_ptr<AFLP>& analysis, bool show) {
    return openAnalysis(analysis, show);
  };
  pages_.whileStarting = [this](const HostPage& page) { return withoutOtherPairs(page); };
}

Host::~Host() {
  faults_.disarm();
  FirstFailure unheard;
  unheard.run([&] { closeStudy(); });
  explorer_.tree().clear(true);
  folder_.reset();
  serviceBase_.reset();
  service_.reset();
  componentState_.reset();
}

void Host::loadComponent(const std::string& path) { useComponent(loadEntries(path)); }

void Host::useComponent(const ComponentEntries& entries) {
  if (component_) raise(ErrorNumber::InvalidArgument, "Host", "A component is in use already.");
  component_.emplace(entries, *this);
  pages_.setComponent(&*component_);
  service_ = cast<IAFLPService>(component_->create("AFLPService"), "AFLPService");
  serviceBase_ = service_->Service();
  required(serviceBase_, "ServiceBase").Initialize.raise();
  folder_ = cast<IAFLPExplorerFolder>(component_->create("AFLPExplorerFolder"), "AFLPExplorerFolder");
  explorer_.tree().setFolder(folder_);
  if (studyService_.isOpen()) explorer_.tree().initialize();
}

PageKeeper& Host::keepTablesWhole() {
  if (!keeper_) keeper_.emplace(pages_, objects_, platform_, framework_, faults_);
  return *keeper_;
}

StudyHistory& Host::keepHistory() {
  if (!history_)
    history_.emplace(studyService_, objects_, pages_, keepTablesWhole(), explorer_.tree(), faults_);
  return *history_;
}

std::vector<std::string> Host::applyLostDecisions() {
  return keepHistory().applyLostDecisions([this](const AFLP& analysis) -> std::shared_ptr<BinCalculator> {
    if (settings_.makeBinCalculator) return settings_.makeBinCalculator();
    return makeBinCalculator(hostSide(analysis).scoring().calculator);
  });
}

const Component& Host::component() const {
  if (!component_) raise(ErrorNumber::ObjectNotSet, "Host", "There is no component.");
  return *component_;
}

void Host::openStudy(std::shared_ptr<Store> store) {
  closeStudy();
  studyService_.open(std::move(store));
  explorer_.tree().initialize();
  if (history_) history_->begin();
}

void Host::closeStudy() {
  FirstFailure failure;
  if (history_) history_->end();
  failure.run([&] { pages_.endAll(); });
  failure.run([&] { studyService_.close(); });
  explorer_.tree().clear();
  failure.raise();
}

std::vector<std::string> Host::unsaved() {
  requireNamesApart();
  return unsavedItems(serviceBase());
}

SaveOutcome Host::save(const SaveChoice& choose) {
  requireNamesApart();
  if (!history_) return saveStudy(serviceBase(), pages_, choose);
  history_->beforeSave();
  FirstFailure failure;
  SaveOutcome outcome;
  failure.run([&] { outcome = saveStudy(serviceBase(), pages_, choose); });
  history_->afterSave();
  failure.raise();
  return outcome;
}

void Host::saveCopy(const std::string& file) {
  keepHistory().note(true);
  studyService_.copyTo(file);
  try {
    SqliteStore copy(file);
    KeptSteps saved{{{"", 0, storedState(copy, {})}, history_->steps()[history_->position()]}, 0};
    goToStep(saved, 1, copy);
  } catch (...) {
    std::remove(file.c_str());
    throw;
  }
}

// A page takes over all results of the study that nobody has excluded. An analysis of one primer pair sees
// those of the others as excluded while its page starts.
std::shared_ptr<void> Host::withoutOtherPairs(const HostPage& page) {
  const auto analysis = std::dynamic_pointer_cast<HostAFLP>(page.bound());
  if (!analysis || page.DefinitionName() != "AFLP" || analysis->scoring().primerPair.empty()) return nullptr;
  const FaultInjector::Pause pause(faults_);
  std::vector<std::shared_ptr<Result>> hidden;
  for (const auto& result : studyService_.Study()->Results) {
    if (result->IsExcluded.get().value_or(false)) continue;
    if (studyService_.factsOf(result->ResultID).primerPair != analysis->scoring().primerPair)
      hidden.push_back(result);
  }
  const auto mark = [this, hidden](bool isExcluded) {
    const FaultInjector::Pause unheard(faults_);
    for (const auto& result : hidden) {
      const PersistentState state = result->persistentState();
      result->IsExcluded = isExcluded;
      result->Persistent() = state;
    }
  };
  mark(true);
  return {nullptr, [mark](std::nullptr_t) { mark(false); }};
}

void Host::requireNamesApart() {
  if (!studyService_.isOpen()) return;
  const FaultInjector::Pause pause(faults_);
  Study& study = *studyService_.Study();
  if (const auto equal = namesakes(study); !equal.empty())
    raise(ErrorNumber::DuplicateKey, "Host",
          fmt::format("Two analyses are named \"{}\" and cannot be told apart in a save: rename one of them.",
                      equal.front()->Name.get()));
  // What is to leave the file needs its name no more.
  std::set<std::string> taken;
  for (const auto& analysis : study.AFLPs.DeletedItems()) {
    const std::string name = analysis->Name;
    for (int number = 2; !taken.insert(analysis->Name).second; ++number)
      analysis->Name = fmt::format("{} ({})", name, number);
  }
}

std::shared_ptr<HostPage> Host::setScoring(const std::shared_ptr<HostPage>& page,
                                           scoring::AnalysisScoring scoring) {
  return rescore(pages_, platform_, rules_, page, std::move(scoring));
}

void Host::runNewAnalysis() const {
  if (serviceBase().Commands.Item(kNewAnalysisCommand)->Enabled) service().NewAFLP();
}

const Command& Host::command(const char* name) const {
  const bool isService = std::string_view(name) == kNewAnalysisCommand;
  const auto& commands = isService ? serviceBase().Commands : registry_.itemDefinition().Commands;
  return required(commands.Item(name), "Command");
}

void Host::runCommand(const std::shared_ptr<IExplorerItemAccess>& item, const std::string& command) {
  pages_.asOneAct(nullptr, true, [&] { runOn(*cast<IAFLPExplorerItem>(item, "AFLPExplorerItem"), command); });
}

void Host::runOn(IAFLPExplorerItem& item, const std::string& command) {
  if (command == "OpenAFLP") {
    item.OpenAFLP();
  } else if (command == "RenameAFLP") {
    item.RenameAFLP();
  } else if (command == "DeleteAFLP") {
    item.DeleteAFLP();
  } else if (command == "NewReport") {
    item.NewReport();
  } else {
    raise(ErrorNumber::InvalidArgument, "Host", fmt::format("There is no command {}.", command));
  }
}

std::vector<ReportRequest> Host::reportContexts() const {
  Collection<std::shared_ptr<ReportContextType>> types;
  serviceBase().GetReportContextTypes.raise(types);
  std::vector<ReportRequest> contexts;
  if (types.Count() == 0) return contexts;
  Dictionary<ObjectRef> named;
  serviceBase().GetReportContexts.raise(nullptr, named);
  for (const auto& [name, context] : named) contexts.push_back({name, context, types.Item(1)->number()});
  return contexts;
}

IAFLPService& Host::service() const { return required(service_, "AFLPService"); }

ServiceBase& Host::serviceBase() const { return required(serviceBase_, "ServiceBase"); }

std::shared_ptr<ServiceBase> Host::NewServiceBase() {
  faults_.check("HostServices", "NewServiceBase");
  return makeServiceBase(faults_);
}

std::shared_ptr<ExplorerItemBase> Host::NewExplorerItemBase() {
  faults_.check("HostServices", "NewExplorerItemBase");
  return std::make_shared<HostExplorerItemBase>(faults_);
}

std::shared_ptr<PageBase> Host::NewPageBase() {
  faults_.check("HostServices", "NewPageBase");
  return std::make_shared<HostPageBase>(faults_, platform_);
}

std::shared_ptr<Grid> Host::NewGrid(const std::string& name) {
  faults_.check("HostServices", "NewGrid");
  if (!settings_.makeGrid) raise(ErrorNumber::NotFoundInRegistry, "Host", "The host has no grids.");
  return settings_.makeGrid(name);
}

// For the page that is being initialised, as its analysis has it. Which of its samples are blanks is known
// only when it calculates.
std::shared_ptr<BinCalculator> Host::NewBinCalculator() {
  faults_.check("HostServices", "NewBinCalculator");
  const auto& page = pages_.initializing();
  const auto analysis = page ? std::dynamic_pointer_cast<HostAFLP>(page->BoundObject()) : nullptr;
  const CalculatorSettings wanted = analysis ? analysis->scoring().calculator : CalculatorSettings();
  const auto partition = [](const auto& any) {
    return std::dynamic_pointer_cast<PartitionBinCalculator>(any);
  };
  auto former = pages_.nextOfFormer();
  if (const auto own = former ? partition(former->shared()) : nullptr; own && own->settings() != wanted)
    former = nullptr;
  std::shared_ptr<BinCalculator> calculator;
  if (former)
    calculator = former->shared();
  else if (settings_.makeBinCalculator)
    calculator = settings_.makeBinCalculator();
  else
    calculator = makeBinCalculator(wanted);
  required(calculator, "BinCalculator");
  std::shared_ptr<PartitionBinCalculator> ours;
  if (!settings_.makeBinCalculator) ours = partition(calculator);
  const auto before = [this, ours, of = std::weak_ptr(analysis)](double width, double threshold) {
    const auto binned = of.lock();
    const bool changes = ours && binned && ours->setUnmeasured(rules_.blanksOf(*binned));
    pages_.noteCalculation(width, threshold);
    return changes;
  };
  const auto guarded = former ? std::make_shared<GuardedCalculator>(*former, before)
                              : std::make_shared<GuardedCalculator>(faults_, std::move(calculator), before);
  if (page) page->keep(guarded);
  return guarded;
}

banddesk::ServiceRegistry& Host::ServiceRegistry() {
  faults_.check("Application", "ServiceRegistry");
  return registry_.registry();
}

banddesk::PageManager& Host::PageManager() {
  faults_.check("Application", "PageManager");
  return pages_;
}

banddesk::Explorer& Host::Explorer() {
  faults_.check("Application", "Explorer");
  return explorer_;
}

banddesk::Progress& Host::Progress() {
  faults_.check("Application", "Progress");
  return progress_;
}

// What a report tells stands on the results page: one that is not open opens out of sight for a moment.
std::string Host::makeReport(const std::shared_ptr<AFLP>& analysis) {
  const auto open = pages_.find(names::kResultsPage, analysis);
  const auto page = open ? open : cast<HostPage>(openAnalysis(analysis, false), "Page");
  FirstFailure failure;
  std::string html;
  failure.run([&] {
    const auto results = cast<IAFLPResultsPage>(page->control(), "AFLPResultsPage");
    html = htmlPage(reportOf(*analysis, *results, studyService_));
  });
  if (!open) failure.run([&] { pages_.end(page, false); });
  failure.raise();
  return html;
}

// An open page of an analysis that is to be redone has the old results: what it holds goes into the analysis
// if it can, and the page is made anew.
ObjectRef Host::openAnalysis(const std::shared_ptr<AFLP>& analysis, bool show) {
  ObjectRef page;
  pages_.asOneAct(analysis, analysis->IsPending, [&] { page = openPage(analysis, show); });
  return page;
}

ObjectRef Host::openPage(const std::shared_ptr<AFLP>& analysis, bool show) {
  if (const auto open = pages_.find(names::kResultsPage, analysis); open && analysis->IsPending) {
    if (!pages_.end(open, true)) pages_.end(open, false);
  }
  const auto page = pages_.OpenPage(names::kResultsPage, analysis, nullptr, true, true, true, true, true,
                                    true, nullptr, true, 0);
  page->SetCaption("AFLP - " + analysis->Name.get());
  if (show) page->Show();
  return page;
}

}  // namespace banddesk::host
