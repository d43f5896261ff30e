#include "plugin/shell/explorer_item.h"

#include "plugin/base/text.h"
#include "plugin/page_names.h"
#include "plugin/shell/explorer_folder.h"

namespace banddesk {

AFLPExplorerItem::AFLPExplorerItem(MGlobals& globals)
    : globals_(globals), services_(globals.services()), frame_(services_.Framework(), "AFLPExplorerItem") {
  Class_Initialize();
}

void AFLPExplorerItem::Class_Initialize() {
  frame_.procedure("Class_Initialize", [&] {
    m_oExplorerItemBase = services_.NewExplorerItemBase();
    ExplorerItemBase& base = required(m_oExplorerItemBase, "ExplorerItemBase");
    connections_.push_back(
        base.OnDisplayName.connect([this](auto& name) { m_oExplorerItemBase_OnDisplayName(name); }));
    connections_.push_back(
        base.OnBeforeRename.connect([this](auto& name) { m_oExplorerItemBase_OnBeforeRename(name); }));
    connections_.push_back(
        base.OnAfterRename.connect([this](const auto& name) { m_oExplorerItemBase_OnAfterRename(name); }));
  });
}

std::shared_ptr<ExplorerItemBase> AFLPExplorerItem::IExplorerItemAccess_ExplorerItem() {
  return frame_.procedure("IExplorerItemAccess_ExplorerItem (Get)", [&] { return m_oExplorerItemBase; });
}

void AFLPExplorerItem::Init(const std::shared_ptr<AFLP>& analysis) {
  frame_.procedure("Init", [&] {
    m_oAFLP = analysis;
    m_oExplorerItemBase->SetText(Name());
  });
}

void AFLPExplorerItem::OpenAFLP() {
  frame_.procedure("OpenAFLP", [&] {
    if (!globals_.IsStudyOpen()) return;
    if (auto* folder = globals_.AFLPExplorerFolder()) folder->OpenAFLP(m_oAFLP);
  });
}

void AFLPExplorerItem::DeleteAFLP() {
  frame_.procedure("DeleteAFLP", [&] {
    if (auto* folder = globals_.AFLPExplorerFolder()) folder->DeleteAFLP(m_oAFLP);
  });
}

void AFLPExplorerItem::RenameAFLP() {
  frame_.procedure("RenameAFLP", [&] {
    auto* folder = globals_.AFLPExplorerFolder();
    if (folder == nullptr) return;
    folder->RenameAFLP(m_oAFLP);
    m_oExplorerItemBase->SetText(Name());
  });
}

void AFLPExplorerItem::NewReport() {
  frame_.procedure("NewReport", [&] {
    const auto& instances = services_.Application().ServiceRegistry().Instances;
    const auto reporting = cast<ReportingService>(instances.Item("ReportingService"), "ReportingService");
    reporting->NewReport(required(m_oAFLP, "AFLP").Name, m_oAFLP, kReportContextType);
  });
}

std::string AFLPExplorerItem::Name() {
  return frame_.procedure("Name (Get)", [&]() -> std::string { return required(m_oAFLP, "AFLP").Name; });
}

void AFLPExplorerItem::m_oExplorerItemBase_OnDisplayName(std::string& name) {
  frame_.procedure("m_oExplorerItemBase_OnDisplayName", [&] { name = required(m_oAFLP, "AFLP").Name; });
}

// The editor starts from the stored name.
void AFLPExplorerItem::m_oExplorerItemBase_OnBeforeRename(std::string& name) {
  frame_.procedure("m_oExplorerItemBase_OnBeforeRename", [&] { name = required(m_oAFLP, "AFLP").Name; });
}

void AFLPExplorerItem::m_oExplorerItemBase_OnAfterRename(const std::string& newName) {
  frame_.procedure("m_oExplorerItemBase_OnAfterRename", [&] {
    AFLP& analysis = required(m_oAFLP, "AFLP");
    if (characterCount(newName) > kLongestAnalysisName) {
      services_.Platform().MsgBox("Maximum length is 50 characters", ui::kInformation, "Rename");
      m_oExplorerItemBase->SetText(analysis.Name);
      return;
    }
    analysis.Name = newName;
  });
}

}  // namespace banddesk
