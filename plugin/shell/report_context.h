// The report context type under which the component offers its analyses.
#pragma once

#include <cstdint>

namespace banddesk {

inline constexpr std::int32_t kReportContextType = 1013;
inline constexpr double kReportContextWeight = 30.0;  // its use is the reporting service's

}  // namespace banddesk
