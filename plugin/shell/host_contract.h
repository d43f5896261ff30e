// The chief header of the plug-in: all that it requires of its host, grouped by object. Every operation fails
// by raising an Error. The host implements the abstract classes; the plug-in uses nothing else of the world
// outside.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/analysis/bin_calculator.h"
#include "plugin/base/collection.h"
#include "plugin/base/event.h"
#include "plugin/base/failure.h"
#include "plugin/base/object.h"
#include "plugin/base/property.h"
#include "plugin/results/grid_addressing.h"
#include "plugin/shell/persistent.h"
#include "plugin/ui/platform.h"

namespace banddesk {

// ---- Framework

class Framework : public ErrorReporter {
 public:
  virtual ~Framework() = default;
  // Looks a key up without raising an error, in plain and persistent collections alike.
  virtual bool ItemExists(const KeyedLookup& collection, std::string_view key) = 0;
  virtual double Min(double a, double b) = 0;
  virtual double Max(double a, double b) = 0;
  // A copy of the columns, sorted ascending by the named number property; ties keep their order.
  virtual std::vector<std::shared_ptr<GridColumn>> SortedBy(const PersistentCollection<GridColumn>& columns,
                                                            std::int32_t, std::int32_t,
                                                            std::string_view property, std::int32_t) = 0;
  virtual std::string ApplicationPath() const = 0;  // the application's folder
};

// The indicator of long work. Start sets the maximum and goes back to 0 and the default number of steps
// (100).
class Progress {
 public:
  virtual ~Progress() = default;
  virtual void Start(double maximum, std::int32_t) = 0;
  virtual void Step() = 0;  // Position grows by Maximum / Steps
  virtual double Maximum() const = 0;
  virtual double Steps() const = 0;
  virtual void SetSteps(double steps) = 0;
  virtual double Position() const = 0;
  virtual void SetPosition(double position) = 0;  // not clamped
  virtual void Finish() = 0;                      // Position goes back to 0
};

// ---- Services

// A command of a service or an explorer item. Visible may be absent, which counts as not visible.
class Command : public Object, public PropertyOwner {
 public:
  // The host sees each put and may refuse it.
  std::function<void(const char* property)> onPut;
  void beforePut(const char* property) override {
    if (onPut) onPut(property);
  }
  void afterPut(const char*, bool) override {}

  Property<bool> Enabled{*this, "Enabled", true};
  Property<std::optional<bool>> Visible{*this, "Visible"};
};

class ExplorerItemDefinition : public Object {
 public:
  std::string Caption;
  Collection<std::shared_ptr<Command>> Commands;
};

class ServiceDefinition : public Object {
 public:
  Collection<std::shared_ptr<ExplorerItemDefinition>> ExplorerItems;  // by item type
};

class ServiceRegistry {
 public:
  Collection<std::shared_ptr<ServiceDefinition>> Definitions;  // by service name
  Collection<ObjectRef> Instances;                             // running services by name
};

// A kind of thing that reports can be made about.
class ReportContextType : public Object {
 public:
  void Init(std::int32_t number, std::string name, double weight, Object* owner) {
    number_ = number;
    name_ = std::move(name);
    weight_ = weight;
    owner_ = owner;
  }
  std::int32_t number() const { return number_; }
  const std::string& name() const { return name_; }
  double weight() const { return weight_; }
  Object* owner() const { return owner_; }

 private:
  std::int32_t number_ = 0;
  std::string name_;
  double weight_ = 0;
  Object* owner_ = nullptr;
};

class ReportingService : public Object {
 public:
  virtual void NewReport(const std::string& contextName, const ObjectRef& context,
                         std::int32_t contextType) = 0;
  Event<> ReportFinished;
};

// The host's helper inside a service. The service makes it; the host talks to it.
class ServiceBase : public Object {
 public:
  Collection<std::shared_ptr<Command>> Commands;  // by identifier

  Event<> Initialize;  // once, after the helper was handed over
  Event<Dictionary<ObjectRef>&> GetUnsavedItems;
  Event<const ObjectRef&> Save;
  Event<> SaveComplete;
  Event<const ObjectRef&, Dictionary<ObjectRef>&> GetReportContexts;
  Event<Collection<std::shared_ptr<ReportContextType>>&> GetReportContextTypes;
};

class IServiceAccess {
 public:
  virtual std::shared_ptr<ServiceBase> Service() = 0;

 protected:
  ~IServiceAccess() = default;
};

// ---- Pages and explorer

class Page : public Object {
 public:
  virtual const std::string& DefinitionName() const = 0;
  virtual ObjectRef BoundObject() const = 0;
  virtual std::string Caption() const = 0;
  virtual void SetCaption(const std::string& caption) = 0;
  virtual void SetViewIndex(std::int16_t index) = 0;
  virtual void Show() = 0;
};

// Who opened a page is told when it ends; `cancelled` says that it was left without accepting.
class PageOwner : public Object {
 public:
  Event<Page&, bool> OnExit;
};

class IExplorerItemAccess;

class ExplorerItemBase : public PageOwner {
 public:
  virtual void SetText(const std::string& text) = 0;
  virtual const ExplorerItemDefinition& Definition() const = 0;

