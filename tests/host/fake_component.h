// A component of a few lines, linked into the tests: its service, folder, items and pages note what the host
// does to them, in order. It shows the host's side of the contract, not the plug-in's work.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/framework/host.h"
#include "host/store/memory_store.h"

namespace banddesk::host {

// What the fake's objects share; it lies in the host's slot for the component.
struct Script final : Object {
  std::vector<std::string> log;
  bool pagesAreValid = true;
  std::string failingStep;  // the step of a page that raises error 51
  std::function<void(PageBase&)> onInitialize;

  void note(const std::string& step) {
    log.push_back(step);
    if (step == failingStep) raise(ErrorNumber::Internal, "FakePage", step + " failed");
  }
};

class FakePage final : public IPageControl {
 public:
  FakePage(HostServices& services, Script& script);
  void UserControl_Initialize() override;
  std::shared_ptr<PageBase> Page() override { return base; }
  const ui::ControlSet& Controls() const override { return controls_; }
  void UserControl_KeyDown(std::int32_t&) override {}
  void UserControl_KeyPress(std::int32_t&) override {}
  void UserControl_Resize(double, double) override {}

  std::shared_ptr<PageBase> base;
  ui::Timer timer{"ctlTimer", 500};

 private:
  HostServices& services_;
  Script& script_;
  ui::ControlSet controls_;
  Connections connections_;
};

ComponentEntries fakeEntries();
// Entries of a component that was built against other contracts.
ComponentEntries strangerEntries();

// A host with the fake in use; `script` is its log.
struct TestHost {
  explicit TestHost(HostSettings settings = {});
  Host host;
  Script& script;

  // Opens a study of three samples, of which only the first two dyes have fragments.
  std::shared_ptr<MemoryStore> openStudy();
  std::shared_ptr<AFLP> addAnalysis(const std::string& name);
  std::shared_ptr<HostPage> open(const std::string& page, const ObjectRef& bound, PageOwner* owner = nullptr);
};

// What the host's tests expect of a failing action: its error's number.
ErrorNumber numberOf(const std::function<void()>& action);

}  // namespace banddesk::host
