// The service as the host drives it: its command, the save of a study, reports, and what it does without a
// folder.
#include <gmock/gmock.h>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Script kOneBin{{0, {{100, {1, 1, 0}}}}};

bool commandIsEnabled(Desk& desk) { return desk.host.serviceBase().Commands.Item("NewAFLP1")->Enabled; }

TEST(Service, EnablesItsCommandByOpeningAStudyAndUnloadsSamplesAfterIt) {
  Desk desk(kOneBin);
  EXPECT_FALSE(commandIsEnabled(desk));
  desk.openStudy();
  EXPECT_TRUE(commandIsEnabled(desk));
  desk.newAnalysis();
  std::vector<std::shared_ptr<host::HostSample>> samples;
  for (const auto& result : desk.analysis().Results) {
    samples.push_back(std::dynamic_pointer_cast<host::HostSample>(result->Sample));
    EXPECT_TRUE(samples.back()->isLoaded());
  }
  // The study itself is still there: it is the service that lets go of the samples.
  desk.host.study().StudyClosed.raise();
  EXPECT_FALSE(commandIsEnabled(desk));
  for (const auto& sample : samples) EXPECT_FALSE(sample->isLoaded());
  desk.host.closeStudy();
  desk.openStudy();
  desk.host.serviceBase().Initialize.raise();
  EXPECT_FALSE(commandIsEnabled(desk)) << "a study that was open already enabled it";
  desk.host.study().StudyOpened.raise(desk.host.study().Study());
  EXPECT_TRUE(commandIsEnabled(desk));
}

// Hundreds of samples are loaded one after the other; only the latest stay.
TEST(Service, NeverHoldsTheFragmentsOfAllSamplesOfALargeStudy) {
  std::vector<std::string> samples;
  samples.reserve(200);
  for (int i = 0; i < 200; ++i) samples.push_back("s" + std::to_string(i));
  Desk desk(kOneBin, samples);
  desk.newAnalysis();
  std::size_t loaded = 0;
  for (const auto& result : desk.analysis().Results)
    loaded += std::dynamic_pointer_cast<host::HostSample>(result->Sample)->isLoaded() ? 1U : 0U;
  EXPECT_EQ(loaded, host::FragmentSource::kMostHolders);
}

// Else its file stays locked until another study is opened.
TEST(Service, LetsTheStoreOfAClosedStudyGo) {
  Desk desk;
  desk.newAnalysis();
  const std::weak_ptr<host::Store> store = desk.store;
  desk.store.reset();
  desk.host.closeStudy();
  EXPECT_TRUE(store.expired());
}

TEST(Service, SaysOnceWhatANewAnalysisLacksAndMakesNothing) {
  for (const auto& [isOpen, text] :
       {std::pair(false, "Please create or open a study before performing an AFLP analysis."),
        {true, "Please add results to the study before performing an AFLP analysis."}}) {
    Desk desk({}, {});
    if (isOpen) desk.openStudy();
    desk.host.faults().startRecording();
    desk.host.service().NewAFLP();
    desk.host.faults().disarm();
    if (!isOpen) desk.host.service().OpenAFLP(nullptr);
    const auto& messages = desk.front.messages;
    ASSERT_EQ(messages.size(), isOpen ? 1U : 2U);
    for (const auto& shown : messages) {
      EXPECT_TRUE(shown.text == text && shown.style == 64 && shown.title == "AFLP Analysis") << shown.text;
    }
    EXPECT_THAT(desk.host.pages().openPages(), IsEmpty());
    EXPECT_FALSE(desk.host.faults().recorded().contains({"ObjectManager", "Create"}));
  }
}

TEST(Service, NeedsAReportingServiceByItsName) {
  Desk desk(kOneBin);
  desk.newAnalysis();
  desk.host.registry().Instances.Remove("ReportingService");
  EXPECT_THROW(desk.host.serviceBase().Initialize.raise(), Error);
  EXPECT_THROW(desk.host.runCommand(desk.host.tree().children().front().item, "NewReport"), Error);
  EXPECT_EQ(desk.host.framework().reports().size(), 2U);
}

