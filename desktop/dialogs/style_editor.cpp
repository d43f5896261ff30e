#include "desktop/dialogs/style_editor.h"

#include <QColorDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>
#include <array>

#include "desktop/base/qt_text.h"
#include "desktop/dialogs/dialog_parts.h"
#include "host/grid/looks.h"

namespace banddesk::desktop {
namespace {

constexpr int kMostPlaces = 15;

// As the grid completes it.
StyleAttributes completed(const GridStyle& style) {
  host::StyleSets sets;
  const host::Looks looks(sets);
  return looks.look(sets.intern(host::lookPart(style.attributes())), host::Layer::Body);
}

Qt::Alignment alignmentOf(const StyleAttributes& look) {
  constexpr std::array<Qt::AlignmentFlag, 3> kHorizontal = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter};
  constexpr std::array<Qt::AlignmentFlag, 3> kVertical = {Qt::AlignTop, Qt::AlignVCenter, Qt::AlignBottom};
  const auto pick = [](const auto& flags, std::int32_t value) {
    return flags[static_cast<std::size_t>(std::clamp(value, 0, 2))];
  };
  return pick(kHorizontal, look.horizontalAlignment.value_or(0)) |
         pick(kVertical, look.verticalAlignment.value_or(1));
}

}  // namespace

ColourButton::ColourButton(const QString& name, QWidget* parent) : QPushButton(parent) {
  setAccessibleName(name);
  setAutoDefault(false);
  connect(this, &QPushButton::clicked, this, [this] { choose(); });
}

void ColourButton::setColour(const QColor& colour) {
  colour_ = colour;
  QPixmap swatch(iconSize() * devicePixelRatioF());
  swatch.fill(colour.isValid() ? colour : palette().color(QPalette::Button));
  swatch.setDevicePixelRatio(devicePixelRatioF());
  setIcon(swatch);
  setText(colour.isValid() ? colour.name().toUpper() : QStringLiteral("Button"));
}

void ColourButton::choose() {
  const QColor colour = QColorDialog::getColor(colour_, this, accessibleName());
  if (!colour.isValid()) return;
  setColour(colour);
  Q_EMIT chosen(colour);
}

StyleSample::StyleSample(QWidget* parent) : QWidget(parent) { setAccessibleName(QStringLiteral("Sample")); }

QSize StyleSample::sizeHint() const { return sizeInText(*this, 24, 3); }

void StyleSample::show(const GridStyle& style) {
  look_ = completed(style);
  update();
}

void StyleSample::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  // Plain white and black stand for the colours of the palette, as in the grid.
  const Colour ground = look_.interior.value_or(GridBrush{}).color;
  const Colour ink = look_.textColor.value_or(ui::kWindowText);
  QColor fill = ground == ui::kWhite ? palette().color(QPalette::Base) : toQColor(ground);
  if (!fill.isValid()) fill = palette().color(QPalette::Button);
  painter.fillRect(rect(), fill);
  const bool isPlain = ground == ui::kWhite && ink == ui::kWindowText;
  painter.setPen(isPlain ? palette().color(QPalette::Text) : toQColor(ink));
  const int margin = fontMetrics().averageCharWidth();
  const int wrap = look_.wrapText.value_or(false) ? Qt::TextWordWrap : 0;
  const QString text = QStringLiteral("AFLP  ") + toQString(host::shownText(look_, "123.45678"));
  painter.drawText(rect().adjusted(margin, 2, -margin, -2), static_cast<int>(alignmentOf(look_)) | wrap,
                   text);
  if (!look_.draw3dFrame.value_or(false)) {
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    return;
  }
  QStyleOptionFrame frame;
  frame.initFrom(this);
  frame.lineWidth = 1;
  frame.state |= QStyle::State_Raised;
  style()->drawPrimitive(QStyle::PE_FrameWindow, &frame, &painter, this);
}

