#include "plugin/table/sample_labels.h"

#include <vector>

#include "plugin/base/numbers.h"
#include "plugin/base/text.h"

namespace banddesk {
namespace {

constexpr std::size_t kSuffixLength = 15;
constexpr std::size_t kTimestampLength = 11;

std::string joined(const std::vector<std::string_view>& parts, std::size_t from, std::size_t to) {
  std::string text;
  for (std::size_t i = from; i < to; ++i) text.append(parts[i]);
  return text;
}

}  // namespace

void SampleLabels::SetSampleAbbreviations(bool withName, bool numbered) {
  page_.frame.procedure("SetSampleAbbreviations", [&] {
    std::int32_t number = 0;
    for (const auto& column : page_.analysis().SampleGrid->Columns) {
      ++number;
      std::string header = numbered ? integerText(number) : std::string();
      if (withName) {
        if (!header.empty()) header += "-";
        header += ParseText(column->ToolTip.get());
      }
      column->Header = header;
      table_.SetCellText(column->Key.get(), 0, header);
    }
  });
}

std::string SampleLabels::ParseText(std::string_view text) const {
  return page_.frame.procedure("ParseText (Get)", [&]() -> std::string {
    std::string whole(trim(text));
    const std::int32_t timestamp = controls_.chkShowTimestamp.Value;
    const std::int32_t well = controls_.chkShowWellID.Value;
    if ((timestamp & well) != 0) return whole;
    const auto all = characters(whole);
    if (all.size() < kSuffixLength) return whole;
    const std::size_t start = all.size() - kSuffixLength;
    if (!isSuffix({all.begin() + static_cast<std::ptrdiff_t>(start), all.end()})) return whole;
    const std::size_t kept = well == ui::kChecked ? all.size() - kTimestampLength : start;
    std::string label = joined(all, 0, kept);
    if (timestamp == ui::kChecked) label += joined(all, all.size() - kTimestampLength, all.size());
    return label;
  });
}

// ".", any, two digits, "_", eight digits, two of any.
bool SampleLabels::isSuffix(const std::vector<std::string_view>& suffix) const {
  for (std::size_t i = 0; i < kSuffixLength; ++i) {
    const std::string_view c = suffix[i];
    const bool matches = i == 0                         ? c == "."
                         : i == 4                       ? c == "_"
                         : i == 1 || i == 13 || i == 14 ? IsAlphaNumeric(c)
                                                        : isNumeric(c);
    if (!matches) return false;
  }
  return true;
}

bool SampleLabels::IsAlphaNumeric(std::string_view text) const {
  return page_.frame.procedure("IsAlphaNumeric (Get)", [&] {
    if (text.empty())
      raise(ErrorNumber::InvalidArgument, "Text", "There is no first character in an empty text.");
    const int code = static_cast<unsigned char>(text.front());
    // cppcheck-suppress incorrectLogicOperator ; always true, and labels have been cut by it ever since
    return code < 48 || code > 57 || code < 65 || code > 90;
  });
}

std::string SampleLabels::VerticalText(std::string_view text) const {
  return page_.frame.procedure("VerticalText (Get)", [&] {
    std::string vertical;
    for (const std::string_view c : characters(text)) {
      if (c == "_") break;
      vertical.append(c).push_back('\r');
    }
    if (!vertical.empty()) vertical.pop_back();
    return vertical;
  });
}

// While samples run along columns the labels hold no name and nothing changes.
void SampleLabels::ShowSuffix() {
  page_.frame.procedure("ShowSuffix", [&] {
    if (table_.m_bTransposed) {
      SetSampleAbbreviations(table_.m_bTransposed, true);
      sizing_.ResizeCols();
    }
    pending_.clear(kPendingShowSuffix);
  });
}

}  // namespace banddesk
