// The persistent objects that host and plug-in share: the analysis with its layouts, columns and bin
// decisions, and the study with its results, samples and dyes. They are plain classes of fields; reading is a
// read, a put with a new value makes the object, and the analysis it belongs to, dirty. How they are stored
// is the host's business.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "plugin/analysis/bin_calculator.h"
#include "plugin/base/collection.h"
#include "plugin/base/event.h"
#include "plugin/base/object.h"
#include "plugin/base/property.h"
#include "plugin/ui/control.h"

namespace banddesk {

using ui::Colour;

struct PersistentState {
  bool IsNew = true;     // never stored
  bool IsDirty = false;  // changed since it was loaded or stored
};

class IPersistentAccess {
 public:
  virtual PersistentState& Persistent() = 0;

 protected:
  ~IPersistentAccess() = default;
};

// Where the host refuses puts and accesses, to stand for a store that fails. `what` is "GridColumn.Width" and
// the like.
class AccessGuard {
 public:
  virtual void check(std::string_view type, std::string_view member) = 0;

 protected:
  ~AccessGuard() = default;
};

class PersistentObject : public Object, public IPersistentAccess, public PropertyOwner {
 public:
  explicit PersistentObject(const char* typeName) : typeName_(typeName) {}

  PersistentState& Persistent() override { return state_; }
  const PersistentState& persistentState() const { return state_; }
  const char* typeName() const { return typeName_; }

  // The text under which a persistent collection holds the object.
  virtual std::string collectionKey() const { return {}; }
  // The value of a number property by its name, if there is such a property.
  virtual std::optional<double> numberProperty(std::string_view) const { return std::nullopt; }

  // Marks this object and those it belongs to as changed.
  void markChanged();

  // The object that this one belongs to (it outlives this one, or is reset), and the host's guard; both may
  // be null.
  void setParent(PersistentObject* parent) { parent_ = parent; }
  void setGuard(AccessGuard* guard) { guard_ = guard; }
  AccessGuard* guard() const { return guard_; }

  void beforePut(const char* property) override;
  void afterPut(const char* property, bool changed) override;

 protected:
  // Whether a changed property is part of what is stored.
  virtual bool isStored(std::string_view) const { return true; }
  virtual void wasPut(std::string_view) {}

 private:
  const char* typeName_;
  PersistentState state_;
  PersistentObject* parent_ = nullptr;
  AccessGuard* guard_ = nullptr;
};

// A collection of persistent objects under the keys that the objects themselves give. What is removed waits
// in DeletedItems until it is deleted from the store. It is not a Collection, through which either could be
// passed by.
template <class T>
class PersistentCollection final : public ItemList<std::shared_ptr<T>>, private CollectionObserver {
 public:
  using Base = ItemList<std::shared_ptr<T>>;

  // `name` is a literal. With `owns` the objects added belong to the owner alone and report their changes to
  // it; other collections share their objects. What comes and goes changes the owner in either case.
  PersistentCollection(PersistentObject& owner, const char* name, bool owns)
      : owner_(owner), name_(name), owns_(owns) {
    Base::observe(this);
  }

  // The key is the object's own; it must be set before. Error 457 if the collection holds it already.
  void Add(std::shared_ptr<T> object) {
    const std::string key = required(object, name_).collectionKey();
    if (owns_) object->setParent(&owner_);
    Base::Add(std::move(object), key);
  }

  template <class KeyOrIndex>
  void Remove(const KeyOrIndex& which) {
    std::shared_ptr<T> object = Base::Item(which);
    Base::Remove(which);
    if (owns_) object->setParent(nullptr);
    const std::string key = object->collectionKey();
    if (deleted_.holdsKey(key)) deleted_.Remove(key);
    deleted_.Add(std::move(object), key);
  }

  Collection<std::shared_ptr<T>>& DeletedItems() { return deleted_; }

  // Closes a save. What was removed and not yet deleted from the store waits on for the next one, unless
  // `forget`.
  void Commit(bool forget) {
    beforeAccess("Commit");
    while (forget && deleted_.Count() > 0) deleted_.Remove(deleted_.Count());
  }

