// The bin calculator: groups the fragments of one dye by the gaps between their sizes. Fragments of the
// threshold's height or more count. Their sizes, sorted, are one group at first; a group wider than the
// maximum is parted at its largest gap, at the first of several equal ones, until none is too wide. Equal
// sizes are never parted. The bins depend on the fragments alone, not on the order in which they came.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

class GapBinCalculator final : public BinCalculator {
 public:
  void SetMaxBinWidth(double nt) override { maxBinWidth_ = nt; }
  void SetYThreshold(double rfu) override { yThreshold_ = rfu; }
  // A fragment whose size or height is not a finite number is left out.
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
  struct Fragment {
    double size;
    double height;
    std::int32_t result;
  };
  static_assert(sizeof(Fragment) == 24);

  // A bin is a slice of the sorted fragments; those in it that do not count are passed over.
  struct Bin {
    std::size_t begin;
    std::size_t end;
    double xMin;
    double xMax;
    double xMean;
    double xVariance;
    double yMean;
    std::int32_t sampleCount;
    std::int32_t fragmentCount;
  };
  // The counting fragments of one size: where they begin among the sorted ones.
  struct SizeGroup {
    double size;
    std::size_t begin;
  };

  const Bin& at(std::int32_t bin) const;
  bool qualifies(const Fragment& fragment) const { return fragment.height >= calculatedThreshold_; }
  void sortFragments();
  std::vector<SizeGroup> groupSizes() const;
  void addBin(const std::vector<SizeGroup>& groups, std::size_t first, std::size_t last,
              std::vector<std::int32_t>& lastBinOfResult);

  double maxBinWidth_ = 1;
  double yThreshold_ = 0;
  double calculatedThreshold_ = 0;  // the one that the present bins were made with
  std::int32_t resultCount_ = 0;
  bool isSorted_ = true;
  std::vector<Fragment> fragments_;
  std::vector<Bin> bins_;
};

}  // namespace banddesk::host
