#include "plugin/shell/aflp_service.h"

#include "plugin/shell/explorer_folder.h"

namespace banddesk {

AFLPService::AFLPService(MGlobals& globals)
    : globals_(globals), services_(globals.services()), frame_(services_.Framework(), "AFLPService") {
  Class_Initialize();
}

void AFLPService::Class_Initialize() {
  frame_.procedure("Class_Initialize", [&] {
    m_oServiceBase = services_.NewServiceBase();
    ServiceBase& base = required(m_oServiceBase, "ServiceBase");
    connections_.push_back(base.Initialize.connect([this] { m_oServiceBase_Initialize(); }));
    connections_.push_back(
        base.GetUnsavedItems.connect([this](auto& items) { m_oServiceBase_GetUnsavedItems(items); }));
    connections_.push_back(base.Save.connect([this](const auto& object) { m_oServiceBase_Save(object); }));
    connections_.push_back(base.SaveComplete.connect([this] { m_oServiceBase_SaveComplete(); }));
    connections_.push_back(base.GetReportContexts.connect(
        [this](const auto&, auto& contexts) { m_oServiceBase_GetReportContexts(contexts); }));
    connections_.push_back(base.GetReportContextTypes.connect(
        [this](auto& types) { m_oServiceBase_GetReportContextTypes(types); }));
  });
}

std::shared_ptr<ServiceBase> AFLPService::IServiceAccess_Service() {
  return frame_.procedure("IServiceAccess_Service (Get)", [&] { return m_oServiceBase; });
}

void AFLPService::NewAFLP() {
  frame_.procedure("NewAFLP", [&] {
    if (!globals_.IsStudyOpen()) return;
    if (auto* folder = globals_.AFLPExplorerFolder()) folder->NewAFLP();
  });
}

void AFLPService::OpenAFLP(const std::shared_ptr<AFLP>& analysis) {
  frame_.procedure("OpenAFLP", [&] {
    if (auto* folder = globals_.AFLPExplorerFolder()) folder->OpenAFLP(analysis);
  });
}

void AFLPService::DeleteAFLP(const std::shared_ptr<AFLP>& analysis) {
  frame_.procedure("DeleteAFLP", [&] {
    if (auto* folder = globals_.AFLPExplorerFolder()) folder->DeleteAFLP(analysis);
  });
}

void AFLPService::RenameAFLP(const std::shared_ptr<AFLP>& analysis) {
  frame_.procedure("RenameAFLP", [&] {
    if (auto* folder = globals_.AFLPExplorerFolder()) folder->RenameAFLP(analysis);
  });
}

PersistentCollection<AFLP>* AFLPService::AFLPs() {
  return frame_.procedure("AFLPs (Get)", [&]() -> PersistentCollection<AFLP>* {
    auto* folder = globals_.AFLPExplorerFolder();
    return folder == nullptr ? nullptr : &folder->AFLPs();
  });
}

void AFLPService::m_oServiceBase_Initialize() {
  frame_.procedure("m_oServiceBase_Initialize", [&] {
    sources_.clear();
    m_oStudyService = &services_.StudyService();
    sources_.push_back(
        m_oStudyService->StudyOpened.connect([this](const auto&) { m_oStudyService_StudyOpened(); }));
    sources_.push_back(m_oStudyService->StudyClosed.connect([this] { m_oStudyService_StudyClosed(); }));

    const auto& instances = services_.Application().ServiceRegistry().Instances;
    m_oReportingService = cast<ReportingService>(instances.Item("ReportingService"), "ReportingService");
    sources_.push_back(
        m_oReportingService->ReportFinished.connect([this] { m_oReportingService_ReportFinished(); }));

    // Only the next StudyOpened enables the command, whether or not a study is open at this moment.
    m_oServiceBase->Commands.Item("NewAFLP1")->Enabled = false;
  });
}

void AFLPService::m_oStudyService_StudyOpened() {
  frame_.procedure("m_oStudyService_StudyOpened", [&] { enableCommand(true); });
}

void AFLPService::m_oStudyService_StudyClosed() {
  frame_.procedure("m_oStudyService_StudyClosed", [&] {
    enableCommand(false);
    PersistentCollection<AFLP>* analyses = AFLPs();
    if (analyses == nullptr) return;
    for (const auto& analysis : *analyses) {
      for (const auto& result : analysis->Results) required(result->Sample, "Sample").Unload();
    }
  });
}

void AFLPService::enableCommand(bool enabled) {
  if (m_oServiceBase) m_oServiceBase->Commands.Item("NewAFLP1")->Enabled = enabled;
}

}  // namespace banddesk
