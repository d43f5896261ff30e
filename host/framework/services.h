// What the host registers and runs beside the study: the registry of services with the definition of this
// plug-in's, the reports, and the options.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/study/fault_injector.h"
#include "plugin/shell/host_contract.h"

namespace banddesk::host {

inline constexpr const char* kServiceName = "AFLPService";
inline constexpr const char* kItemType = "AFLP";
inline constexpr const char* kNewAnalysisCommand = "NewAFLP1";
inline constexpr const char* kNewReportCommand = "NewReport";
inline constexpr const char* kReportingService = "ReportingService";

struct ReportRequest {
  std::string contextName;
  ObjectRef context;
  std::int32_t contextType = 0;
};

class HostReportingService final : public ReportingService {
 public:
  explicit HostReportingService(FaultInjector& faults) : faults_(faults) {}
  // Keeps the request, makes the report where somebody wants it, and tells that it is finished.
  void NewReport(const std::string& contextName, const ObjectRef& context, std::int32_t contextType) override;

  std::function<std::string(const ReportRequest&)> makeReport;                      // as an HTML page
  std::function<void(const ReportRequest&, const std::string& htmlPage)> onReport;  // who shows or keeps it
  const std::vector<ReportRequest>& requests() const { return requests_; }
  void clear() { requests_.clear(); }

 private:
  FaultInjector& faults_;
  std::vector<ReportRequest> requests_;
};

class HostOptions final : public Options {
 public:
  explicit HostOptions(FaultInjector& faults) : faults_(faults) {}
  bool ShowInclusionWarning() const override;
  void SetShowInclusionWarning(bool show) override;
  // As they were kept; nobody is told.
  void load(bool showInclusionWarning) { showInclusionWarning_ = showInclusionWarning; }
  std::function<void(const HostOptions&)> onChange;  // for whoever keeps the options between runs

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
