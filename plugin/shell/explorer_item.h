// The tree node of one analysis. Its commands go to the folder; it answers the tree's questions about its
// label and checks a new name.
#pragma once

#include <memory>
#include <string>

#include "plugin/banddesk.h"
#include "plugin/base/failure.h"
#include "plugin/shell/live_object.h"
#include "plugin/shell/mglobals.h"

namespace banddesk {

class AFLPExplorerItem final : public IAFLPExplorerItem, private LiveObject {
 public:
  explicit AFLPExplorerItem(MGlobals& globals);

  void Init(const std::shared_ptr<AFLP>& analysis) override;
  void OpenAFLP() override;
  void DeleteAFLP() override;
  void RenameAFLP() override;
  void NewReport() override;
  std::string Name() override;

  std::shared_ptr<ExplorerItemBase> ExplorerItem() override { return IExplorerItemAccess_ExplorerItem(); }

 private:
  void Class_Initialize();
  std::shared_ptr<ExplorerItemBase> IExplorerItemAccess_ExplorerItem();

  void m_oExplorerItemBase_OnDisplayName(std::string& name);
  void m_oExplorerItemBase_OnBeforeRename(std::string& name);
  void m_oExplorerItemBase_OnAfterRename(const std::string& newName);

  MGlobals& globals_;
  HostServices& services_;
  FailureFrame frame_;
  std::shared_ptr<ExplorerItemBase> m_oExplorerItemBase;
  std::shared_ptr<AFLP> m_oAFLP;
  Connections connections_;
};

}  // namespace banddesk
