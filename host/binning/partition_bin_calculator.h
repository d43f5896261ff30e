// The bin calculator that parts the fragments of one dye as cheaply as can be, by a cost that weighs how far
// the sizes of a bin spread, how many fragments of one sample share it, how crowded the place of each cut is
// and whether samples have fragments on both of its sides. docs/binning.md tells the rule and why. The bins
// depend on the fragments alone, not on the order in which they or their samples came.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/binning/fragment_sort.h"
#include "host/binning/lane_alignment.h"
#include "host/binning/size_groups.h"
#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

class PartitionBinCalculator final : public BinCalculator {
 public:
  void SetMaxBinWidth(double nt) override { maxBinWidth_ = nt; }
  void SetYThreshold(double rfu) override { yThreshold_ = rfu; }
  /// For the next Calculate: whether the bins are made of sizes moved by alignLanes, of the fragments that
  /// count.
  void setAlignsLanes(bool aligns) { alignsLanes_ = aligns; }
  /// By result, of the last Calculate; none when the lanes were not aligned.
  const std::vector<ShiftCurve>& laneShifts() const { return laneShifts_; }
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

 private:
  // A bin is a slice of the sorted fragments; those in it that do not count are passed over.
  struct Bin {
    std::size_t begin, end;
    double xMin, xMax, xMean, xVariance, yMean;
    std::int32_t sampleCount, fragmentCount;
  };

  // For each fragment whose result has an earlier one in reach of a bin, the group of that one; by groups.
  struct Neighbours {
    std::vector<std::uint32_t> earlier;
    std::vector<std::size_t> ends;  // of each group's, in `earlier`
    std::size_t results = 0;        // that have counting fragments

    std::span<const std::uint32_t> of(std::size_t group) const;
  };

  const Bin& at(std::int32_t bin) const;
  /// Of which the present bins are slices.
  const std::vector<Fragment>& binned() const { return laneShifts_.empty() ? fragments_ : moved_; }
  bool qualifies(const Fragment& fragment) const { return fragment.height >= calculatedThreshold_; }
  void sortFragments();
  void orderHeights(std::vector<Fragment>& fragments) const;
  void chooseSizes();
  std::vector<SizeGroup> groupSizes() const;
  std::vector<std::uint32_t> binBegins(const std::vector<SizeGroup>& groups) const;
  Neighbours findNeighbours(const std::vector<SizeGroup>& groups) const;
  std::vector<double> missingSamples(const std::vector<SizeGroup>& groups,
                                     const Neighbours& neighbours) const;
  void addBin(const SizeGroup& first, std::size_t end, std::vector<std::int32_t>& lastBinOfResult);

  double maxBinWidth_ = 1;
  double yThreshold_ = 0;
  double calculatedThreshold_ = 0;  // the one that the present bins were made with
  std::int32_t resultCount_ = 0;
  bool heightsAreWhole_ = true;
  bool alignsLanes_ = false;
  FragmentBlocks added_;             // since the last sort
  std::vector<Fragment> fragments_;  // as measured
  std::vector<Fragment> moved_;      // with the sizes that bins are made of, where the lanes were aligned
  std::vector<ShiftCurve> laneShifts_;
  std::vector<Bin> bins_;
};

}  // namespace banddesk::host
