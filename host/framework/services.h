// What the host registers and runs beside the study: the registry of services with the definition of this
// plug-in's, the reports, and the options.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "host/framework/host_front.h"
#include "host/study/fault_injector.h"
#include "plugin/shell/host_contract.h"

namespace banddesk::host {

inline constexpr const char* kServiceName = "AFLPService";
inline constexpr const char* kItemType = "AFLP";
inline constexpr const char* kNewAnalysisCommand = "NewAFLP1";
inline constexpr const char* kNewReportCommand = "NewReport";
inline constexpr const char* kReportingService = "ReportingService";

class HostReportingService final : public ReportingService {
 public:
  using MakePage = std::function<std::string(const ReportRequest&)>;  // as HTML

  // Faults and seat outlive it.
  HostReportingService(FaultInjector& faults, FrontSeat& seat, MakePage makePage)
      : faults_(faults), seat_(seat), makePage_(std::move(makePage)) {}
  // Hands the report to the front, and tells that it is finished.
  void NewReport(const std::string& contextName, const ObjectRef& context, std::int32_t contextType) override;

 private:
  FaultInjector& faults_;
  FrontSeat& seat_;
  MakePage makePage_;
};

class HostOptions final : public Options {
 public:
  explicit HostOptions(FaultInjector& faults) : faults_(faults) {}
  bool ShowInclusionWarning() const override;
  void SetShowInclusionWarning(bool show) override;
  // As they were kept; nobody is told.
  void load(bool showInclusionWarning) { showInclusionWarning_ = showInclusionWarning; }
  Event<const HostOptions&> Changed;  // for whoever keeps the options between runs

 private:
  FaultInjector& faults_;
  bool showInclusionWarning_ = true;
};

// A registry whose collections stand under the seam.
class HostRegistry final {
 public:
  HostRegistry(FaultInjector& faults, const ObjectRef& reportingService);
  ServiceRegistry& registry() { return registry_; }
  const ExplorerItemDefinition& itemDefinition() const { return *item_; }

 private:
  std::shared_ptr<ExplorerItemDefinition> item_;
  GuardedCollection definitionsGuard_;
  GuardedCollection instancesGuard_;
  ServiceRegistry registry_;
};

// A service's helper with its one command.
std::shared_ptr<ServiceBase> makeServiceBase(FaultInjector& faults);

}  // namespace banddesk::host
