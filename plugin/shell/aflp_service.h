// The service that the host creates for this component. It follows the study and the reporting service,
// enables the one command, answers the save flow, offers the analyses as report contexts, and forwards the
// operations on analyses to the explorer folder, which may be absent.
#pragma once

#include <memory>

#include "plugin/banddesk.h"
#include "plugin/base/failure.h"
#include "plugin/shell/live_object.h"
#include "plugin/shell/mglobals.h"

namespace banddesk {

class AFLPService final : public IAFLPService, private LiveObject {
 public:
  explicit AFLPService(MGlobals& globals);

  void NewAFLP() override;
  void OpenAFLP(const std::shared_ptr<AFLP>& analysis) override;
  void DeleteAFLP(const std::shared_ptr<AFLP>& analysis) override;
  void RenameAFLP(const std::shared_ptr<AFLP>& analysis) override;
  PersistentCollection<AFLP>* AFLPs() override;

  std::shared_ptr<ServiceBase> Service() override { return IServiceAccess_Service(); }

 private:
  void Class_Initialize();
  std::shared_ptr<ServiceBase> IServiceAccess_Service();

  void m_oServiceBase_Initialize();
  void m_oStudyService_StudyOpened();
  void m_oStudyService_StudyClosed();
  void enableCommand(bool enabled);

  void m_oServiceBase_GetUnsavedItems(Dictionary<ObjectRef>& items);
  void m_oServiceBase_Save(const ObjectRef& object);
  void m_oServiceBase_SaveComplete();

  void m_oServiceBase_GetReportContexts(Dictionary<ObjectRef>& contexts);
  void m_oServiceBase_GetReportContextTypes(Collection<std::shared_ptr<ReportContextType>>& types);
  void m_oReportingService_ReportFinished();
  bool offersReports();

  MGlobals& globals_;
  HostServices& services_;
  FailureFrame frame_;
  std::shared_ptr<ServiceBase> m_oServiceBase;
  StudyService* m_oStudyService = nullptr;
  std::shared_ptr<ReportingService> m_oReportingService;
  Connections connections_;
  Connections sources_;  // study service and reporting service
};

}  // namespace banddesk
