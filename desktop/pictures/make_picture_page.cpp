// From a page of the host to the picture that it shows.
#include "desktop/base/qt_text.h"
#include "desktop/pictures/picture_pages.h"

namespace banddesk::desktop {
namespace {

template <class Made>
PicturePage* make(const PictureSubject& subject, QWidget* parent) {
  return new Made(subject, parent);
}

struct PictureMaker {
  const char* name;
  PicturePage* (*make)(const PictureSubject& subject, QWidget* parent);
};

constexpr std::array<PictureMaker, 6> kMakers = {{
    {"PrincipalCoordinates", make<ScatterPage>},
    {"Dendrogram", make<DendrogramPage>},
    {"HeatMap", make<HeatMapPage>},
    {"Histograms", make<HistogramPage>},
    {"Plates", make<PlatePage>},
    {"PseudoGel", make<GelPage>},
}};

}  // namespace

QWidget* makePicturePage(host::Host& host, host::HostPage& page, PictureContext& context, QWidget* parent) {
  for (const PictureMaker& maker : kMakers) {
    if (page.DefinitionName() != maker.name) continue;
    PicturePage* made =
        maker.make({host, cast<AFLP>(page.bound(), "AFLP"), context, toQString(page.Caption())}, parent);
    made->start();
    return made;
  }
  return nullptr;
}

}  // namespace banddesk::desktop