TEST(Service, DoesNothingAndSaysNothingWithoutAFolder) {
  host::Host host({});
  const TestFront front(host.platform(), host.seat());
  const host::Component component(host::loadEntries(componentFile()), host);
  const auto made = std::dynamic_pointer_cast<IAFLPService>(component.create("AFLPService"));
  IAFLPService& service = *made;
  ServiceBase& base = *service.Service();
  base.Initialize.raise();
  host::NewResult result;
  result.sampleName = "a";
  host.openStudy(std::make_shared<host::MemoryStore>("Plants", std::vector{result}));
  EXPECT_TRUE(base.Commands.Item("NewAFLP1")->Enabled);
  const auto analysis = std::dynamic_pointer_cast<AFLP>(host.objects().Create("AFLP"));
  const auto item = std::dynamic_pointer_cast<IAFLPExplorerItem>(component.create("AFLPExplorerItem"));
  item->Init(analysis);
  service.NewAFLP();
  service.OpenAFLP(analysis);
  service.DeleteAFLP(analysis);
  service.RenameAFLP(analysis);
  item->OpenAFLP();
  item->DeleteAFLP();
  item->RenameAFLP();
  EXPECT_EQ(service.AFLPs(), nullptr);
  Dictionary<ObjectRef> listed;
  base.GetUnsavedItems.raise(listed);
  base.GetReportContexts.raise(nullptr, listed);
  EXPECT_EQ(listed.Count(), 0);
  Collection<std::shared_ptr<ReportContextType>> types;
  base.GetReportContextTypes.raise(types);
  EXPECT_EQ(types.Count(), 1);
  host.reports().ReportFinished.raise();
  host.study().StudyClosed.raise();
  EXPECT_FALSE(base.Commands.Item("NewAFLP1")->Enabled);
  EXPECT_THAT(host.pages().openPages(), IsEmpty());
  EXPECT_THAT(front.messages, IsEmpty());
  EXPECT_THAT(host.framework().reports(), IsEmpty());
  host.closeStudy();
  item->OpenAFLP();
  EXPECT_EQ(front.messages.size(), 1U) << "an item asks for a study first";
}

TEST(SaveFlow, ListsWhatIsNewChangedAndDeletedAndRefusesEqualDescriptions) {
  Desk desk(kOneBin);
  desk.newAnalysis();
  desk.analysis().Persistent().IsDirty = true;
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Add AFLP: New AFLP 1"));
  desk.host.save();
  EXPECT_THAT(desk.host.unsaved(), IsEmpty());
  desk.host.pages().userEvent(*desk.pageNamed("AFLP"),
                              [&] { desk.control<ui::CheckBox>("chkShowExcluded").click(); });
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Update AFLP: New AFLP 1"));
  desk.host.save();
  desk.newAnalysis();
  desk.newAnalysis();
  desk.host.service().DeleteAFLP(desk.host.study().Study()->AFLPs.Item(1));
  EXPECT_THAT(desk.host.unsaved(),
              ElementsAre("Add AFLP: New AFLP 2", "Add AFLP: New AFLP 3", "Delete AFLP: New AFLP 1"));
  desk.host.study().Study()->AFLPs.Item(2)->Name = "New AFLP 2";
  EXPECT_THROW(desk.host.unsaved(), Error);
}

TEST(SaveFlow, ListsADeletionUntilTheStoreHasMadeIt) {
  Desk desk(kOneBin);
  desk.newAnalysis();
  desk.host.save();
  desk.host.runCommand(desk.host.tree().children().front().item, "DeleteAFLP");
  EXPECT_EQ(desk.store->analysisIds().size(), 1U) << "before it was saved";
  desk.host.save([](const std::vector<std::string>&) { return std::vector<std::string>(); });
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Delete AFLP: New AFLP 1"));
  desk.host.faults().failAt("ObjectManager", "Delete", 1, Error(ErrorNumber::DiskFull, "store", "full"));
  EXPECT_THROW(desk.host.save(), Error);
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Delete AFLP: New AFLP 1"));
  desk.host.save();
  EXPECT_THAT(desk.store->analysisIds(), IsEmpty());
  EXPECT_THAT(desk.host.unsaved(), IsEmpty());

  // One that was never stored is deleted by the same way.
  desk.newAnalysis();
  desk.host.runCommand(desk.host.tree().children().front().item, "DeleteAFLP");
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Delete AFLP: New AFLP 1"));
  desk.host.faults().startRecording();
  desk.host.save();
  EXPECT_EQ((desk.host.faults().recorded().at({"ObjectManager", "Delete"})), 1);
  EXPECT_EQ((desk.host.faults().recorded().at({"Study.AFLPs", "Commit"})), 1);
  EXPECT_THAT(desk.host.unsaved(), IsEmpty());
}

