// The host's general services: failure reports, helpers for collections and columns, the progress of long
// work, and what grid columns need of colours and sort keys.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/framework/host_front.h"
#include "host/study/fault_injector.h"
#include "plugin/shell/host_contract.h"

namespace banddesk::host {

struct FailureReport {
  std::string title;
  std::string module;
  std::string procedure;
  Error error;
};

class HostFramework final : public Framework {
 public:
  HostFramework(FaultInjector& faults, FrontSeat& seat, std::string applicationPath)
      : faults_(faults), seat_(seat), applicationPath_(std::move(applicationPath)) {}

  void ReportError(std::string_view title, std::string_view module, std::string_view procedure,
                   const Error& error, const char* text, std::int32_t flags) override;
  bool DebugMode() const override { return isDebugging; }
  bool ConfirmDebugStop(std::intptr_t instance) override;
  void DebugBreak() override;
  bool ItemExists(const KeyedLookup& collection, std::string_view key) override;
  double Min(double a, double b) override;
  double Max(double a, double b) override;
  std::vector<std::shared_ptr<GridColumn>> SortedBy(const PersistentCollection<GridColumn>& columns,
                                                    std::int32_t, std::int32_t, std::string_view property,
                                                    std::int32_t) override;
  std::string ApplicationPath() const override;

  // The failures reported so far, the latest last.
  const std::vector<FailureReport>& reports() const { return reports_; }
  void clearReports() { reports_.clear(); }

  bool isDebugging = false;
  Event<const FailureReport&> Reported;  // listeners must not throw

 private:
  FaultInjector& faults_;
  FrontSeat& seat_;
  std::string applicationPath_;
  std::vector<FailureReport> reports_;
};

class HostProgress final : public Progress {
 public:
  explicit HostProgress(FaultInjector& faults) : faults_(faults) {}

  void Start(double maximum, std::int32_t) override;
  void Step() override;
  double Maximum() const override { return maximum_; }
  double Steps() const override { return steps_; }
  void SetSteps(double steps) override;
  double Position() const override { return position_; }
  void SetPosition(double position) override;
  void Finish() override;

  // After each change of the position. It may repaint, and must not let other events run.
  Event<const HostProgress&> Changed;

 private:
  void moveTo(double position);

  FaultInjector& faults_;
  double maximum_ = 100;
  double steps_ = 100;
  double position_ = 0;
};

class HostGridUtilities final : public GridUtilities {
 public:
  explicit HostGridUtilities(FaultInjector& faults) : faults_(faults) {}
  Colour ContrastColor(Colour colour) override;
  void Prepare(Grid& grid, std::int32_t) override;
  std::int32_t BuildSortInfo(Grid& grid, const GridLayout& layout,
                             std::vector<SortInfo>& descriptors) override;

 private:
  FaultInjector& faults_;
};

}  // namespace banddesk::host
