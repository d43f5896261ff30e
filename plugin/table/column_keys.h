// The keys of the bin information columns, in the order in which an analysis writes them.
#pragma once

namespace banddesk {

inline constexpr const char* kBinNumberKey = "6";
inline constexpr const char* kDyeKey = "7";
inline constexpr const char* kSampleCountKey = "8";
inline constexpr const char* kFragmentCountKey = "119";
inline constexpr const char* kXMinKey = "9";
inline constexpr const char* kXMaxKey = "10";
inline constexpr const char* kXMeanKey = "83";
inline constexpr const char* kYMeanKey = "84";
inline constexpr const char* kXVarianceKey = "85";

}  // namespace banddesk
