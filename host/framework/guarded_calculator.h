// A bin calculator under the seam at which failures are injected; the work is done by the one it wraps. It
// remembers what the page gave it, so that the host can read the finished bins for itself. It may take over
// the work of another one that had the fragments of the same results.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "host/study/fault_injector.h"
#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

class GuardedCalculator final : public BinCalculator {
 public:
  // Told of each calculation, before it runs, with the width (nt) and threshold (RFU) that it is given.
  // Before it calculates; whether what it works on has changed otherwise than by fragments, width and threshold.
  using OnCalculate = std::function<bool(double width, double threshold)>;

  GuardedCalculator(FaultInjector& faults, std::shared_ptr<BinCalculator> calculator, OnCalculate onCalculate)
      : faults_(faults), calculator_(std::move(calculator)), onCalculate_(std::move(onCalculate)) {}

  // Goes on with the other's calculator: fragments are in it already, and what it has calculated last need
  // not be calculated again.
  GuardedCalculator(const GuardedCalculator& former, OnCalculate onCalculate)
      : faults_(former.faults_),
        calculator_(former.calculator_),
        onCalculate_(std::move(onCalculate)),
        hasFragments_(true),
        calculated_(former.calculated_) {}

  // The calculator itself, out of reach of injected failures.
  const BinCalculator& own() const { return *calculator_; }
  const std::shared_ptr<BinCalculator>& shared() const { return calculator_; }
  double maxBinWidth() const { return maxBinWidth_; }  // nt
  double yThreshold() const { return yThreshold_; }    // RFU
  std::int16_t dye() const { return dye_; }            // of the fragments added; -1 before any

  void SetMaxBinWidth(double nt) override {
    at("MaxBinWidth").SetMaxBinWidth(nt);
    maxBinWidth_ = nt;
  }
  void SetYThreshold(double rfu) override {
    at("YThreshold").SetYThreshold(rfu);
    yThreshold_ = rfu;
  }
  void AddFragments(std::int32_t resultIndex, std::int32_t zero, const FragmentTable& fragments,
                    std::int16_t dye, std::int32_t one, std::int32_t alsoOne) override {
    BinCalculator& calculator = at("AddFragments");
    if (!hasFragments_) calculator.AddFragments(resultIndex, zero, fragments, dye, one, alsoOne);
    dye_ = dye;
  }
  void Calculate() override {
    BinCalculator& calculator = at("Calculate");
    if (onCalculate_ && onCalculate_(maxBinWidth_, yThreshold_)) calculated_.reset();
    const std::pair wanted(maxBinWidth_, yThreshold_);
    if (calculated_ == wanted && hasFragments_) return;
    calculated_.reset();
    calculator.Calculate();
    calculated_ = wanted;
  }
  std::int32_t BinCount() const override { return at("BinCount").BinCount(); }
  std::int32_t SampleCount(std::int32_t bin) const override { return at("SampleCount").SampleCount(bin); }
  std::int32_t FragmentCount(std::int32_t bin) const override {
    return at("FragmentCount").FragmentCount(bin);
  }
  double XMin(std::int32_t bin) const override { return at("XMin").XMin(bin); }
  double XMax(std::int32_t bin) const override { return at("XMax").XMax(bin); }
  double XMean(std::int32_t bin) const override { return at("XMean").XMean(bin); }
  double XVariance(std::int32_t bin) const override { return at("XVariance").XVariance(bin); }
  double YMean(std::int32_t bin) const override { return at("YMean").YMean(bin); }
  void GetResultData(std::int32_t bin, std::vector<std::int32_t>& counts,
                     std::vector<double>& heights) const override {
    at("GetResultData").GetResultData(bin, counts, heights);
  }

 private:
  BinCalculator& at(const char* operation) const {
    faults_.check("BinCalculator", operation);
    return *calculator_;
  }

  FaultInjector& faults_;
  std::shared_ptr<BinCalculator> calculator_;
  OnCalculate onCalculate_;
  double maxBinWidth_ = 0;
  double yThreshold_ = 0;
  std::int16_t dye_ = -1;
  bool hasFragments_ = false;                            // from a former page
  std::optional<std::pair<double, double>> calculated_;  // width and threshold of the bins that are there
};

}  // namespace banddesk::host
