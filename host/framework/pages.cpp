#include "host/framework/pages.h"

#include <utility>

namespace banddesk::host {

OwnerLink::OwnerLink(PageOwner* owner) : owner_(owner) {
  if (const auto* living = dynamic_cast<const LivingOwner*>(owner)) {
    isLiving_ = true;
    life_ = living->life();
  }
}

void OwnerLink::raiseExit(Page& page, bool cancelled) const {
  if (owner_ == nullptr || (isLiving_ && life_.expired())) return;
  owner_->OnExit.raise(page, cancelled);
}

std::string HostPageBase::Caption() const {
  faults_.check("PageBase", "Caption");
  return page().Caption();
}

void HostPageBase::SetCaption(const std::string& caption) {
  faults_.check("PageBase", "Caption");
  page().SetCaption(caption);
}

ObjectRef HostPageBase::BoundObject() const {
  faults_.check("PageBase", "BoundObject");
  return page_ != nullptr ? page_->bound() : nullptr;
}

void HostPageBase::MarkChanged() {
  faults_.check("PageBase", "MarkChanged");
  if (page_ != nullptr && !isInitializing_) markIfPersistent(page_->bound());
}

void HostPageBase::ShowHelp(std::int32_t command, std::int32_t data) {
  faults_.check("PageBase", "ShowHelp");
  platform_.ShowHelp(page().DefinitionName(), command, data);
}

std::shared_ptr<IPageControl> HostPageBase::control() const {
  return page_ != nullptr ? page_->control() : nullptr;
}

HostPage& HostPageBase::page() const { return required(page_, "Page"); }

ObjectRef HostPage::BoundObject() const {
  faults_.check("Page", "BoundObject");
  return bound_;
}

void HostPage::SetCaption(const std::string& caption) {
  faults_.check("Page", "Caption");
  caption_ = caption;
  watch_.Changed.raise(*this);
}

void HostPage::SetViewIndex(std::int16_t index) {
  faults_.check("Page", "ViewIndex");
  viewIndex_ = index;
  watch_.Changed.raise(*this);
}

void HostPage::Show() {
  faults_.check("Page", "Show");
  isShown_ = true;
  watch_.Shown.raise(*this);
}

void HostPage::hold(std::shared_ptr<IPageControl> control, std::shared_ptr<HostPageBase> base) {
  if (base_) base_->bind(nullptr);
  control_ = std::move(control);
  base_ = std::move(base);
  if (base_) base_->bind(this);
}

void markIfPersistent(const ObjectRef& object) {
  if (auto* persistent = dynamic_cast<PersistentObject*>(object.get())) persistent->markChanged();
}

}  // namespace banddesk::host
