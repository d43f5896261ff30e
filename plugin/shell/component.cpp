// The component's entry points: which classes it has, how they are made, and whether it may go.
#include <array>
#include <functional>
#include <string_view>

#include "plugin/banddesk.h"
#include "plugin/params/params_page.h"
#include "plugin/results/results_page.h"
#include "plugin/shell/aflp_service.h"
#include "plugin/shell/explorer_folder.h"
#include "plugin/shell/explorer_item.h"
#include "plugin/shell/live_object.h"
#include "plugin/shell/mglobals.h"

namespace banddesk {

std::atomic<std::int32_t>& LiveObject::count() {
  static std::atomic<std::int32_t> living{0};
  return living;
}

namespace {

using Maker = ObjectRef (*)(MGlobals&);

template <class Class>
ObjectRef make(MGlobals& globals) {
  return std::make_shared<Class>(globals);
}

struct PublicClass {
  std::string_view name;
  Maker maker;  // null for the record classes, which only their own operations make
};

constexpr std::array<PublicClass, 8> kClasses{{
    {"AFLPExplorerFolder", &make<AFLPExplorerFolder>},
    {"AFLPExplorerItem", &make<AFLPExplorerItem>},
    {"AFLPResult", nullptr},
    {"AFLPService", &make<AFLPService>},
    {"AFLPStudyResult", nullptr},
    {"Bin", nullptr},
    {"AFLPParamsPage", &make<AFLPParamsPage>},
    {"AFLPResultsPage", &make<AFLPResultsPage>},
}};

// The globals of a host are made with its first class object and live as long as the host.
MGlobals& globalsOf(HostServices& services) {
  ObjectRef& state = services.ComponentState();
  if (!state) state = std::make_shared<MGlobals>(services);
  return *cast<MGlobals>(state, "MGlobals");
}

class Factory final : public ClassObject, private LiveObject {
 public:
  Factory(MGlobals& globals, Maker maker) : globals_(globals), maker_(maker) {}
  ObjectRef CreateInstance() override { return maker_(globals_); }

 private:
  MGlobals& globals_;
  Maker maker_;
};

}  // namespace
}  // namespace banddesk

std::int32_t DllRegisterServer(banddesk::Registrar& registrar) {
  for (const auto& each : banddesk::kClasses) registrar.Register(banddesk::kTypeLibrary, each.name);
  return banddesk::kEntryOk;
}

std::int32_t DllUnregisterServer(banddesk::Registrar& registrar) {
  for (const auto& each : banddesk::kClasses) registrar.Unregister(banddesk::kTypeLibrary, each.name);
  return banddesk::kEntryOk;
}

std::int32_t DllGetClassObject(const char* className, std::uint32_t contractStamp,
                               banddesk::HostServices& services,
                               std::unique_ptr<banddesk::ClassObject>& classObject) {
  if (contractStamp != banddesk::kContractStamp) return banddesk::kEntryContractDiffers;
  for (const auto& each : banddesk::kClasses) {
    if (each.maker == nullptr || className == nullptr || each.name != className) continue;
    classObject = std::make_unique<banddesk::Factory>(banddesk::globalsOf(services), each.maker);
    return banddesk::kEntryOk;
  }
  return banddesk::kEntryClassUnknown;
}

std::int32_t DllCanUnloadNow() {
  return banddesk::LiveObject::count() == 0 ? banddesk::kEntryOk : banddesk::kEntryFalse;
}
