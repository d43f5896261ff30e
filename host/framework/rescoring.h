// Gives the analysis of an open results page other settings of scoring. Where they change what bins are made
// of, the page is opened anew with all that the hand decided: what was decided about a bin passes to the one
// that holds its mean size.
#pragma once

#include <memory>

#include "host/framework/page_manager.h"
#include "host/framework/rule_keeper.h"

namespace banddesk::host {

// Gives the page that stands there now. Marks and what the hand brought back are those of the analysis,
// whatever `scoring` says of them. Error 5 where the page holds a value that is not valid; if the page cannot
// be opened anew, the analysis keeps its settings and the error goes to the caller.
std::shared_ptr<HostPage> rescore(HostPageManager& pages, HostPlatform& platform, RuleKeeper& rules,
                                  const std::shared_ptr<HostPage>& page, scoring::AnalysisScoring scoring);

}  // namespace banddesk::host