 private:
  void beforeAccess(const char* operation) override {
    if (owner_.guard() != nullptr) owner_.guard()->check(name_, operation);
  }
  void afterChange() override { owner_.markChanged(); }

  PersistentObject& owner_;
  const char* name_;
  bool owns_;
  Collection<std::shared_ptr<T>> deleted_;
};

// What a column is by its kind, shared by all columns of that kind.
struct GridColumnDefinition {
  bool HasOwnStyle = false;
  std::int32_t DefaultWidth = 0;  // above 0: the column's fixed width
};

// A column of the table, a dye, or a cell style, told apart by TypeCode.
class GridColumn final : public PersistentObject {
 public:
  GridColumn() : PersistentObject("GridColumn") {}

  static constexpr std::int32_t kSampleColumn = 219;
  static constexpr std::int32_t kDyeColumn = 306;

  Property<std::int32_t> TypeCode{*this, "TypeCode"};
  Property<std::string> Key{*this, "Key"};
  Property<std::string> ToolTip{*this, "ToolTip"};
  Property<std::string> Header{*this, "Header"};
  Property<std::int32_t> ColumnOrder{*this, "ColumnOrder"};
  Property<bool> IsVisible{*this, "IsVisible", true};
  Property<bool> IsExcluded{*this, "IsExcluded"};
  Property<bool> IsAutoExcluded{*this, "IsAutoExcluded"};
  Property<std::int32_t> Width{*this, "Width", -1};         // -1: fit to content
  Property<std::int32_t> SortOrder{*this, "SortOrder", 2};  // 0 ascending, 1 descending, 2 unsorted
  Property<std::int32_t> SortPriority{*this, "SortPriority"};

  Property<std::int32_t> InteriorPattern{*this, "InteriorPattern"};
  Property<Colour> InteriorColor{*this, "InteriorColor", 0xFFFFFF};
  Property<Colour> InteriorBkColor{*this, "InteriorBkColor", 0xFFFFFF};
  Property<bool> ReadOnly{*this, "ReadOnly", true};
  Property<bool> WrapText{*this, "WrapText"};
  Property<std::int32_t> HorizontalAlignment{*this, "HorizontalAlignment"};
  Property<std::int32_t> VerticalAlignment{*this, "VerticalAlignment"};
  Property<Colour> TextColor{*this, "TextColor"};
  Property<std::int32_t> Format{*this, "Format"};
  Property<std::int32_t> Places{*this, "Places"};
  Property<bool> Draw3dFrame{*this, "Draw3dFrame"};
  Property<std::string> StyleToolTip{*this, "StyleToolTip"};

  std::shared_ptr<const GridColumnDefinition> Definition = std::make_shared<GridColumnDefinition>();

  std::string collectionKey() const override { return Key; }
  std::optional<double> numberProperty(std::string_view name) const override;

 protected:
  bool isStored(std::string_view property) const override;
};

// A set of columns. Of its columns at most one is locked.
class GridLayout final : public PersistentObject {
 public:
  GridLayout() : PersistentObject("GridLayout") {}

  PersistentCollection<GridColumn> Columns{*this, "GridLayout.Columns", true};
  Property<std::shared_ptr<GridColumn>> LockedColumn{*this, "LockedColumn"};
};

// The user's decision about one bin.
class AFLPBin final : public PersistentObject {
 public:
  AFLPBin() : PersistentObject("AFLPBin") {}

  Property<std::string> Key{*this, "Key"};
  Property<bool> ManuallyExcluded{*this, "ManuallyExcluded"};
  Property<bool> ManuallyIncluded{*this, "ManuallyIncluded"};
  Property<bool> Saved{*this, "Saved"};

  std::string collectionKey() const override { return Key; }

