// The one host: it owns every service, page and study that the plug-in meets, and everything over it (command
// line, desktop, tests) drives the plug-in through it. It must outlive all objects of the component.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/framework/code_set.h"
#include "host/framework/component.h"
#include "host/framework/explorer.h"
#include "host/framework/framework.h"
#include "host/framework/host_front.h"
#include "host/framework/object_manager.h"
#include "host/framework/page_keeper.h"
#include "host/framework/page_manager.h"
#include "host/framework/platform.h"
#include "host/framework/rule_keeper.h"
#include "host/framework/save_flow.h"
#include "host/framework/services.h"
#include "host/framework/study_history.h"
#include "host/framework/study_service.h"
#include "host/store/store.h"
#include "host/study/analysis.h"
#include "host/study/fault_injector.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

struct HostSettings {
  std::function<std::shared_ptr<Grid>(const std::string& name)> makeGrid;  // absent: there are no grids
  std::function<std::shared_ptr<BinCalculator>()> makeBinCalculator;       // absent: the host's own
  std::string applicationPath = besideExecutable("");
  std::string codeSet = systemCodeSet();  // of text files
};

class Host final : public HostServices, private Application {
 public:
  explicit Host(HostSettings settings);
  ~Host() override;

  // ---- the component, once; what is wrong with it is an error that names it
  // From a shared library, by default the one beside the executable; it is never unloaded.
  void loadComponent(const std::string& path = besideExecutable(kComponentFile));
  // One that is linked in.
  void useComponent(const ComponentEntries& entries);
  const Component& component() const;

  // From now on results pages whose procedures leave their table half made are opened anew by themselves.
  PageKeeper& keepTablesWhole();
  // From now on what the user does to a study can be undone until it is closed. Tables are kept whole, too.
  StudyHistory& keepHistory();
  // Decisions that the last step lost, taken to the bins that there are now; the keys of those that found none.
  std::vector<std::string> applyLostDecisions();

  // ---- the study
  void openStudy(std::shared_ptr<Store> store);  // closes the one that is open
  // Ends all pages first, cancelled; what is unsaved is lost. The study is closed even if something fails.
  void closeStudy();
  // Both raise error 457 where two analyses that are to be saved have one name; namesakes() gives them.
  std::vector<std::string> unsaved();
  SaveOutcome save(const SaveChoice& choose = {});
  // Makes a study file with all that there is, saved or not, and leaves this study as it is. Needs the history.
  void saveCopy(const std::string& file);

  // ---- what the user does
  void runNewAnalysis() const;  // nothing while the command is not enabled
  // Gives the analysis of a results page other settings; gives the page that stands there now. Errors as
  // rescore has them.
  std::shared_ptr<HostPage> setScoring(const std::shared_ptr<HostPage>& page,
                                       scoring::AnalysisScoring scoring);
  // The state of kNewAnalysisCommand or of a command of the items, as the plug-in and the host's
  // configuration switch it.
  const Command& command(const char* name) const;
  // "OpenAFLP", "RenameAFLP", "DeleteAFLP" or "NewReport" on an item of the tree; error 5 for any other.
  void runCommand(const std::shared_ptr<IExplorerItemAccess>& item, const std::string& command);

  // What reports can be made about, by the service's own account.
  std::vector<ReportRequest> reportContexts() const;

  // ---- the parts
  FrontSeat& seat() { return seat_; }
  FaultInjector& faults() { return faults_; }
  HostFramework& framework() { return framework_; }
  HostPlatform& platform() { return platform_; }
  HostProgress& progress() { return progress_; }
  HostStudyService& study() { return studyService_; }
  const HostStudyService& study() const { return studyService_; }
  HostObjectManager& objects() { return objects_; }
  HostPageManager& pages() { return pages_; }
  HostExplorerTree& tree() { return explorer_.tree(); }
  RuleKeeper& rules() { return rules_; }
  HostReportingService& reports() { return *reporting_; }
  banddesk::ServiceRegistry& registry() { return registry_.registry(); }
  IAFLPService& service() const;  // error 91 without a component
  const std::shared_ptr<IAFLPExplorerFolder>& folder() const { return folder_; }  // may be null
  ServiceBase& serviceBase() const;

  // ---- what the plug-in is handed
  banddesk::Framework& Framework() override { return framework_; }
  banddesk::StudyService& StudyService() override { return studyService_; }
  banddesk::ObjectManager& ObjectManager() override { return objects_; }
  banddesk::Application& Application() override { return *this; }
  banddesk::GridUtilities& GridUtilities() override { return gridUtilities_; }
  ui::Platform& Platform() override { return platform_; }
  std::shared_ptr<ServiceBase> NewServiceBase() override;
  std::shared_ptr<ExplorerItemBase> NewExplorerItemBase() override;
  std::shared_ptr<PageBase> NewPageBase() override;
  std::shared_ptr<Grid> NewGrid(const std::string& name) override;
  std::shared_ptr<BinCalculator> NewBinCalculator() override;
  ObjectRef& ComponentState() override { return componentState_; }

 private:
  banddesk::ServiceRegistry& ServiceRegistry() override;
  banddesk::PageManager& PageManager() override;
  banddesk::Explorer& Explorer() override;
  banddesk::Progress& Progress() override;

  void requireNamesApart();
  std::shared_ptr<void> withoutOtherPairs(const HostPage& page);
  std::string makeReport(const std::shared_ptr<AFLP>& analysis);
  ObjectRef openAnalysis(const std::shared_ptr<AFLP>& analysis, bool show);
  ObjectRef openPage(const std::shared_ptr<AFLP>& analysis, bool show);
  static void runOn(IAFLPExplorerItem& item, const std::string& command);

  HostSettings settings_;
  FaultInjector faults_;
  FrontSeat seat_;
  HostFramework framework_;
  HostPlatform platform_;
  HostProgress progress_;
  HostGridUtilities gridUtilities_;
  std::shared_ptr<HostReportingService> reporting_;
  HostRegistry registry_;
  AnalysisHooks hooks_;
  HostObjectManager objects_;
  HostStudyService studyService_;
  HostExplorer explorer_;
  ObjectRef componentState_;
  std::optional<Component> component_;
  HostPageManager pages_;
  RuleKeeper rules_;
  std::optional<PageKeeper> keeper_;
  std::optional<StudyHistory> history_;
  std::shared_ptr<IAFLPService> service_;
  std::shared_ptr<ServiceBase> serviceBase_;
  std::shared_ptr<IAFLPExplorerFolder> folder_;
};

}  // namespace banddesk::host
