// The overlay of 50 results with 4 dyes of about 250 peaks each, 1600 x 900 on no screen, over an open table
// with its bins. Cases:
//   open       from the page of the host to the first picture
//   pan        a step of 12 pixels at the size that all is shown at, painted
//   zoom       a step in and one out again, both painted
//   bins       the bins read anew from the table
//   svg        the figure as SVG
// "median_ms" is that of single steps: what a user feels.
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <clocale>
#include <vector>

#include "desktop/views/result_views.h"
#include "host/simulation/simulator.h"
#include "host/store/memory_store.h"
#include "tests/support/temp_folder.h"

namespace {

using namespace banddesk;
using namespace banddesk::desktop;

std::vector<host::NewResult> simulatedResults() {
  host::simulation::Settings settings;
  settings.samples = 50;
  settings.dyes = 4;
  settings.peaksPerSample = 250;
  settings.ladderDye.reset();
  std::vector<host::NewResult> results;
  for (const auto& run : host::simulation::simulate(settings).runs) {
    host::NewResult& result = results.emplace_back();
    result.sampleName = run.name;
    for (std::size_t dye = 0; dye < run.dyes.size(); ++dye) {
      for (const auto& peak : run.dyes[dye]) {
        result.fragments.dyes[dye].sizes.push_back(peak.size);
        result.fragments.dyes[dye].heights.push_back(peak.height);
      }
    }
  }
  return results;
}

host::HostSettings settings() {
  host::HostSettings made;
  made.makeGrid = [](const std::string& name) { return std::make_shared<host::GridControl>(name); };
  return made;
}

// A study with its table open, and the page of an overlay of all its results; made once.
class Scene {
 public:
  static Scene& get() {
    static Scene scene;
    return scene;
  }

  std::unique_ptr<OverlayView> open() {
    auto view = std::unique_ptr<OverlayView>(dynamic_cast<OverlayView*>(makeViewPage(host, *page, nullptr)));
    view->resize(1600, 900);
    view->show();
    QApplication::processEvents();
    return view;
  }
  IAFLPResultsPage& table() {
    return dynamic_cast<IAFLPResultsPage&>(*host.pages().openPages().front()->control());
  }

  host::Host host{settings()};
  AFLP& analysis() { return *host.study().Study()->AFLPs.Item(1); }

  std::shared_ptr<host::HostPage> page;

 private:
  Scene() {
    host.loadComponent();
    host.openStudy(std::make_shared<host::MemoryStore>("Bench", simulatedResults()));
    host.runNewAnalysis();
    host.pages().end(host.pages().openPages().back(), true);
    const auto results = std::make_shared<Collection<std::shared_ptr<Result>>>();
    for (const auto& result : host.study().Study()->Results) results->Add(result);
    host.pages().OpenPage("OverlayGraphView", results, nullptr, true, true, true, true, true, true, nullptr,
                          false, 0);
    page = host.pages().openPages().back();
  }
};

class Medians {
 public:
  explicit Medians(benchmark::State& state) : state_(state) {}
  ~Medians() {
    std::ranges::sort(steps_);
    state_.counters["median_ms"] = steps_[steps_.size() / 2];
    state_.counters["slowest_ms"] = steps_.back();
  }
  template <class Step>
  void time(const Step& step) {
    const auto start = std::chrono::steady_clock::now();
    step();
    steps_.push_back(
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }

 private:
  benchmark::State& state_;
  std::vector<double> steps_;
};

void open(benchmark::State& state) {
  Scene& scene = Scene::get();
  Medians medians(state);
  for (auto _ : state) {
    std::unique_ptr<OverlayView> view;
    medians.time([&] { view = scene.open(); });
    state.PauseTiming();
    view.reset();
    state.ResumeTiming();
  }
}

void pan(benchmark::State& state) {
  const auto view = Scene::get().open();
  PlotView& plot = view->plot();
  const Span whole = view->axis().whole();
  // Zoomed in a little, so that there is somewhere to go.
  view->axis().show({whole.low, whole.low + 0.8 * whole.length()});
  plot.repaint();
  int steps = 0;
  Medians medians(state);
  for (auto _ : state) {
    const bool isForward = steps++ / 20 % 2 == 0;
    medians.time([&] {
      plot.panBy(isForward ? -12 : 12);
      plot.repaint();
    });
  }
}

void zoom(benchmark::State& state) {
  const auto view = Scene::get().open();
  PlotView& plot = view->plot();
  Medians medians(state);
  for (auto _ : state) {
    for (const double factor : {1.25, 0.8}) {
      medians.time([&] {
        plot.zoom(factor);
        plot.repaint();
      });
    }
  }
}

void bins(benchmark::State& state) {
  IAFLPResultsPage& table = Scene::get().table();
  std::size_t count = 0;
  for (auto _ : state) count = binBands(Scene::get().analysis(), table).size();
  state.counters["bins"] = static_cast<double>(count);
}

void svg(benchmark::State& state) {
  const auto view = Scene::get().open();
  const test::TempFolder folder;
  const QString file = QString::fromStdString(folder.file("figure.svg"));
  for (auto _ : state) view->exportTo(file);
  state.counters["bytes"] = static_cast<double>(QFileInfo(file).size());
}

BENCHMARK(open)->Unit(benchmark::kMillisecond);
BENCHMARK(pan)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(zoom)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(bins)->Unit(benchmark::kMillisecond);
BENCHMARK(svg)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
