// From a page of the host to the widget that shows it.
#include "desktop/base/qt_text.h"
#include "desktop/views/result_views.h"
#include "host/study/study.h"
#include "plugin/base/text.h"

namespace banddesk::desktop {
namespace {

using Results = Collection<std::shared_ptr<Result>>;

// The record holds the fragments as they are, whatever the sample lets go of.
TraceSample sampleOf(const Collection<ObjectRef>& shown) {
  const auto result = cast<Result>(shown.Item("Result"), "Result");
  if (!shown.holdsKey("SampleData")) return traceSample(*result);
  const auto record = std::dynamic_pointer_cast<host::SampleRecord>(shown.Item("SampleData"));
  if (!record) return traceSample(*result);
  TraceSample sample{std::string(trimRight(record->name)), result->ResultID, {}};
  for (std::size_t dye = 0; dye < sample.dyes.size(); ++dye) {
    sample.dyes[dye] = dyeTrace(record->fragments->OfDye(static_cast<std::int16_t>(dye)));
  }
  return sample;
}

std::shared_ptr<const TraceSet> tracesOf(host::Host& host, const host::HostPage& page, bool isSingle) {
  auto traces = std::make_shared<TraceSet>();
  if (const auto study = host.study().Study()) traces->dyes = dyeLooks(*study);
  if (isSingle) {
    const auto shown = cast<Collection<ObjectRef>>(page.bound(), "Collection");
    if (shown->Count() > 0) traces->samples.push_back(sampleOf(*shown));
    return traces;
  }
  const auto results = cast<Results>(page.bound(), "Collection");
  for (const auto& result : *results) traces->samples.push_back(traceSample(required(result, "Result")));
  return traces;
}

QWidget* quietText(const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setAlignment(Qt::AlignCenter);
  label->setWordWrap(true);
  label->setTextFormat(Qt::PlainText);
  label->setForegroundRole(QPalette::PlaceholderText);
  return label;
}

}  // namespace

QWidget* makeViewPage(host::Host& host, host::HostPage& page, QWidget* parent, const ViewActions& actions) {
  const std::string& name = page.DefinitionName();
  const bool isSingle = name == "SingleSample";
  if (!isSingle && name != "OverlayGraphView" && name != "StackedView") return nullptr;
  try {
    ViewContent content{tracesOf(host, page, isSingle), toQString(page.Caption()), page.viewIndex()};
    if (content.traces->samples.empty()) {
      return quietText(QStringLiteral("There is no sample to show. Select samples in the table first."),
                       parent);
    }
    ResultViewPage* view = nullptr;
    if (isSingle)
      view = new SingleSampleView(host, std::move(content), actions, parent);
    else if (name == "StackedView")
      view = new StackedView(host, std::move(content), actions, parent);
    else
      view = new OverlayView(host, std::move(content), actions, parent);
    view->link().look();
    return view;
  } catch (...) {
    const Error error = currentError();
    if (actions.showError) actions.showError(error);
    return quietText(toQString(error.description()), parent);
  }
}

}  // namespace banddesk::desktop
