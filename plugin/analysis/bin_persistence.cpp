#include "plugin/analysis/bin_persistence.h"

#include "plugin/page_names.h"

namespace banddesk {

std::string BinPersistence::keyOfRow(std::int32_t row) const {
  return table_.CellText(kDyeKey, row) + "-" + table_.CellText(kXMeanKey, row);
}

void BinPersistence::LoadAFLPBins() {
  page_.frame.procedure("LoadAFLPBins", [&] {
    if (loaded_) return;
    const auto& records = page_.analysis().AFLPBins;
    if (records.Count() > 0) {
      const std::int32_t rows = table_.NumRows();
      for (std::int32_t row = 1; row <= rows; ++row) {
        const std::string key = keyOfRow(row);
        if (!page_.framework().ItemExists(records, key)) continue;
        const std::size_t i = bins_.at(table_.Bin(row));
        const auto& record = records.Item(key);
        bins_.m_abManualExcluded[i] = record->ManuallyExcluded ? 1 : 0;
        bins_.m_abManualIncluded[i] = record->ManuallyIncluded ? 1 : 0;
      }
    }
    loaded_ = true;
  });
}

void BinPersistence::SaveAFLPBins() {
  page_.frame.procedure("SaveAFLPBins", [&] {
    auto& records = page_.analysis().AFLPBins;
    for (const auto& record : records) record->Saved = false;
    const std::int32_t rows = table_.NumRows();
    for (std::int32_t row = 1; row <= rows; ++row) {
      const std::size_t i = bins_.at(table_.Bin(row));
      if (bins_.m_abManualExcluded[i] == 0 && bins_.m_abManualIncluded[i] == 0) continue;
      const std::string key = keyOfRow(row);
      if (page_.framework().ItemExists(records, key)) {
        records.Item(key)->Saved = true;
        continue;
      }
      const auto record = cast<AFLPBin>(page_.services.ObjectManager().Create("AFLPBin"), "AFLPBin");
      record->Key = key;
      record->ManuallyExcluded = bins_.m_abManualExcluded[i] != 0;
      record->ManuallyIncluded = bins_.m_abManualIncluded[i] != 0;
      record->Saved = true;
      records.Add(record);
    }
    for (std::int32_t index = records.Count(); index >= 1; --index) {
      if (!records.Item(index)->Saved) records.Remove(index);
    }
  });
}

}  // namespace banddesk
