// The host's bin calculator: the fragments of one dye in, with heights and sizes as its settings make them,
// and bins out that it finds (host/binning/partition.h) or is given. The bins depend on the fragments alone,
// not on the order in which they or their samples came.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/binning/calculator_settings.h"
#include "host/binning/fragment_sort.h"
#include "host/binning/lane_alignment.h"
#include "host/binning/partition.h"
#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

class PartitionBinCalculator final : public BinCalculator {
 public:
  void SetMaxBinWidth(double nt) override { maxBinWidth_ = nt; }
  void SetYThreshold(double rfu) override { yThreshold_ = rfu; }
  /// The size range is that of the fragments added from now on; all else counts for the next Calculate.
  void setSettings(CalculatorSettings settings) { settings_ = std::move(settings); }
  const CalculatorSettings& settings() const { return settings_; }
  /// By result: those whose heights no normalisation looks at or changes. Whether they are others than before.
  bool setUnmeasured(std::vector<bool> results) { return std::exchange(unmeasured_, results) != results; }
  /// A fragment whose size or height is not a finite number is left out.
  void AddFragments(std::int32_t resultIndex, std::int32_t, const FragmentTable& fragments, std::int16_t dye,
                    std::int32_t, std::int32_t) override;
  void Calculate() override;

  std::int32_t BinCount() const override { return static_cast<std::int32_t>(bins_.size()); }
  std::int32_t SampleCount(std::int32_t bin) const override { return at(bin).sampleCount; }
  std::int32_t FragmentCount(std::int32_t bin) const override { return at(bin).fragmentCount; }
  double XMin(std::int32_t bin) const override { return at(bin).xMin; }
  double XMax(std::int32_t bin) const override { return at(bin).xMax; }
  double XMean(std::int32_t bin) const override { return at(bin).xMean; }
  double XVariance(std::int32_t bin) const override { return at(bin).xVariance; }
  double YMean(std::int32_t bin) const override { return at(bin).yMean; }
  void GetResultData(std::int32_t bin, std::vector<std::int32_t>& counts,
                     std::vector<double>& heights) const override;

  // ---- beyond the contract, of the last Calculate; error 9 beyond BinCount
  /// By result: the fragments in the bin, and the sum of their heights, which the settings may have changed.
  struct Cell {
    std::int32_t fragments = 0;
    double heightSum = 0;    // RFU
    double tallest = 0;      // RFU, as measured
    std::int32_t taken = 0;  // fragments that the bin's own threshold took out
  };
  std::vector<Cell> cellsOf(std::int32_t bin) const;
  struct Measured {
    double xMin = 0, xMax = 0, xMean = 0;  // nt
    double yMean = 0;                      // RFU
  };
  /// Of the fragments in the bin as they were measured, before any alignment or normalisation.
  Measured measuredIn(std::int32_t bin) const;
  /// The height from which a fragment counts in the bin, in RFU.
  double thresholdOf(std::int32_t bin) const { return at(bin).threshold; }
  /// Empty where the bin was found.
  const std::string& nameOf(std::int32_t bin) const { return at(bin).name; }
  /// By result; none when the lanes were not aligned.
  const std::vector<ShiftCurve>& laneShifts() const { return laneShifts_; }
  /// By result; none when the heights were not normalised.
  const std::vector<double>& factors() const { return factors_; }
  /// Fragments that are high enough and lie in no bin; and those added outside the size range.
  std::size_t outsideBins() const { return outsideBins_; }
  std::size_t outsideRange() const { return outsideRange_; }

 private:
  // A slice of the sorted fragments; those in it that do not count are passed over.
  struct Bin {
    Slice slice;
    double threshold;
    std::string name;
    double xMin, xMax, xMean, xVariance, yMean;
    std::int32_t sampleCount, fragmentCount;
  };
  struct Place {
    Slice slice;
    const GivenBin* given;  // null where it was found
  };

  const Bin& at(std::int32_t bin) const;
  /// Of which the present bins are slices.
  const std::vector<Fragment>& binned() const { return changed_.empty() ? fragments_ : changed_; }
  const Fragment& measuredOf(const Fragment& fragment) const;
  void sortFragments();
  void orderHeights(std::vector<Fragment>& fragments) const;
  void normalise();
  void align();
  std::vector<Fragment>& changedFragments();
  std::vector<Place> places() const;
  std::vector<Place> givenPlaces() const;
  std::vector<Slice> slicesOf(std::span<const Fragment> fragments) const;
  std::vector<Place> between(const std::vector<Place>& given) const;
  double ownThreshold(const Slice& slice) const;
  void addBin(const Place& place, std::vector<std::int32_t>& lastBinOfResult);
  std::size_t countBetween(const std::vector<Place>& places) const;
  template <class Action>
  void visit(const Bin& bin, Action action) const;

  CalculatorSettings settings_;
  std::vector<bool> unmeasured_;
  double maxBinWidth_ = 1;
  double yThreshold_ = 0;
  double calculatedThreshold_ = 0;  // the one that the present bins were made with
  std::int32_t resultCount_ = 0;
  int dye_ = 0;
  bool heightsAreWhole_ = true;
  FragmentBlocks added_;             // since the last sort
  std::vector<Fragment> fragments_;  // as measured
  std::vector<Fragment> changed_;    // as the settings have it, where that is another thing
  std::vector<double> factors_;
  std::vector<ShiftCurve> laneShifts_;
  std::vector<Bin> bins_;
  std::size_t outsideBins_ = 0, outsideRange_ = 0;
};

}  // namespace banddesk::host
