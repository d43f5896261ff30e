// Who sits in front of the host: a desktop, a command line, a test. The host asks its front what only a user
// can answer; what merely happened is told by the events of the host's parts.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plugin/base/event.h"
#include "plugin/shell/host_contract.h"
#include "plugin/ui/dialogs.h"
#include "plugin/ui/platform.h"

namespace banddesk::host {

class ColumnSelection;
class ColumnSorting;

struct MessageShown {
  std::string text;
  std::int32_t style;
  std::string title;
};

struct SaveAnswer {
  std::string fileName;  // the full path
  std::int32_t filterIndex = 1;
};

struct ReportRequest {
  std::string contextName;
  ObjectRef context;
  std::int32_t contextType = 0;
};

enum class StaleAnalysis { DoNotOpen, OpenAsStored, Redo };

// Every question is modal: it returns with the answer. What a question raises goes to the caller.
class HostFront {
 public:
  virtual ~HostFront() = default;

  virtual ui::BoxAnswer showMessage(const MessageShown& message) = 0;
  // Nothing is a cancel.
  virtual std::optional<SaveAnswer> askWhereToSave(ui::SaveDialog& dialog) = 0;
  // The user's work on a form; one that is still loaded afterwards is unloaded.
  virtual void runForm(ui::Form& form) = 0;
  // The item that the user takes is chosen before this returns. `defaultItem` may be null.
  virtual void showPopup(ui::MenuItem& menu, ui::MenuItem* defaultItem) = 0;
  // The user's work on a column page: true accepts the draft.
  virtual bool selectColumns(ColumnSelection& draft) = 0;
  virtual bool sortColumns(ColumnSorting& draft) = 0;
  // The study's results have changed since the analysis was made. Another analysis may be put in its place.
  virtual StaleAnalysis decideStale(std::shared_ptr<AFLP>& analysis) = 0;
  // A report is wanted; `makePage` makes it as an HTML page, and need not be called.
  virtual void showReport(const ReportRequest& request, const std::function<std::string()>& makePage) = 0;
  // For developers, in the framework's debug mode: whether to stop at the failure, and the stop.
  virtual bool confirmDebugStop(std::intptr_t instance) = 0;
  virtual void debugBreak() = 0;
};

// The answers while nobody looks: OK, or Cancel where there is a choice. A front may begin with them.
class CarefulFront : public HostFront {
 public:
  ui::BoxAnswer showMessage(const MessageShown& message) override;
  std::optional<SaveAnswer> askWhereToSave(ui::SaveDialog&) override { return std::nullopt; }
  void runForm(ui::Form&) override {}
  void showPopup(ui::MenuItem&, ui::MenuItem*) override {}
  bool selectColumns(ColumnSelection&) override { return false; }
  bool sortColumns(ColumnSorting&) override { return false; }
  StaleAnalysis decideStale(std::shared_ptr<AFLP>&) override { return StaleAnalysis::OpenAsStored; }
  void showReport(const ReportRequest&, const std::function<std::string()>&) override {}
  bool confirmDebugStop(std::intptr_t) override { return false; }
  void debugBreak() override {}
};

// The seat in front of a host. The front that took it last answers; when its connection ends the one before it
// does, and at last a CarefulFront.
class FrontSeat final {
 public:
  FrontSeat() = default;
  FrontSeat(const FrontSeat&) = delete;
  FrontSeat& operator=(const FrontSeat&) = delete;

  // The front outlives the connection.
  [[nodiscard]] Connection take(HostFront& front);
  HostFront& front();

 private:
  struct Taken {
    std::shared_ptr<bool> isAlive;
    HostFront* front;
  };

  CarefulFront nobody_;
  std::vector<Taken> taken_;
};

}  // namespace banddesk::host
