// The node under which the analyses of the open study stand in the explorer tree: the one place where
// analyses are made, opened, deleted and renamed. It enters itself in MGlobals, so that service and items
// find it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "plugin/banddesk.h"
#include "plugin/base/failure.h"
#include "plugin/shell/live_object.h"
#include "plugin/shell/mglobals.h"

namespace banddesk {

class AFLPExplorerFolder final : public IAFLPExplorerFolder, private LiveObject {
 public:
  explicit AFLPExplorerFolder(MGlobals& globals);
  ~AFLPExplorerFolder() override;

  void NewAFLP() override;
  void OpenAFLP(const std::shared_ptr<AFLP>& analysis) override;
  void DeleteAFLP(const std::shared_ptr<AFLP>& analysis) override;
  void RenameAFLP(const std::shared_ptr<AFLP>& analysis) override;
  PersistentCollection<AFLP>& AFLPs() override;
  Collection<std::shared_ptr<IAFLPExplorerItem>>& AFLPExplorerItems() override;

  std::shared_ptr<ExplorerItemBase> ExplorerItem() override { return IExplorerItemAccess_ExplorerItem(); }

 private:
  using Names = Collection<std::string>;

  void Class_Initialize();
  std::shared_ptr<ExplorerItemBase> IExplorerItemAccess_ExplorerItem();
  void m_oExplorerItemBase_Initialize(Collection<std::shared_ptr<IExplorerItemAccess>>& children);
  void m_oExplorerItemBase_OnExit(Page& page, bool cancelled);
  void addToStudy(const std::shared_ptr<AFLP>& analysis);

  std::string GenerateNewAFLPName();
  bool IsAFLPNameUnique(const std::string& name, const Names& names);

  Study& currentStudy();
  std::shared_ptr<IAFLPExplorerItem> newItem(const std::shared_ptr<AFLP>& analysis);
  Names& newNames();

  MGlobals& globals_;
  HostServices& services_;
  FailureFrame frame_;
  std::shared_ptr<ExplorerItemBase> m_oExplorerItemBase;
  std::unique_ptr<Collection<std::shared_ptr<IAFLPExplorerItem>>> m_colExplorerItems;
  std::unique_ptr<Names> m_colNewAFLPNames;  // of analyses whose parameters page is open; made on first use
  Connections connections_;
};

}  // namespace banddesk