  Event<Collection<std::shared_ptr<IExplorerItemAccess>>&> Initialize;  // with the children to fill
  Event<std::string&> OnDisplayName;
  Event<std::string&> OnBeforeRename;
  Event<const std::string&> OnAfterRename;
};

class IExplorerItemAccess : public Object {
 public:
  virtual std::shared_ptr<ExplorerItemBase> ExplorerItem() = 0;
};

class ExplorerTree {
 public:
  virtual ~ExplorerTree() = default;
  virtual void AddItem(const std::shared_ptr<IExplorerItemAccess>& item, const std::string& type,
                       IExplorerItemAccess& parent) = 0;
  virtual void RemoveItem(const std::shared_ptr<IExplorerItemAccess>& item) = 0;
  // Begins the edit in place and returns; its end arrives as OnAfterRename.
  virtual void BeginRename(const std::shared_ptr<IExplorerItemAccess>& item) = 0;
};

class Explorer {
 public:
  virtual ~Explorer() = default;
  virtual ExplorerTree& Tree() = 0;
};

// The host's helper inside a page. The page makes it; the host binds it and talks to it.
class PageBase : public PageOwner {
 public:
  virtual std::string Caption() const = 0;
  virtual void SetCaption(const std::string& caption) = 0;
  virtual ObjectRef BoundObject() const = 0;
  virtual void MarkChanged() = 0;
  virtual void ShowHelp(std::int32_t command, std::int32_t data) = 0;

  Event<> Initialize;
  Event<bool&> Validate;
  Event<> Save;
  Event<> Terminate;
};

class IPageAccess {
 public:
  virtual std::shared_ptr<PageBase> Page() = 0;

 protected:
  ~IPageAccess() = default;
};

class PageManager {
 public:
  virtual ~PageManager() = default;
  // The owner may be null. The six flags are always true. With `hidden` the page stays hidden until
  // Page::Show.
  virtual std::shared_ptr<banddesk::Page> OpenPage(const std::string& name, const ObjectRef& bound,
                                                   PageOwner* owner, bool, bool, bool, bool, bool, bool,
                                                   const char*, bool hidden, std::int32_t) = 0;
};

class Application {
 public:
  virtual ~Application() = default;
  virtual banddesk::ServiceRegistry& ServiceRegistry() = 0;
  virtual banddesk::PageManager& PageManager() = 0;
  virtual banddesk::Explorer& Explorer() = 0;
  virtual banddesk::Progress& Progress() = 0;
};

// ---- Study and objects

class Options {
 public:
  virtual ~Options() = default;
  virtual bool ShowInclusionWarning() const = 0;
  virtual void SetShowInclusionWarning(bool show) = 0;
};

class StudyService {
 public:
  static constexpr std::int32_t kDoNotOpen = 0;
  static constexpr std::int32_t kRedo = 2;

  virtual ~StudyService() = default;
  virtual std::shared_ptr<banddesk::Study> Study() = 0;  // null with no study
  virtual bool IsStudyOpen() = 0;
  virtual banddesk::Options& Options() = 0;
  virtual std::int16_t DisplayViewIndex() = 0;  // DisplaySettings.ViewIndex
  // 0: do not open; 2: open after redoing the analysis; else open as stored. May replace the object.
  virtual std::int32_t CheckAnalysis(std::shared_ptr<AFLP>& analysis) = 0;

  Event<const std::shared_ptr<banddesk::Study>&> StudyOpened;
  // The study service no longer counts as open, but Study is still there while this runs.
  Event<> StudyClosed;
};

class ObjectManager {
 public:
  virtual ~ObjectManager() = default;
  // "AFLP", "GridColumn" or "AFLPBin"; not stored yet. Error 429 for any other name.
  virtual std::shared_ptr<PersistentObject> Create(const std::string& typeName) = 0;
  virtual std::vector<std::shared_ptr<PersistentObject>> Query(const std::string& what, const std::string&,
                                                               const std::string&, const std::string&, bool,
                                                               bool) = 0;
  virtual void Save(const std::shared_ptr<PersistentObject>& object, bool) = 0;
  virtual void Delete(const std::shared_ptr<PersistentObject>& object) = 0;
};

// Helpers of the host's library of grid columns.
class GridUtilities {
 public:
  virtual ~GridUtilities() = default;
  virtual Colour ContrastColor(Colour colour) = 0;
  virtual void Prepare(Grid& grid, std::int32_t) = 0;
  // The sort keys of a layout in their priority; returns their number. Columns that are unsorted give none.
  virtual std::int32_t BuildSortInfo(Grid& grid, const GridLayout& layout,
                                     std::vector<SortInfo>& descriptors) = 0;
};

// ---- What the component is handed

// Bumped whenever a contract changes its shape; host and component must have been built with the same one.
inline constexpr std::uint32_t kContractStamp = 4;

class HostServices {
 public:
  virtual ~HostServices() = default;

  virtual banddesk::Framework& Framework() = 0;
  virtual banddesk::StudyService& StudyService() = 0;
  virtual banddesk::ObjectManager& ObjectManager() = 0;
  virtual banddesk::Application& Application() = 0;
  virtual banddesk::GridUtilities& GridUtilities() = 0;
  virtual ui::Platform& Platform() = 0;

  virtual std::shared_ptr<ServiceBase> NewServiceBase() = 0;
  virtual std::shared_ptr<ExplorerItemBase> NewExplorerItemBase() = 0;
  virtual std::shared_ptr<PageBase> NewPageBase() = 0;
  virtual std::shared_ptr<Grid> NewGrid(const std::string& name) = 0;
  virtual std::shared_ptr<BinCalculator> NewBinCalculator() = 0;

  // A slot in which the component keeps what its objects share as long as this host lives.
  virtual ObjectRef& ComponentState() = 0;
};

}  // namespace banddesk
