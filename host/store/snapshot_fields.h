// Which field of a persistent object stands for which of its snapshot: for those who carry values between the
// two. What lies around the fields (collections, order, identity) is not told here.
#pragma once

#include <type_traits>

#include "host/store/snapshot.h"

namespace banddesk::host {

// The fields of an object beside those of its snapshot: one list serves both directions.
template <class Column, class Snapshot, class Action>
void pairFields(Column& column, Snapshot& snapshot,
                Action act) requires std::is_same_v<std::remove_const_t<Column>, GridColumn> {
  act(column.TypeCode, snapshot.typeCode);
  act(column.Key, snapshot.key);
  act(column.ToolTip, snapshot.toolTip);
  act(column.Header, snapshot.header);
  act(column.ColumnOrder, snapshot.columnOrder);
  act(column.IsVisible, snapshot.isVisible);
  act(column.IsExcluded, snapshot.isExcluded);
  act(column.Width, snapshot.width);
  act(column.SortOrder, snapshot.sortOrder);
  act(column.SortPriority, snapshot.sortPriority);
  act(column.InteriorPattern, snapshot.interiorPattern);
  act(column.InteriorColor, snapshot.interiorColor);
  act(column.InteriorBkColor, snapshot.interiorBkColor);
  act(column.ReadOnly, snapshot.readOnly);
  act(column.WrapText, snapshot.wrapText);
  act(column.HorizontalAlignment, snapshot.horizontalAlignment);
  act(column.VerticalAlignment, snapshot.verticalAlignment);
  act(column.TextColor, snapshot.textColor);
  act(column.Format, snapshot.format);
  act(column.Places, snapshot.places);
  act(column.Draw3dFrame, snapshot.draw3dFrame);
  act(column.StyleToolTip, snapshot.styleToolTip);
}

template <class Analysis, class Snapshot, class Action>
void pairFields(Analysis& analysis, Snapshot& snapshot,
                Action act) requires std::is_same_v<std::remove_const_t<Analysis>, AFLP> {
  act(analysis.Name, snapshot.name);
  act(analysis.OwnerId, snapshot.ownerId);
  act(analysis.ResultStamp, snapshot.resultStamp);
  act(analysis.MaxBinWidth, snapshot.maxBinWidth);
  act(analysis.YThreshold, snapshot.yThreshold);
  act(analysis.ExcludeFullBins, snapshot.excludeFullBins);
  act(analysis.ExcludeEmptySamples, snapshot.excludeEmptySamples);
  act(analysis.ShowExcluded, snapshot.showExcluded);
  act(analysis.ShowTimestamp, snapshot.showTimestamp);
  act(analysis.ShowWellID, snapshot.showWellID);
  act(analysis.SamplesInRows, snapshot.samplesInRows);
  act(analysis.SampleBinOption, snapshot.sampleBinOption);
  act(analysis.IsPending, snapshot.isPending);
}

}  // namespace banddesk::host
