#include "desktop/views/figure_size_dialog.h"

#include <QComboBox>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QSettings>
#include <QSpinBox>
#include <algorithm>

#include "desktop/dialogs/dialog_parts.h"

namespace banddesk::desktop {
namespace {

constexpr double kFontSize = 11;     // units, of most text in pictures
constexpr double kUsualWidth = 170;  // mm, of a page's text
constexpr double kPointsPerMillimetre = 72 / 25.4;
constexpr int kLeastPoints = 5;  // what print keeps readable

QString widthKey() { return QStringLiteral("picture/width"); }
QString dpiKey() { return QStringLiteral("picture/dpi"); }
QString endingKey() { return QStringLiteral("picture/ending"); }

class FigureSizeDialog final : public QDialog {
 public:
  FigureSizeDialog(QWidget* parent, double width, double height)
      : QDialog(parent),
        units_(width),
        height_(height),
        format_(new QComboBox(this)),
        millimetres_(new QDoubleSpinBox(this)),
        dpi_(new QSpinBox(this)),
        told_(new QLabel(this)) {
    setWindowTitle(QStringLiteral("Export Picture"));
    const QSettings settings;
    for (const char* ending : {".png", ".svg", ".pdf"}) {
      const QString text = QLatin1String(ending);
      format_->addItem(FigureSize{text}.filter(), text);
    }
    format_->setCurrentIndex(
        std::max(format_->findData(settings.value(endingKey(), QStringLiteral(".png"))), 0));
    millimetres_->setRange(10, 2000);
    millimetres_->setDecimals(0);
    millimetres_->setSuffix(QStringLiteral(" mm"));
    millimetres_->setValue(settings.value(widthKey(), kUsualWidth).toDouble());
    dpi_->setRange(50, 1200);
    dpi_->setValue(settings.value(dpiKey(), 300).toInt());
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("&Format:"), format_);
    form->addRow(QStringLiteral("&Width:"), millimetres_);
    form->addRow(QStringLiteral("&Dots an inch:"), dpi_);
    form->addRow(told_);
    form->addRow(makeButtons(*this, {}, {}));
    connect(format_, &QComboBox::currentIndexChanged, this, [this] { tell(); });
    connect(millimetres_, &QDoubleSpinBox::valueChanged, this, [this] { tell(); });
    connect(dpi_, &QSpinBox::valueChanged, this, [this] { tell(); });
    tell();
  }

  FigureSize size() const {
    return {format_->currentData().toString(), millimetres_->value(), dpi_->value()};
  }

  void remember() const {
    QSettings settings;
    settings.setValue(endingKey(), size().ending);
    settings.setValue(widthKey(), size().millimetres);
    settings.setValue(dpiKey(), size().dpi);
  }

 private:
  void tell() {
    const FigureSize chosen = size();
    const bool hasDots = chosen.ending == QLatin1String(".png");
    dpi_->setEnabled(hasDots);
    const double points = kFontSize * chosen.millimetres / units_ * kPointsPerMillimetre;
    QString text = QStringLiteral("%1 x %2 mm, text of %3 points")
                       .arg(chosen.millimetres, 0, 'f', 0)
                       .arg(chosen.millimetres * height_ / units_, 0, 'f', 0)
                       .arg(points, 0, 'f', 1);
    if (points < kLeastPoints) text += QStringLiteral(": too small to read in print");
    told_->setText(text);
  }

  double units_, height_;
  QComboBox* format_;
  QDoubleSpinBox* millimetres_;
  QSpinBox* dpi_;
  QLabel* told_;
};

}  // namespace

std::optional<FigureSize> askFigureSize(QWidget* parent, double width, double height) {
  FigureSizeDialog dialog(parent, width, height);
  if (dialog.exec() != QDialog::Accepted) return {};
  dialog.remember();
  return dialog.size();
}

}  // namespace banddesk::desktop
