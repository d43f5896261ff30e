#include "desktop/pages/params_page_widget.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QScrollArea>
#include <fmt/format.h>

#include "plugin/page_names.h"

namespace banddesk::desktop {
ParamsPageWidget::ParamsPageWidget(host::Host& host, host::HostPage& page, WidgetRegistry& registry,
                                   PageActions actions, QWidget* parent)
    : BoundPage(host, page, registry, std::move(actions), parent) {
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  auto* scroll = new QScrollArea(this);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setWidgetResizable(true);
  whole->addWidget(scroll);

  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  auto* centred = new QHBoxLayout;
  auto* lines = new QVBoxLayout;
  lines->addWidget(makeParameters(content));
  lines->addWidget(makeDyes(content));
  lines->addWidget(binder().make(control<ui::Image>(names::kParametersImage), content), 0, Qt::AlignHCenter);
  lines->addSpacing(fontMetrics().height() / 2);
  lines->addLayout(makeButtons(content));
  centred->addStretch();
  centred->addLayout(lines);
  centred->addStretch();
  column->addLayout(centred);
  column->addStretch();
  scroll->setWidget(content);

  finish({shown(names::kMaxBinWidth), shown(names::kYThreshold), shown(names::kExcludeFullBins),
          shown(names::kExcludeEmptySamples), shown(names::element(names::kDye, 0)),
          shown(names::element(names::kDye, 1)), shown(names::element(names::kDye, 2)),
          shown(names::element(names::kDye, 3)), ok_, cancel_, help_});
  setFocusProxy(shown(names::kMaxBinWidth));
}

QWidget* ParamsPageWidget::shown(const std::string& name) const {
  return registry().find(control<ui::Control>(name));
}

QWidget* ParamsPageWidget::makeParameters(QWidget* parent) {
  auto* frame = binder().make(control<ui::Frame>(names::kParametersFrame), parent);
  auto* grid = new QGridLayout(frame);
  grid->addWidget(binder().make(control<ui::Label>(names::kMaxBinWidthLabel), frame), 0, 0);
  grid->addLayout(numberField(names::kMaxBinWidth, names::kMaxBinWidthSpin, frame), 0, 1);
  grid->addWidget(binder().make(control<ui::Label>(names::kMaxBinWidthUnit), frame), 0, 2);
  grid->addWidget(binder().make(control<ui::Label>(names::kYThresholdLabel), frame), 1, 0);
  grid->addLayout(numberField(names::kYThreshold, names::kYThresholdSpin, frame), 1, 1);
  grid->addWidget(binder().make(control<ui::Label>(names::kYThresholdUnit), frame), 1, 2);
  grid->addWidget(binder().make(control<ui::CheckBox>(names::kExcludeFullBins), frame), 2, 0, 1, 4);
  grid->addWidget(binder().make(control<ui::CheckBox>(names::kExcludeEmptySamples), frame), 3, 0, 1, 4);
  grid->setColumnStretch(3, 1);
  return frame;
}

QWidget* ParamsPageWidget::makeDyes(QWidget* parent) {
  auto* frame = binder().make(control<ui::Frame>(names::kDyesFrame), parent);
  auto* line = new QHBoxLayout(frame);
  for (int dye = 0; dye < kDyeCount; ++dye) {
    auto* box = binder().make(control<ui::CheckBox>(names::element(names::kDye, dye)), frame);
    auto* swatch = binder().make(control<ui::PictureBox>(names::element(names::kDyeColour, dye)), frame);
    swatch->setAccessibleName(QStringLiteral("Colour of ") + box->accessibleName());
    line->addWidget(box);
    line->addWidget(swatch);
    if (dye + 1 < kDyeCount) line->addSpacing(fontMetrics().height());
  }
  line->addStretch();
  return frame;
}

// Only OK asks the box that the user comes from: the page can be given up, and its help be read, whatever
// stands in there.
QLayout* ParamsPageWidget::makeButtons(QWidget* parent) {
  auto* buttons = new QDialogButtonBox(parent);
  const auto add = [&](const char* text, QDialogButtonBox::ButtonRole role, Qt::FocusPolicy policy) {
    auto* button = buttons->addButton(QString::fromLatin1(text), role);
    button->setFocusPolicy(policy);
    button->setAccessibleName(button->text());
    return button;
  };
  ok_ = add("OK", QDialogButtonBox::AcceptRole, Qt::StrongFocus);
  cancel_ = add("Cancel", QDialogButtonBox::RejectRole, Qt::TabFocus);
  help_ = add("Help", QDialogButtonBox::HelpRole, Qt::TabFocus);
  ok_->setDefault(true);
  connect(ok_, &QPushButton::clicked, this, [this] { guarded(actions().accept); });
  connect(cancel_, &QPushButton::clicked, this, [this] { guarded(actions().cancel); });
  connect(help_, &QPushButton::clicked, this, [this] { showHelp(); });
  auto* line = new QHBoxLayout;
  line->addWidget(buttons);
  return line;
}

bool ParamsPageWidget::takesKey(int key) {
  if (key == Qt::Key_Escape) {
    cancel_->click();
    return true;
  }
  if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
  if (cancel_->hasFocus()) {
    cancel_->click();
  } else if (help_->hasFocus()) {
    help_->click();
  } else {
    ok_->click();
  }
  return true;
}

}  // namespace banddesk::desktop
