#include "plugin/views/result_views.h"

#include "plugin/base/numbers.h"
#include "plugin/base/text.h"

namespace banddesk {
namespace {

constexpr std::int32_t kColumns = 1;
constexpr std::int32_t kKeys = 0;

}  // namespace

void ResultViews::SingleResult() {
  page_.frame.procedure("SingleResult", [&] {
    const auto selected = table_.GetSelected(kColumns, kKeys);
    if (selected->Count() == 0) return;
    for (const std::int32_t key : *selected)
      OpenSingleResultWindow(integerText(-static_cast<std::int64_t>(key)));
  });
}

void ResultViews::OpenSingleResultWindow(const std::string& key) {
  page_.frame.procedure("OpenSingleResultWindow", [&] {
    if (!(leadingNumber(key) > 0)) return;  // a column that is no sample has no window
    const auto result = page_.analysis().Results.Item(key);
    Sample& sample = required(result->Sample, "Sample");
    const auto shown = std::make_shared<Collection<ObjectRef>>();
    shown->Add(result, "Result");
    shown->Add(sample.Data().Record(), "SampleData");
    if (shown->Count() == 0) return;
    const auto opened = page_.services.Application().PageManager().OpenPage(
        "SingleSample", shown, nullptr, true, true, true, true, true, true, nullptr, true, 0);
    Page& window = required(opened, "Page");
    window.SetCaption(window.Caption() + " - " + std::string(trimRight(sample.Name.get())));
    window.SetViewIndex(static_cast<std::int16_t>(page_.services.StudyService().DisplayViewIndex() + 1));
    window.Show();
  });
}

void ResultViews::EgramView(bool overlay) {
  page_.frame.procedure("EgramView", [&] {
    const auto selected = table_.GetSelected(kColumns, kKeys);
    if (selected->Count() == 0) return;
    const auto results = std::make_shared<Collection<std::shared_ptr<Result>>>();
    for (const std::int32_t key : *selected) {
      if (key >= 0) continue;  // no sample column
      const std::string text = integerText(-static_cast<std::int64_t>(key));
      results->Add(page_.analysis().Results.Item(text), text);
    }
    page_.services.Application().PageManager().OpenPage(overlay ? "OverlayGraphView" : "StackedView", results,
                                                        nullptr, true, true, true, true, true, true, nullptr,
                                                        false, 0);
  });
}

}  // namespace banddesk
