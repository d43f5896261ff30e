// The input is one text: what reads numbers, names and encodings out of texts must agree with itself and with
// plainer ways to the same.
#include "host/import/numbers.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "fuzz/bytes.h"
#include "host/import/dye.h"
#include "host/import/encodings.h"
#include "host/import/sample_assembler.h"
#include "plugin/base/error.h"
#include "plugin/base/numbers.h"
#include "plugin/base/text.h"

namespace {

using namespace banddesk;
using fuzz::require;

bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

template <class Action>
bool succeeds(Action action) {
  try {
    action();
    return true;
  } catch (const Error&) {
    return false;
  }
}

void readNumbers(std::string_view text) {
  const double leading = leadingNumber(text);
  require(!std::isnan(leading), "a leading number that is none");
  require(isNumeric(text) == succeeds([&] { strictNumber(text); }), "numeric and convertible differ");
  if (isNumeric(text)) {
    require(same(strictNumber(text), leading), "the strict and the leading number differ");
    // The C library's own reading, in the "C" locale. It knows hexadecimal numbers, and words, which ours
    // does not.
    require(same(std::strtod(std::string(trim(text)).c_str(), nullptr), leading), "strtod reads otherwise");
    std::string comma(text);
    if (const auto at = comma.find('.'); at != std::string::npos) comma[at] = ',';
    require(same(strictNumber(comma, ','), leading), "a decimal comma reads otherwise");
  }
  if (!std::isfinite(leading)) return;
  const std::string shown = generalText(leading);
  require(isNumeric(shown) && generalText(leadingNumber(shown)) == shown, "a shown number is not read back");
  require(isNumeric(twoDecimals(leading)), "two decimals are no number");
  const bool fits = std::nearbyint(leading) >= std::numeric_limits<std::int32_t>::min() &&
                    std::nearbyint(leading) <= std::numeric_limits<std::int32_t>::max();
  require(fits == succeeds([&] { roundToLong(leading); }), "an integer's range is another");
}

void readCells(std::string_view text) {
  host::import::NumberReader reader;
  double value = 0;
  if (reader.read(text, value) == host::import::NumberKind::Number) {
    require(std::isfinite(value) && value >= 0, "a cell gave no sound number");
    double again = -1;
    require(
        host::import::NumberReader().read(text, again) == host::import::NumberKind::Number && again == value,
        "a cell read twice differs");
    if (isNumeric(text))
      require(value == leadingNumber(text), "a cell and a box read the same text otherwise");
  }
  host::import::readDyeCell(text);
  const std::string name = host::import::runName(text);
  require(name.size() <= text.size(), "a run's name grew");
  require(host::import::markedName(name, 2).size() == name.size() + 4, "a marked name lost something");
}

void readTexts(std::string_view text) {
  using namespace host::import;
  std::size_t bytes = 0;
  const auto all = characters(text);
  for (const auto c : all) bytes += c.size();
  require(bytes == text.size() && all.size() == characterCount(text), "characters lost");
  const std::string folded = foldCase(text);
  require(foldCase(folded) == folded && equalsIgnoringCase(text, folded), "folding twice differs");
  require(!isUtf8(text) || isUtf8(folded), "folding broke the encoding");
  require(trim(trim(text)) == trim(text), "trimming twice differs");
  require(isUtf8(utf8OfWindows1252(text)), "Windows-1252 gives no UTF-8");
  require(isUtf8(utf8OfUtf16(text, ByteOrder::Little)), "UTF-16 gives no UTF-8");
  require(isUtf8(utf8OfUtf16(text, ByteOrder::Big)), "UTF-16 gives no UTF-8");
  require(!isAscii(text) || isUtf8(text), "ASCII is no UTF-8");
  require(replaceAll(text, " ", "_").size() == text.size(), "a replacement changed the length");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  readNumbers(text);
  readCells(text);
  readTexts(text);
  return 0;
}
