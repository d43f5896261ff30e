// A page as the host holds it, and the helper inside it that the plug-in's page makes. Opening and ending
// pages is the page manager's work.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/framework/guarded_calculator.h"
#include "host/framework/platform.h"
#include "host/study/fault_injector.h"
#include "plugin/banddesk.h"

namespace banddesk::host {

// Marks an owner of pages whose end can be noticed.
class LivingOwner {
 public:
  std::weak_ptr<void> life() const { return life_; }

 protected:
  ~LivingOwner() = default;

 private:
  std::shared_ptr<void> life_ = std::make_shared<char>();
};

// The owner of an open page, who may be gone when the page ends.
class OwnerLink {
 public:
  explicit OwnerLink(PageOwner* owner);
  void raiseExit(Page& page, bool cancelled) const;

 private:
  PageOwner* owner_;
  bool isLiving_ = false;  // else it must outlive the page
  std::weak_ptr<void> life_;
};

// What a table was made with, and how many times one was made.
struct TableRun {
  double maxBinWidth = 0;  // nt
  double yThreshold = 0;   // RFU
  std::int64_t count = 0;
};

class HostPage;

class HostPageBase final : public PageBase, public LivingOwner {
 public:
  HostPageBase(FaultInjector& faults, HostPlatform& platform) : faults_(faults), platform_(platform) {}

  std::string Caption() const override;
  void SetCaption(const std::string& caption) override;
  ObjectRef BoundObject() const override;  // null before it is bound
  // Nothing while the page is being initialised: what a page shows at first is no change.
  void MarkChanged() override;
  void ShowHelp(std::int32_t command, std::int32_t data) override;

  // The plug-in's page that this is the helper of; null before it is bound and after its end.
  std::shared_ptr<IPageControl> control() const;

  // Null unbinds. A bound page outlives its binding.
  void bind(HostPage* page) { page_ = page; }
  void setInitializing(bool initializing) { isInitializing_ = initializing; }

  // The calculators that the host made for the page, which makes them while it is initialised.
  void keep(std::shared_ptr<GuardedCalculator> calculator) { calculators_.push_back(std::move(calculator)); }
  const std::vector<std::shared_ptr<GuardedCalculator>>& calculators() const { return calculators_; }

 private:
  HostPage& page() const;

  FaultInjector& faults_;
  HostPlatform& platform_;
  HostPage* page_ = nullptr;
  bool isInitializing_ = false;
  std::vector<std::shared_ptr<GuardedCalculator>> calculators_;
};

// What happens to pages, for whoever shows them.
struct PageWatch {
  Event<HostPage&> Shown;
  Event<HostPage&> Ended;
  // The page takes the other's place; that one is at its end.
  Event<HostPage& /*former*/, HostPage& /*page*/> Replaced;
  Event<HostPage&> Changed;          // caption or view index
  Event<const HostPage&> UserActed;  // after what the user did to it
};

class HostPage final : public Page, public std::enable_shared_from_this<HostPage> {
 public:
  HostPage(FaultInjector& faults, PageWatch& watch, std::string definitionName, std::string caption,
           ObjectRef bound, PageOwner* owner)
      : faults_(faults),
        watch_(watch),
        definitionName_(std::move(definitionName)),
        caption_(std::move(caption)),
        bound_(std::move(bound)),
        owner_(owner) {}
  ~HostPage() override { hold(); }

  const std::string& DefinitionName() const override { return definitionName_; }
  ObjectRef BoundObject() const override;
  std::string Caption() const override { return caption_; }
  void SetCaption(const std::string& caption) override;
  void SetViewIndex(std::int16_t index) override;
  void Show() override;

  const ObjectRef& bound() const { return bound_; }
  std::int16_t viewIndex() const { return viewIndex_; }
  bool isShown() const { return isShown_; }
  const OwnerLink& owner() const { return owner_; }
  // The plug-in's page; null for a page of the host's own, and after the end.
  const std::shared_ptr<IPageControl>& control() const { return control_; }
  const std::shared_ptr<HostPageBase>& base() const { return base_; }

  // The calculations of the page's table, as the calculators hear of them.
  const TableRun& tableRun() const { return tableRun_; }
  void noteRun(double maxBinWidth, double yThreshold) {
    tableRun_ = {maxBinWidth, yThreshold, tableRun_.count + 1};
  }
  // A procedure left the table half made and it could not be made anew. The page's object holds what the
  // table had before; nothing more is done with the page but to end it.
  bool isHalfMade() const { return isHalfMade_; }
  void markHalfMade() { isHalfMade_ = true; }
  // The results that its calculators have fragments of, in their order.
  const std::vector<std::int32_t>& resultIds() const { return resultIds_; }
  void setResultIds(std::vector<std::int32_t> ids) { resultIds_ = std::move(ids); }
  // Stands where the former stood.
  void follow(const HostPage& former) {
    viewIndex_ = former.viewIndex_;
    isShown_ = former.isShown_;
  }

  // Makes this the page of a control and its helper; without arguments it is the page of none again.
  void hold(std::shared_ptr<IPageControl> control = nullptr, std::shared_ptr<HostPageBase> base = nullptr);

 private:
  FaultInjector& faults_;
  PageWatch& watch_;
  std::string definitionName_;
  std::string caption_;
  ObjectRef bound_;
  OwnerLink owner_;
  std::int16_t viewIndex_ = 0;
  bool isShown_ = false;
  bool isHalfMade_ = false;
  TableRun tableRun_;
  std::vector<std::int32_t> resultIds_;
  std::shared_ptr<IPageControl> control_;
  std::shared_ptr<HostPageBase> base_;
};

// Marks the object changed if it is a persistent one.
void markIfPersistent(const ObjectRef& object);

}  // namespace banddesk::host
