#include "tests/host/fake_component.h"

#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

class FakeItem final : public IAFLPExplorerItem {
 public:
  FakeItem(HostServices& services, std::shared_ptr<AFLP> analysis)
      : analysis_(std::move(analysis)), base_(services.NewExplorerItemBase()) {
    base_->SetText(analysis_->Name);
    connections_.push_back(base_->OnDisplayName.connect([this](std::string& name) { name = Name(); }));
    connections_.push_back(base_->OnBeforeRename.connect([this](std::string& name) { name = Name(); }));
    connections_.push_back(
        base_->OnAfterRename.connect([this](const std::string& name) { analysis_->Name = name; }));
  }
  std::shared_ptr<ExplorerItemBase> ExplorerItem() override { return base_; }
  void Init(const std::shared_ptr<AFLP>&) override {}
  void OpenAFLP() override {
    bool show = true;
    analysis_->Open(show);
  }
  void DeleteAFLP() override { analysis_->Study.get()->AFLPs.Remove(analysis_->collectionKey()); }
  void RenameAFLP() override {}
  void NewReport() override {}
  std::string Name() override { return analysis_->Name; }

 private:
  std::shared_ptr<AFLP> analysis_;
  std::shared_ptr<ExplorerItemBase> base_;
  Connections connections_;
};

class FakeFolder final : public IAFLPExplorerFolder {
 public:
  FakeFolder(HostServices& services, Script& script)
      : services_(services), base_(services.NewExplorerItemBase()) {
    connections_.push_back(
        base_->Initialize.connect([this](Collection<std::shared_ptr<IExplorerItemAccess>>& children) {
          base_->SetText(base_->Definition().Caption);
          for (const auto& each : AFLPs()) children.Add(std::make_shared<FakeItem>(services_, each));
        }));
    connections_.push_back(base_->OnExit.connect([&script](banddesk::Page& page, bool cancelled) {
      script.note("exit " + page.DefinitionName() + (cancelled ? " cancelled" : " accepted"));
    }));
  }
  std::shared_ptr<ExplorerItemBase> ExplorerItem() override { return base_; }
  void NewAFLP() override {}
  void OpenAFLP(const std::shared_ptr<AFLP>&) override {}
  void DeleteAFLP(const std::shared_ptr<AFLP>&) override {}
  void RenameAFLP(const std::shared_ptr<AFLP>&) override {}
  PersistentCollection<AFLP>& AFLPs() override { return services_.StudyService().Study()->AFLPs; }
  Collection<std::shared_ptr<IAFLPExplorerItem>>& AFLPExplorerItems() override { return items_; }

 private:
  HostServices& services_;
  std::shared_ptr<ExplorerItemBase> base_;
  Collection<std::shared_ptr<IAFLPExplorerItem>> items_;
  Connections connections_;
};

class FakeService final : public IAFLPService {
 public:
  FakeService(HostServices& services, Script& script)
      : services_(services), base_(services.NewServiceBase()) {
    auto& studies = services.StudyService();
    connections_.push_back(base_->Initialize.connect([&script] { script.note("service initialize"); }));
    connections_.push_back(studies.StudyOpened.connect([&script](const auto&) { script.note("opened"); }));
    connections_.push_back(studies.StudyClosed.connect([&script, &studies] {
      script.note(studies.IsStudyOpen() ? "closed while open" : "closed");
      if (!studies.Study()) script.note("study is gone");
    }));
    connections_.push_back(
        base_->GetUnsavedItems.connect([this](Dictionary<ObjectRef>& items) { list(items); }));
    connections_.push_back(base_->Save.connect([this, &script](const ObjectRef& object) {
      const auto analysis = std::dynamic_pointer_cast<AFLP>(object);
      script.note("service save " + analysis->Name.get());
      if (AFLPs()->holdsKey(analysis->collectionKey())) {
        services_.ObjectManager().Save(analysis, true);
      } else {
        services_.ObjectManager().Delete(analysis);
      }
    }));
    connections_.push_back(base_->SaveComplete.connect([this, &script] {
      script.note("save complete");
      AFLPs()->Commit(false);
    }));
  }
  std::shared_ptr<ServiceBase> Service() override { return base_; }
  void NewAFLP() override {}
  void OpenAFLP(const std::shared_ptr<AFLP>&) override {}
  void DeleteAFLP(const std::shared_ptr<AFLP>&) override {}
  void RenameAFLP(const std::shared_ptr<AFLP>&) override {}
  PersistentCollection<AFLP>* AFLPs() override { return &services_.StudyService().Study()->AFLPs; }

 private:
  void list(Dictionary<ObjectRef>& items) {
    for (const auto& analysis : *AFLPs()) {
      const PersistentState& state = analysis->Persistent();
      if (state.IsNew || state.IsDirty) items.Add(analysis->Name, analysis);
    }
    for (const auto& analysis : AFLPs()->DeletedItems()) items.Add(analysis->Name, analysis);
  }

