// The service's side of reporting: every analysis of the study is a context of the one type "AFLP". The
// host's configuration switches the whole offer by the visibility of the command "NewReport".
#include "plugin/page_names.h"
#include "plugin/shell/aflp_service.h"
#include "plugin/shell/explorer_folder.h"

namespace banddesk {
namespace {

constexpr double kReportContextWeight = 30.0;  // its use is the reporting service's

}  // namespace

bool AFLPService::offersReports() {
  Framework& framework = services_.Framework();
  const auto& definitions = services_.Application().ServiceRegistry().Definitions;
  if (!framework.ItemExists(definitions, "AFLPService")) return false;
  const auto& items = required(definitions.Item("AFLPService"), "ServiceDefinition").ExplorerItems;
  if (!framework.ItemExists(items, "AFLP")) return false;
  const auto& commands = required(items.Item("AFLP"), "ExplorerItemDefinition").Commands;
  if (!framework.ItemExists(commands, "NewReport")) return false;
  return commands.Item("NewReport")->Visible.get().value_or(false);
}

void AFLPService::m_oServiceBase_GetReportContexts(Dictionary<ObjectRef>& contexts) {
  frame_.procedure("m_oServiceBase_GetReportContexts", [&] {
    if (!offersReports()) return;
    auto* folder = globals_.AFLPExplorerFolder();
    if (folder == nullptr) return;
    for (const auto& analysis : folder->AFLPs()) contexts.Add(analysis->Name, analysis);
  });
}

void AFLPService::m_oServiceBase_GetReportContextTypes(
    Collection<std::shared_ptr<ReportContextType>>& types) {
  frame_.procedure("m_oServiceBase_GetReportContextTypes", [&] {
    if (!offersReports()) return;
    auto type = std::make_shared<ReportContextType>();
    type->Init(kReportContextType, "AFLP", kReportContextWeight, this);
    types.Add(std::move(type));
  });
}

void AFLPService::m_oReportingService_ReportFinished() {
  frame_.procedure("m_oReportingService_ReportFinished", [&] {
    PersistentCollection<AFLP>* analyses = AFLPs();
    if (analyses == nullptr) return;
    // Nobody says which report ended, so all analyses are told.
    for (const auto& analysis : *analyses) {
      if (analysis) analysis->ReportFinished();
    }
  });
}

}  // namespace banddesk
