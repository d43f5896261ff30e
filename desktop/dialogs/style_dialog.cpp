#include "desktop/dialogs/style_dialog.h"

#include <QListWidget>
#include <QVBoxLayout>

#include "desktop/base/help_topic.h"
#include "desktop/base/qt_text.h"
#include "desktop/dialogs/dialog_parts.h"
#include "desktop/dialogs/style_editor.h"
#include "host/grid/looks.h"

namespace banddesk::desktop {
namespace {

constexpr double kChangeMode = 4;

class StyleDialog final : public QDialog {
 public:
  StyleDialog(const host::Looks& styles, QWidget* parent)
      : QDialog(parent), list_(new QListWidget(this)), editor_(new StyleEditor(this)) {
    setWindowTitle(QStringLiteral("Format Cells"));
    setHelpTopic(*this, QStringLiteral("results"));
    list_->setAccessibleName(QStringLiteral("Styles"));
    for (std::int32_t id = 1; id <= styles.registeredCount(); ++id) {
      list_->addItem(toQString(styles.registeredName(id)));
      drafts_.push_back(styles.registeredStyle(id));
    }
    auto* middle = new QHBoxLayout;
    middle->addWidget(list_, 1);
    middle->addWidget(editor_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(middle, 1);
    layout->addWidget(makeButtons(*this, {}, {}));
    resize(sizeInText(*this, 90, 26));
    connect(list_, &QListWidget::currentRowChanged, this,
            [this](int row) { editor_->edit(row < 0 ? nullptr : &drafts_[static_cast<std::size_t>(row)]); });
    list_->setCurrentRow(0);
  }

  const std::vector<GridStyle>& drafts() const { return drafts_; }

 private:
  std::vector<GridStyle> drafts_;  // in the order of the identifiers
  QListWidget* list_;
  StyleEditor* editor_;
};

}  // namespace

void StyleDialogFront::run(host::Looks& styles) {
  StyleDialog dialog(styles, parent_ ? parent_() : nullptr);
  if (dialog.exec() != QDialog::Accepted) return;
  std::int32_t id = 0;
  for (const GridStyle& draft : dialog.drafts()) {
    ++id;
    if (draft.attributes() == styles.registeredStyle(id).attributes()) continue;
    styles.ChangeRegisteredStyle(id, draft, 0, 0, kChangeMode);
  }
}

}  // namespace banddesk::desktop
