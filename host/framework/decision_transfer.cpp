#include "host/framework/decision_transfer.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <optional>

#include "host/study/fragments.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

struct BinExtent {
  double least, most;  // nt
  std::string key;
};

// In ascending size; the bins of one run do not overlap.
using Ranges = std::vector<BinExtent>;

Ranges rangesOf(std::int16_t dye, const RunParameters& run, const AFLP& analysis,
                const CalculatorMaker& makeCalculator) {
  const auto calculator = makeCalculator(analysis);
  std::int32_t index = 0;
  for (const auto& result : analysis.Results)
    calculator->AddFragments(index++, 0, result->Sample->Data().Fragments(), dye, 1, 1);
  calculator->SetMaxBinWidth(run.maxBinWidth);
  calculator->SetYThreshold(run.yThreshold);
  calculator->Calculate();
  Ranges ranges;
  for (std::int32_t bin = 0; bin < calculator->BinCount(); ++bin)
    ranges.push_back({calculator->XMin(bin), calculator->XMax(bin),
                      fmt::format("D{}-{}", dye + 1, generalText(calculator->XMean(bin)))});
  return ranges;
}

std::optional<std::size_t> rangeAt(const Ranges& ranges, double size) {
  const auto behind = std::ranges::upper_bound(ranges, size, {}, &BinExtent::least);
  if (behind == ranges.begin() || std::prev(behind)->most < size) return std::nullopt;
  return static_cast<std::size_t>(std::prev(behind) - ranges.begin());
}

// How many fragments of each decided old bin each new bin holds.
using Votes = std::map<std::size_t, std::map<std::size_t, std::size_t>>;

Votes countVotes(std::int16_t dye, const Ranges& old, const RunParameters& before, const Ranges& fresh,
                 const RunParameters& now, const AFLP& analysis) {
  Votes votes;
  for (const auto& result : analysis.Results) {
    const DyeFragments fragments = result->Sample->Data().Fragments().OfDye(dye);
    for (std::size_t i = 0; i < fragments.sizes.size(); ++i) {
      if (fragments.heights[i] < std::max(before.yThreshold, now.yThreshold)) continue;
      const auto from = rangeAt(old, fragments.sizes[i]);
      const auto to = rangeAt(fresh, fragments.sizes[i]);
      if (from && to) ++votes[*from][*to];
    }
  }
  return votes;
}

class Transfer {
 public:
  explicit Transfer(const std::vector<BinSnapshot>& decisions) : decisions_(decisions) {}

  bool concerns(std::int16_t dye) const {
    const std::string start = fmt::format("D{}-", dye + 1);
    return std::ranges::any_of(decisions_,
                               [&](const BinSnapshot& each) { return each.key.starts_with(start); });
  }
  void place(const Ranges& old, const Ranges& fresh, const Votes& votes) {
    for (const BinSnapshot& decision : decisions_) {
      const auto bin = std::ranges::find(old, decision.key, &BinExtent::key);
      const auto found = votes.find(static_cast<std::size_t>(bin - old.begin()));
      if (found == votes.end()) continue;
      const auto most =
          std::ranges::max_element(found->second, {}, [](const auto& each) { return each.second; });
      placed_[decision.key] = fresh[most->first].key;
    }
  }
  DecisionTransfer done() const {
    DecisionTransfer transfer;
    for (const BinSnapshot& decision : decisions_) {
      const auto place = placed_.find(decision.key);
      if (place == placed_.end()) {
        transfer.homeless.push_back(decision.key);
      } else if (std::ranges::find(transfer.decisions, place->second, &BinSnapshot::key) ==
                 transfer.decisions.end()) {
        transfer.decisions.push_back({place->second, decision.manuallyExcluded, decision.manuallyIncluded});
      }
    }
    return transfer;
  }

 private:
  const std::vector<BinSnapshot>& decisions_;
  std::map<std::string, std::string> placed_;  // the new bin's key by the old one's
};

}  // namespace

DecisionTransfer transferDecisions(const std::vector<BinSnapshot>& decisions, const RunParameters& before,
                                   const RunParameters& now, const AFLP& analysis,
                                   const CalculatorMaker& makeCalculator) {
  Transfer transfer(decisions);
  for (std::int16_t dye = 0; dye < static_cast<std::int16_t>(kDyeCount); ++dye) {
    if (!transfer.concerns(dye)) continue;
    const Ranges old = rangesOf(dye, before, analysis, makeCalculator);
    const Ranges fresh = rangesOf(dye, now, analysis, makeCalculator);
    transfer.place(old, fresh, countVotes(dye, old, before, fresh, now, analysis));
  }
  return transfer.done();
}

}  // namespace banddesk::host
