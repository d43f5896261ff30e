#include "desktop/grid/table_copy.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <algorithm>
#include <memory>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

const QLatin1String kPlain("text/plain");
const QLatin1String kHtml("text/html");

// Makes the far larger table only for whoever asks for it.
class TableData final : public QMimeData {
 public:
  explicit TableData(QString text) : text_(std::move(text)) {}
  QStringList formats() const override { return {kHtml, kPlain}; }
  bool hasFormat(const QString& type) const override { return type == kHtml || type == kPlain; }

 protected:
  QVariant retrieveData(const QString& type, QMetaType) const override {
    if (type == kHtml) return htmlTable(text_);
    return type == kPlain ? QVariant(text_) : QVariant();
  }

 private:
  QString text_;
};

std::vector<host::Position> shownLines(const host::LineAxis& axis, const std::vector<host::Block>& blocks,
                                       Axis which) {
  std::vector<host::Position> lines;
  for (host::Block block : blocks) {
    for (host::Position line = block.first(which); line <= block.last(which); ++line) {
      if (!axis.visibility.isHidden(line)) lines.push_back(line);
    }
  }
  std::ranges::sort(lines);
  const auto doubled = std::ranges::unique(lines);
  lines.erase(doubled.begin(), doubled.end());
  return lines;
}

void appendCell(std::string& text, std::string_view cell) {
  const std::size_t start = text.size();
  text += cell;
  const auto breaks = [](char c) { return c == '\t' || c == '\r' || c == '\n'; };
  std::replace_if(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), breaks, ' ');
}

}  // namespace

QString htmlTable(const QString& text) {
  QString html = QStringLiteral("<table>");
  for (const QString& row : text.split(QStringLiteral("\r\n"))) {
    html += QLatin1String("<tr>");
    for (const QString& cell : row.split(QLatin1Char('\t'))) {
      html += QLatin1String("<td>") + cell.toHtmlEscaped() + QLatin1String("</td>");
    }
    html += QLatin1String("</tr>\n");
  }
  return html + QLatin1String("</table>");
}

std::string selectedText(const host::GridControl& grid) {
  std::vector<host::Block> blocks = grid.selection().blocks();
  if (blocks.empty()) {
    blocks.push_back({grid.currentRow(), grid.currentCol(), grid.currentRow(), grid.currentCol()});
  }
  const std::vector<host::Position> rows = shownLines(grid.rowAxis(), blocks, Axis::Rows);
  const std::vector<host::Position> cols = shownLines(grid.colAxis(), blocks, Axis::Columns);
  std::string text;
  host::NumberText buffer;
  for (const host::Position row : rows) {
    if (row != rows.front()) text += "\r\n";
    for (const host::Position col : cols) {
      if (col != cols.front()) text += '\t';
      const auto holds = [&](const host::Block& block) { return block.contains(row, col); };
      if (std::ranges::any_of(blocks, holds)) appendCell(text, grid.textAt(row, col, buffer));
    }
  }
  return text;
}

void QtClipboard::setText(std::string text) {
  QGuiApplication::clipboard()->setMimeData(std::make_unique<TableData>(toQString(text)).release());
}

}  // namespace banddesk::desktop
