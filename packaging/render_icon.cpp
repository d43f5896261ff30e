// Renders an icon in one size: render_icon IN.svg OUT.png PIXELS. Used while building.
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  QSvgRenderer icon(QString::fromLocal8Bit(argv[1]));
  const int pixels = std::atoi(argv[3]);
  if (!icon.isValid() || pixels <= 0) return 1;
  QImage image(pixels, pixels, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  icon.render(&painter);
  painter.end();
  return image.save(QString::fromLocal8Bit(argv[2])) ? 0 : 1;
}
