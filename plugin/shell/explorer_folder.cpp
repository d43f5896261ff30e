#include "plugin/shell/explorer_folder.h"

#include <limits>

#include "plugin/base/numbers.h"
#include "plugin/base/text.h"
#include "plugin/shell/explorer_item.h"

namespace banddesk {

AFLPExplorerFolder::AFLPExplorerFolder(MGlobals& globals)
    : globals_(globals),
      services_(globals.services()),
      frame_(services_.Framework(), "AFLPExplorerFolder"),
      m_colExplorerItems(std::make_unique<Collection<std::shared_ptr<IAFLPExplorerItem>>>()) {
  Class_Initialize();
}

AFLPExplorerFolder::~AFLPExplorerFolder() {
  if (globals_.AFLPExplorerFolder() == this) globals_.SetAFLPExplorerFolder(nullptr);
}

void AFLPExplorerFolder::Class_Initialize() {
  frame_.procedure("Class_Initialize", [&] {
    m_oExplorerItemBase = services_.NewExplorerItemBase();
    ExplorerItemBase& base = required(m_oExplorerItemBase, "ExplorerItemBase");
    connections_.push_back(
        base.Initialize.connect([this](auto& children) { m_oExplorerItemBase_Initialize(children); }));
    connections_.push_back(base.OnExit.connect(
        [this](Page& page, bool cancelled) { m_oExplorerItemBase_OnExit(page, cancelled); }));
    globals_.SetAFLPExplorerFolder(this);
  });
}

std::shared_ptr<ExplorerItemBase> AFLPExplorerFolder::IExplorerItemAccess_ExplorerItem() {
  return frame_.procedure("IExplorerItemAccess_ExplorerItem (Get)", [&] { return m_oExplorerItemBase; });
}

PersistentCollection<AFLP>& AFLPExplorerFolder::AFLPs() {
  return frame_.procedure("AFLPs (Get)",
                          [&]() -> PersistentCollection<AFLP>& { return currentStudy().AFLPs; });
}

Collection<std::shared_ptr<IAFLPExplorerItem>>& AFLPExplorerFolder::AFLPExplorerItems() {
  return frame_.procedure(
      "AFLPExplorerItems (Get)", [&]() -> auto& { return *m_colExplorerItems; });
}

Study& AFLPExplorerFolder::currentStudy() { return required(services_.StudyService().Study(), "Study"); }

AFLPExplorerFolder::Names& AFLPExplorerFolder::newNames() {
  if (!m_colNewAFLPNames) m_colNewAFLPNames = std::make_unique<Names>();
  return *m_colNewAFLPNames;
}

std::shared_ptr<IAFLPExplorerItem> AFLPExplorerFolder::newItem(const std::shared_ptr<AFLP>& analysis) {
  auto item = std::make_shared<AFLPExplorerItem>(globals_);
  item->Init(analysis);
  return item;
}

void AFLPExplorerFolder::m_oExplorerItemBase_Initialize(
    Collection<std::shared_ptr<IExplorerItemAccess>>& children) {
  frame_.procedure("m_oExplorerItemBase_Initialize", [&] {
    m_oExplorerItemBase->SetText(m_oExplorerItemBase->Definition().Caption);
    m_colExplorerItems = std::make_unique<Collection<std::shared_ptr<IAFLPExplorerItem>>>();
    for (const auto& analysis : currentStudy().AFLPs) {
      const auto item = newItem(analysis);
      const std::string key = integerText(analysis->ID());
      children.Add(item, key);
      m_colExplorerItems->Add(item, key);
    }
  });
}

void AFLPExplorerFolder::NewAFLP() {
  frame_.procedure("NewAFLP", [&] {
    if (!globals_.IsStudyOpen()) return;
    const auto study = services_.StudyService().Study();
    if (required(study, "Study").Results.Count() == 0) {
      services_.Platform().MsgBox("Please add results to the study before performing an AFLP analysis.",
                                  ui::kInformation, kApplicationTitle);
      return;
    }
    const auto analysis = cast<AFLP>(services_.ObjectManager().Create("AFLP"), "AFLP");
    analysis->Study = study;
    analysis->Name = GenerateNewAFLPName();
    analysis->OwnerId = study->OwnerId;
    // Never analysed: the results page takes all results of the study and then clears the mark.
    analysis->IsPending = true;
    newNames().Add(analysis->Name, analysis->Name.get());
    // The analysis is in no collection yet. It lives in the page until the page closes.
    services_.Application().PageManager().OpenPage("AFLPParams", analysis, m_oExplorerItemBase.get(), true,
                                                   true, true, true, true, true, nullptr, false, 0);
  });
}

void AFLPExplorerFolder::m_oExplorerItemBase_OnExit(Page& page, bool cancelled) {
  frame_.procedure("m_oExplorerItemBase_OnExit", [&] {
    if (!equalsIgnoringCase(page.DefinitionName(), "AFLPParams")) return;
    const auto analysis = cast<AFLP>(page.BoundObject(), "AFLP");
    // OK and Cancel alike free the name.
    if (services_.Framework().ItemExists(newNames(), analysis->Name.get()))
      newNames().Remove(analysis->Name.get());
    if (cancelled) return;
    if (!services_.Framework().ItemExists(currentStudy().AFLPs, integerText(analysis->ID()))) {
      addToStudy(analysis);
    }
    OpenAFLP(analysis);
  });
}

void AFLPExplorerFolder::addToStudy(const std::shared_ptr<AFLP>& analysis) {
  currentStudy().AFLPs.Add(analysis);
  const auto item = newItem(analysis);
  m_colExplorerItems->Add(item, integerText(analysis->ID()));
  services_.Application().Explorer().Tree().AddItem(item, "AFLP", *this);
}

std::string AFLPExplorerFolder::GenerateNewAFLPName() {
  return frame_.procedure("GenerateNewAFLPName", [&] {
    // The query makes the store load the analyses; the names come from the study's own collection.
    services_.ObjectManager().Query("AFLPs", "", "", "", false, true);
    Names names;
    for (int walk = 0; walk < 2; ++walk) {
      for (const auto& analysis : currentStudy().AFLPs) names.Add(analysis->Name);
    }
    for (const auto& name : newNames()) names.Add(name);
    for (std::int32_t counter = 1;; ++counter) {
      const std::string name = "New AFLP " + integerText(counter);
      if (IsAFLPNameUnique(name, names)) return name;
      if (counter == std::numeric_limits<std::int32_t>::max()) {
        raise(ErrorNumber::Overflow, "AFLPExplorerFolder", "There is no free number for a new analysis.");
      }
    }
  });
}

bool AFLPExplorerFolder::IsAFLPNameUnique(const std::string& name, const Names& names) {
  return frame_.procedure("IsAFLPNameUnique", [&] {
    for (const auto& other : names) {
      if (equalsIgnoringCase(other, name)) return false;
    }
    return true;
  });
}

void AFLPExplorerFolder::OpenAFLP(const std::shared_ptr<AFLP>& analysis) {
  frame_.procedure("OpenAFLP", [&] {
    if (!globals_.IsStudyOpen()) return;
    auto opened = analysis;  // the check may put another object in its place
    const std::int32_t answer = services_.StudyService().CheckAnalysis(opened);
    if (answer == StudyService::kDoNotOpen) return;
    AFLP& object = required(opened, "AFLP");
    if (answer == StudyService::kRedo) object.IsPending = true;
    bool show = true;
    object.Open(show);
  });
}

void AFLPExplorerFolder::DeleteAFLP(const std::shared_ptr<AFLP>& analysis) {
  frame_.procedure("DeleteAFLP", [&] {
    const std::string key = integerText(required(analysis, "AFLP").ID());
    currentStudy().AFLPs.Remove(key);
    services_.Application().Explorer().Tree().RemoveItem(m_colExplorerItems->Item(key));
    m_colExplorerItems->Remove(key);
  });
}

void AFLPExplorerFolder::RenameAFLP(const std::shared_ptr<AFLP>& analysis) {
  frame_.procedure("RenameAFLP", [&] {
    const std::string key = integerText(required(analysis, "AFLP").ID());
    services_.Application().Explorer().Tree().BeginRename(m_colExplorerItems->Item(key));
  });
}

}  // namespace banddesk