  HostServices& services_;
  std::shared_ptr<ServiceBase> base_;
  Connections connections_;
};

class FakeClass final : public ClassObject {
 public:
  explicit FakeClass(std::function<ObjectRef()> make) : make_(std::move(make)) {}
  ObjectRef CreateInstance() override { return make_(); }

 private:
  std::function<ObjectRef()> make_;
};

Script& scriptOf(HostServices& services) {
  if (!services.ComponentState()) services.ComponentState() = std::make_shared<Script>();
  return dynamic_cast<Script&>(*services.ComponentState());
}

template <class Class>
std::unique_ptr<ClassObject> classObjectOf(HostServices& services) {
  return std::make_unique<FakeClass>(
      [&services] { return std::make_shared<Class>(services, scriptOf(services)); });
}

std::int32_t registerNothing(Registrar&) { return kEntryOk; }
std::int32_t isIdle() { return kEntryOk; }

std::int32_t getClassObject(const char* className, std::uint32_t stamp, HostServices& services,
                            std::unique_ptr<ClassObject>& made) {
  const std::string name = className;
  if (stamp != kContractStamp) return kEntryContractDiffers;
  if (name == "AFLPService") made = classObjectOf<FakeService>(services);
  if (name == "AFLPExplorerFolder") made = classObjectOf<FakeFolder>(services);
  if (name == "AFLPParamsPage" || name == "AFLPResultsPage") made = classObjectOf<FakePage>(services);
  return made ? kEntryOk : kEntryClassUnknown;
}

std::int32_t refuseStamp(const char*, std::uint32_t, HostServices&, std::unique_ptr<ClassObject>&) {
  return kEntryContractDiffers;
}

SampleFragments fragmentsOf(double firstSize) {
  SampleFragments fragments;
  fragments.dyes[0] = {{firstSize, firstSize + 20}, {150, 300}};
  fragments.dyes[1] = {{firstSize + 5}, {90}};
  return fragments;
}

}  // namespace

FakePage::FakePage(HostServices& services, Script& script) : services_(services), script_(script) {
  controls_.add(timer);
}

void FakePage::UserControl_Initialize() {
  script_.note("made");
  base = services_.NewPageBase();
  connections_.push_back(base->Initialize.connect([this] {
    script_.note("initialize");
    if (script_.onInitialize) script_.onInitialize(*base);
  }));
  connections_.push_back(base->Validate.connect([this](bool& isValid) {
    script_.note("validate");
    isValid = script_.pagesAreValid;
  }));
  connections_.push_back(base->Save.connect([this] { script_.note("save"); }));
  connections_.push_back(base->Terminate.connect([this] { script_.note("terminate"); }));
  connections_.push_back(base->OnExit.connect([this](banddesk::Page& page, bool cancelled) {
    script_.note("child " + page.DefinitionName() + (cancelled ? " cancelled" : " accepted"));
  }));
  connections_.push_back(timer.Tick.connect([this] {
    timer.Enabled = false;
    script_.note("tick");
  }));
}

ComponentEntries fakeEntries() { return {registerNothing, registerNothing, getClassObject, isIdle}; }
ComponentEntries strangerEntries() { return {registerNothing, registerNothing, refuseStamp, isIdle}; }

TestHost::TestHost(HostSettings settings) : host(std::move(settings)), script(scriptOf(host)) {
  host.useComponent(fakeEntries());
}

std::shared_ptr<MemoryStore> TestHost::openStudy() {
  std::vector<NewResult> results;
  for (const double size : {100.5, 101.0, 140.25}) {
    results.push_back({"Sample " + integerText(static_cast<std::int64_t>(size)), fragmentsOf(size)});
  }
  auto store = std::make_shared<MemoryStore>("Primula", std::move(results));
  host.openStudy(store);
  script.log.clear();
  return store;
}

std::shared_ptr<AFLP> TestHost::addAnalysis(const std::string& name) {
  auto analysis = std::dynamic_pointer_cast<AFLP>(host.objects().Create("AFLP"));
  const auto study = host.study().Study();
  analysis->Study = study;
  analysis->Name = name;
  study->AFLPs.Add(analysis);
  return analysis;
}

std::shared_ptr<HostPage> TestHost::open(const std::string& page, const ObjectRef& bound, PageOwner* owner) {
  return std::dynamic_pointer_cast<HostPage>(
      host.pages().OpenPage(page, bound, owner, true, true, true, true, true, true, nullptr, false, 0));
}

ErrorNumber numberOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.number();
  }
  return ErrorNumber::None;
}

}  // namespace banddesk::host
