#include "host/framework/services.h"

namespace banddesk::host {
namespace {

std::shared_ptr<Command> makeGuardedCommand(FaultInjector& faults) {
  auto command = std::make_shared<Command>();
  command->Visible = true;
  command->onPut = [&faults](const char* property) { faults.check("Command", property); };
  return command;
}

}  // namespace

void HostReportingService::NewReport(const std::string& contextName, const ObjectRef& context,
                                     std::int32_t contextType) {
  faults_.check("ReportingService", "NewReport");
  const ReportRequest request{contextName, context, contextType};
  seat_.front().showReport(request, [&] { return makePage_(request); });
  ReportFinished.raise();
}

bool HostOptions::ShowInclusionWarning() const {
  faults_.check("Options", "ShowInclusionWarning");
  return showInclusionWarning_;
}

void HostOptions::SetShowInclusionWarning(bool show) {
  faults_.check("Options", "ShowInclusionWarning");
  showInclusionWarning_ = show;
  Changed.raise(*this);
}

HostRegistry::HostRegistry(FaultInjector& faults, const ObjectRef& reportingService)
    : item_(std::make_shared<ExplorerItemDefinition>()),
      definitionsGuard_(faults, "ServiceRegistry.Definitions"),
      instancesGuard_(faults, "ServiceRegistry.Instances") {
  item_->Caption = "AFLP";
  for (const char* name : {"OpenAFLP", "RenameAFLP", "DeleteAFLP", kNewReportCommand}) {
    item_->Commands.Add(makeGuardedCommand(faults), name);
  }
  auto service = std::make_shared<ServiceDefinition>();
  service->ExplorerItems.Add(item_, kItemType);
  registry_.Definitions.Add(std::move(service), kServiceName);
  registry_.Instances.Add(reportingService, kReportingService);
  registry_.Definitions.observe(&definitionsGuard_);
  registry_.Instances.observe(&instancesGuard_);
}

std::shared_ptr<ServiceBase> makeServiceBase(FaultInjector& faults) {
  auto base = std::make_shared<ServiceBase>();
  base->Commands.Add(makeGuardedCommand(faults), kNewAnalysisCommand);
  return base;
}

}  // namespace banddesk::host
