// Which column of the study file, which member of a snapshot and which field of a persistent object belong
// together: the one list that snapshots, rows and their check are made from. What lies around the fields
// (collections, order, identity) is not told here.
#pragma once

#include <tuple>

#include "host/store/snapshot.h"
#include "plugin/base/fields.h"

namespace banddesk::host {

template <class Stored, class Value, class Object, class PropertyValue>
struct Field {
  const char* name;  // in the file
  Value Stored::*member;
  Property<PropertyValue> Object::*property;
};

inline constexpr std::tuple kColumnFields{
    Field{"type_code", &ColumnSnapshot::typeCode, &GridColumn::TypeCode},
    Field{"column_key", &ColumnSnapshot::key, &GridColumn::Key},
    Field{"tool_tip", &ColumnSnapshot::toolTip, &GridColumn::ToolTip},
    Field{"header", &ColumnSnapshot::header, &GridColumn::Header},
    Field{"column_order", &ColumnSnapshot::columnOrder, &GridColumn::ColumnOrder},
    Field{"is_visible", &ColumnSnapshot::isVisible, &GridColumn::IsVisible},
    Field{"is_excluded", &ColumnSnapshot::isExcluded, &GridColumn::IsExcluded},
    Field{"width", &ColumnSnapshot::width, &GridColumn::Width},
    Field{"sort_order", &ColumnSnapshot::sortOrder, &GridColumn::SortOrder},
    Field{"sort_priority", &ColumnSnapshot::sortPriority, &GridColumn::SortPriority},
    Field{"interior_pattern", &ColumnSnapshot::interiorPattern, &GridColumn::InteriorPattern},
    Field{"interior_color", &ColumnSnapshot::interiorColor, &GridColumn::InteriorColor},
    Field{"interior_bk_color", &ColumnSnapshot::interiorBkColor, &GridColumn::InteriorBkColor},
    Field{"read_only", &ColumnSnapshot::readOnly, &GridColumn::ReadOnly},
    Field{"wrap_text", &ColumnSnapshot::wrapText, &GridColumn::WrapText},
    Field{"horizontal_alignment", &ColumnSnapshot::horizontalAlignment, &GridColumn::HorizontalAlignment},
    Field{"vertical_alignment", &ColumnSnapshot::verticalAlignment, &GridColumn::VerticalAlignment},
    Field{"text_color", &ColumnSnapshot::textColor, &GridColumn::TextColor},
    Field{"format", &ColumnSnapshot::format, &GridColumn::Format},
    Field{"places", &ColumnSnapshot::places, &GridColumn::Places},
    Field{"draw_3d_frame", &ColumnSnapshot::draw3dFrame, &GridColumn::Draw3dFrame},
    Field{"style_tool_tip", &ColumnSnapshot::styleToolTip, &GridColumn::StyleToolTip}};

inline constexpr std::tuple kBinFields{
    Field{"bin_key", &BinSnapshot::key, &AFLPBin::Key},
    Field{"manually_excluded", &BinSnapshot::manuallyExcluded, &AFLPBin::ManuallyExcluded},
    Field{"manually_included", &BinSnapshot::manuallyIncluded, &AFLPBin::ManuallyIncluded}};

inline constexpr std::tuple kAnalysisFields{
    Field{"name", &AnalysisSnapshot::name, &AFLP::Name},
    Field{"owner_id", &AnalysisSnapshot::ownerId, &AFLP::OwnerId},
    Field{"result_stamp", &AnalysisSnapshot::resultStamp, &AFLP::ResultStamp},
    Field{"max_bin_width", &AnalysisSnapshot::maxBinWidth, &AFLP::MaxBinWidth},
    Field{"y_threshold", &AnalysisSnapshot::yThreshold, &AFLP::YThreshold},
    Field{"exclude_full_bins", &AnalysisSnapshot::excludeFullBins, &AFLP::ExcludeFullBins},
    Field{"exclude_empty_samples", &AnalysisSnapshot::excludeEmptySamples, &AFLP::ExcludeEmptySamples},
    Field{"show_excluded", &AnalysisSnapshot::showExcluded, &AFLP::ShowExcluded},
    Field{"show_timestamp", &AnalysisSnapshot::showTimestamp, &AFLP::ShowTimestamp},
    Field{"show_well_id", &AnalysisSnapshot::showWellID, &AFLP::ShowWellID},
    Field{"samples_in_rows", &AnalysisSnapshot::samplesInRows, &AFLP::SamplesInRows},
    Field{"sample_bin_option", &AnalysisSnapshot::sampleBinOption, &AFLP::SampleBinOption},
    Field{"is_pending", &AnalysisSnapshot::isPending, &AFLP::IsPending}};

static_assert(std::tuple_size_v<decltype(kColumnFields)> == memberCount<ColumnSnapshot>());
static_assert(std::tuple_size_v<decltype(kBinFields)> == memberCount<BinSnapshot>());
// Beside its fields a snapshot of an analysis has its id, results, bins, four layouts and how it is scored.
static_assert(std::tuple_size_v<decltype(kAnalysisFields)> + 8 == memberCount<AnalysisSnapshot>());

// The value of an object's fields, and the fields from a value. A put of an equal value would raise what a put
// raises, so only those that differ are put.
template <class Fields, class Object, class Snapshot>
void takeFields(const Fields& fields, const Object& object, Snapshot& snapshot) {
  eachField(fields, [&](const auto& field) { snapshot.*field.member = (object.*field.property).get(); });
}

template <class Fields, class Object, class Snapshot>
void putFields(const Fields& fields, Object& object, const Snapshot& snapshot) {
  eachField(fields, [&](const auto& field) {
    auto& property = object.*field.property;
    if (property.get() != snapshot.*field.member) property = snapshot.*field.member;
  });
}

}  // namespace banddesk::host