 protected:
  bool isStored(std::string_view property) const override { return property != "Saved"; }
};

class SampleData {
 public:
  virtual ~SampleData() = default;
  virtual const FragmentTable& Fragments() = 0;  // loads them when needed
  virtual ObjectRef Record() = 0;                // what the views of a single sample show
};

class Sample : public PersistentObject {
 public:
  Sample() : PersistentObject("Sample") {}
  Property<std::string> Name{*this, "Name"};
  virtual SampleData& Data() = 0;
  // Lets go of loaded data; the next use loads it again.
  virtual void Unload() = 0;
};

class Result : public PersistentObject {
 public:
  Result() : PersistentObject("Result") {}
  Property<std::int32_t> ResultID{*this, "ResultID"};  // positive
  std::shared_ptr<banddesk::Sample> Sample;
  // Set by the study where it knows such marks; absent counts as no.
  Property<std::optional<bool>> IsExcluded{*this, "IsExcluded"};
  Property<std::optional<bool>> IsDeleted{*this, "IsDeleted"};

  std::string collectionKey() const override;
};

class Dye final : public PersistentObject {
 public:
  Dye() : PersistentObject("Dye") {}
  Property<banddesk::Colour> Color{*this, "Color"};
  Property<std::int32_t> Index{*this, "Index"};  // 0 to 3
  Property<bool> Visible{*this, "Visible"};

  std::string collectionKey() const override;
};

class Study;

inline constexpr std::size_t kLongestAnalysisName = 50;  // characters, of a name that a user gives

// One AFLP analysis of a study.
class AFLP : public PersistentObject {
 public:
  AFLP();

  virtual std::int32_t ID() const = 0;  // unique, stable from creation
  Property<std::string> Name{*this, "Name"};
  Property<std::shared_ptr<banddesk::Study>> Study{*this, "Study"};
  Property<std::int32_t> OwnerId{*this, "OwnerId"};
  Property<std::int32_t> ResultStamp{*this, "ResultStamp"};
  Property<double> MaxBinWidth{*this, "MaxBinWidth"};      // nt
  Property<std::int32_t> YThreshold{*this, "YThreshold"};  // RFU
  Property<bool> ExcludeFullBins{*this, "ExcludeFullBins"};
  Property<bool> ExcludeEmptySamples{*this, "ExcludeEmptySamples"};
  Property<bool> ShowExcluded{*this, "ShowExcluded"};
  Property<bool> ShowTimestamp{*this, "ShowTimestamp"};
  Property<bool> ShowWellID{*this, "ShowWellID"};
  Property<bool> SamplesInRows{*this, "SamplesInRows"};
  Property<std::int32_t> SampleBinOption{*this, "SampleBinOption"};  // 0 count, 1 presence, 2 largest height
  Property<bool> IsPending{*this, "IsPending"};         // until the results page has set up the analysis
  Property<Object*> ResultsPage{*this, "ResultsPage"};  // the page that shows it, or null; not stored

  PersistentCollection<Result> Results{*this, "AFLP.Results", false};
  PersistentCollection<AFLPBin> AFLPBins{*this, "AFLP.AFLPBins", true};
  const std::shared_ptr<GridLayout> BinGrid = std::make_shared<GridLayout>();
  const std::shared_ptr<GridLayout> SampleGrid = std::make_shared<GridLayout>();
  const std::shared_ptr<GridLayout> DyeGrid = std::make_shared<GridLayout>();
  const std::shared_ptr<GridLayout> StyleGrid = std::make_shared<GridLayout>();

  Event<const std::string&> Rename;  // after a put of Name

  // Opens the analysis's pages; the result is the page object.
  virtual ObjectRef Open(bool& show) = 0;
  virtual void ReportFinished() = 0;

  std::string collectionKey() const override;

 protected:
  bool isStored(std::string_view property) const override { return property != "ResultsPage"; }
  void wasPut(std::string_view property) override;
};

class Study : public PersistentObject {
 public:
  Study() : PersistentObject("Study") {}

  Property<std::string> Name{*this, "Name"};
  Property<std::int32_t> OwnerId{*this, "OwnerId"};
  Property<std::int32_t> ResultStamp{*this, "ResultStamp"};
  PersistentCollection<Result> Results{*this, "Study.Results", false};
  PersistentCollection<AFLP> AFLPs{*this, "Study.AFLPs", false};
  PersistentCollection<Dye> Dyes{*this, "Study.Dyes", false};

  Event<Dye&> DyeVisibibilityChanged;  // the spelling is the event's name
  Event<> ResultChanged;
};

}  // namespace banddesk
