#include "desktop/pictures/picture_file.h"

#include <QSaveFile>
#include <cmath>

#include "desktop/base/qt_text.h"
#include "desktop/pictures/drawing_painter.h"
#include "host/pictures/svg.h"

namespace banddesk::desktop {
namespace {

Figure figureOf(const host::pictures::Drawing& drawing, const QFont& font) {
  const QSize panel(static_cast<int>(std::ceil(drawing.width)), static_cast<int>(std::ceil(drawing.height)));
  return {1, panel, toQString(drawing.title),
          [&drawing, font](QPainter& painter, const QRectF& place, int, double) {
            painter.save();
            painter.translate(place.topLeft());
            painter.scale(place.width() / drawing.width, place.height() / drawing.height);
            paintDrawing(painter, drawing, PlotLook::paper(font), {0, 0, drawing.width, drawing.height});
            painter.restore();
          }};
}

}  // namespace

QImage pictureImage(const host::pictures::Drawing& drawing, const QFont& font, const FigureSize& size) {
  return figureImage(figureOf(drawing, font), size);
}

void writePicture(const host::pictures::Drawing& drawing, const QFont& font, const QString& fileName,
                  const FigureSize& size) {
  if (!fileName.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive))
    return writeFigure(figureOf(drawing, font), fileName, size);
  QSaveFile file(fileName);
  const std::string text = svgOf(drawing, size.millimetres);
  if (!file.open(QIODevice::WriteOnly) || file.write(text.data(), static_cast<qint64>(text.size())) < 0 ||
      !file.commit())
    raiseUnwritable(file);
}

}  // namespace banddesk::desktop