TEST(SaveFlow, DoesNotListAStoredAnalysisThatWasOnlyOpened) {
  Desk desk(kOneBin);
  desk.newAnalysis().SetLockedCol(11);
  desk.control<ui::ComboBox>("cbxSampleAxis").ListIndex = 1;
  desk.host.save();
  desk.host.closeStudy();
  desk.openStudy();
  desk.reopen(desk.host.study().Study()->AFLPs.Item(1));
  desk.wait();
  EXPECT_THAT(desk.host.unsaved(), IsEmpty());
  // What the user does there is listed, also where it reaches the analysis only with the save.
  const auto page = desk.pageNamed("AFLP");
  desk.host.pages().userEvent(*page, [&] { desk.control<ui::UpDown>("udYThreshold").up(); });
  EXPECT_THAT(desk.host.unsaved(), ElementsAre("Update AFLP: New AFLP 1"));
}

TEST(Reports, AreMadeOfTheItemsAnalysisAndFinishedForAll) {
  Desk desk(kOneBin);
  desk.newAnalysis();
  desk.newAnalysis();
  desk.host.save();
  desk.host.faults().startRecording();
  desk.host.runCommand(desk.host.tree().children().at(1).item, "NewReport");
  ASSERT_EQ(desk.front.reports.size(), 1U);
  const auto& request = desk.front.reports.front();
  EXPECT_EQ(request.contextName, "New AFLP 2");
  EXPECT_EQ(request.contextType, 1013);
  EXPECT_EQ(request.context, desk.host.study().Study()->AFLPs.Item(2));
  EXPECT_EQ((desk.host.faults().recorded().at({"AFLP", "ReportFinished"})), 2);
}

TEST(Reports, AreOfferedUnlessTheCommandIsHiddenOrMissingAtAnyStep) {
  struct Case {
    const char* what;
    std::function<void(ServiceRegistry&)> change;
    bool offered;
  };
  const auto itemOf = [](ServiceRegistry & registry) -> auto& {
    return *registry.Definitions.Item("AFLPService")->ExplorerItems.Item("AFLP");
  };
  for (const Case& c : std::initializer_list<Case>{
           {"as it is", [](ServiceRegistry&) {}, true},
           {"null",
            [&](ServiceRegistry& r) {
              itemOf(r).Commands.Item("NewReport")->Visible = std::optional<bool>();
            },
            false},
           {"hidden", [&](ServiceRegistry& r) { itemOf(r).Commands.Item("NewReport")->Visible = false; },
            false},
           {"no command", [&](ServiceRegistry& r) { itemOf(r).Commands.Remove("NewReport"); }, false},
           {"no item",
            [](ServiceRegistry& r) { r.Definitions.Item("AFLPService")->ExplorerItems.Remove("AFLP"); },
            false},
           {"no service", [](ServiceRegistry& r) { r.Definitions.Remove("AFLPService"); }, false}}) {
    Desk desk(kOneBin);
    desk.newAnalysis();
    c.change(desk.host.registry());
    Dictionary<ObjectRef> contexts;
    Collection<std::shared_ptr<ReportContextType>> types;
    desk.host.serviceBase().GetReportContexts.raise(nullptr, contexts);
    desk.host.serviceBase().GetReportContextTypes.raise(types);
    EXPECT_EQ(contexts.Count(), c.offered ? 1 : 0) << c.what;
    ASSERT_EQ(types.Count(), c.offered ? 1 : 0) << c.what;
    if (c.offered) {
      EXPECT_TRUE(types.Item(1)->number() == 1013 && types.Item(1)->name() == "AFLP" &&
                  types.Item(1)->weight() == 30);
      EXPECT_EQ(types.Item(1)->owner(), static_cast<Object*>(&desk.host.service()));
    }
    EXPECT_THAT(desk.host.framework().reports(), IsEmpty()) << c.what;
  }
}

// The class objects that the component registers, for the contract they were built with alone.
TEST(Component, RegistersItsClassesAndMakesThoseThatAHostNeeds) {
  Desk desk;
  std::string made;
  for (const std::string& name : desk.host.component().classNames()) {
    try {
      made += name + (desk.host.component().create(name) ? "+ " : "");
    } catch (const Error&) {
      made += name + "- ";
    }
  }
  EXPECT_EQ(
      made,
      "AFLPExplorerFolder+ AFLPExplorerItem+ AFLPResult- AFLPService+ AFLPStudyResult- Bin- AFLPParamsPage+ "
      "AFLPResultsPage+ ");
  EXPECT_THROW(desk.host.component().create("Other"), Error);
}

}  // namespace
}  // namespace banddesk::test