StyleEditor::StyleEditor(QWidget* parent)
    : QWidget(parent),
      interior_(new ColourButton(QStringLiteral("Interior colour"), this)),
      text_(new ColourButton(QStringLiteral("Text colour"), this)),
      horizontal_(makeCombo({QStringLiteral("Left"), QStringLiteral("Right"), QStringLiteral("Centre")},
                            &GridStyle::SetHorizontalAlignment)),
      vertical_(makeCombo({QStringLiteral("Top"), QStringLiteral("Centre"), QStringLiteral("Bottom")},
                          &GridStyle::SetVerticalAlignment)),
      format_(
          makeCombo({QStringLiteral("As it is"), QStringLiteral("Fixed decimals")}, &GridStyle::SetFormat)),
      places_(new QSpinBox(this)),
      frame_(makeCheck(QStringLiteral("3-D &frame"), &GridStyle::SetDraw3dFrame)),
      wrap_(makeCheck(QStringLiteral("&Wrap text"), &GridStyle::SetWrapText)),
      readOnly_(makeCheck(QStringLiteral("&Read-only"), &GridStyle::SetReadOnly)),
      sample_(new StyleSample(this)) {
  places_->setRange(0, kMostPlaces);
  connect(places_, &QSpinBox::valueChanged, this,
          [this](int places) { change([places](GridStyle& style) { style.SetPlaces(places); }); });
  connect(interior_, &ColourButton::chosen, this, [this](const QColor& colour) {
    change([&](GridStyle& style) { style.SetInterior(toColour(colour)); });
  });
  connect(text_, &ColourButton::chosen, this, [this](const QColor& colour) {
    change([&](GridStyle& style) { style.SetTextColor(toColour(colour)); });
  });
  makeForm();
  edit(nullptr);
}

void StyleEditor::makeForm() {
  auto* format = new QHBoxLayout;
  format->addWidget(format_, 1);
  format->addWidget(places_);
  places_->setAccessibleName(QStringLiteral("Decimals"));
  auto* form = new QFormLayout(this);
  form->setContentsMargins(0, 0, 0, 0);
  form->addRow(QStringLiteral("&Interior:"), interior_);
  form->addRow(QStringLiteral("&Text:"), text_);
  form->addRow(QStringLiteral("&Horizontal:"), horizontal_);
  form->addRow(QStringLiteral("&Vertical:"), vertical_);
  form->addRow(QStringLiteral("&Numbers:"), format);
  if (auto* label = qobject_cast<QLabel*>(form->labelForField(format))) label->setBuddy(format_);
  form->addRow(frame_);
  form->addRow(wrap_);
  form->addRow(readOnly_);
  form->addRow(QStringLiteral("Sample:"), sample_);
}

QComboBox* StyleEditor::makeCombo(const QStringList& texts, void (GridStyle::*put)(std::int32_t)) {
  auto* combo = new QComboBox(this);
  combo->addItems(texts);
  connect(combo, &QComboBox::currentIndexChanged, this,
          [this, put](int index) { change([&](GridStyle& style) { (style.*put)(index); }); });
  return combo;
}

QCheckBox* StyleEditor::makeCheck(const QString& text, void (GridStyle::*put)(bool)) {
  auto* box = new QCheckBox(text, this);
  connect(box, &QCheckBox::toggled, this,
          [this, put](bool isOn) { change([&](GridStyle& style) { (style.*put)(isOn); }); });
  return box;
}

void StyleEditor::edit(GridStyle* style) {
  style_ = style;
  setEnabled(style != nullptr);
  showStyle();
}

void StyleEditor::change(const std::function<void(GridStyle&)>& put) {
  if (isShowing_ || style_ == nullptr) return;
  put(*style_);
  showStyle();
}

void StyleEditor::showStyle() {
  const StyleAttributes look = completed(style_ != nullptr ? *style_ : GridStyle());
  isShowing_ = true;
  interior_->setColour(toQColor(look.interior->color));
  text_->setColour(toQColor(*look.textColor));
  horizontal_->setCurrentIndex(*look.horizontalAlignment);
  vertical_->setCurrentIndex(*look.verticalAlignment);
  format_->setCurrentIndex(*look.format);
  places_->setValue(*look.places);
  places_->setEnabled(*look.format == 1);
  frame_->setChecked(*look.draw3dFrame);
  wrap_->setChecked(*look.wrapText);
  readOnly_->setChecked(*look.readOnly);
  isShowing_ = false;
  sample_->show(style_ != nullptr ? *style_ : GridStyle());
}

}  // namespace banddesk::desktop
