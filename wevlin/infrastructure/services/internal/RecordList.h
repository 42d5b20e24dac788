#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_INTERNAL_RECORDLIST_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_INTERNAL_RECORDLIST_H_

#include <exception>
#include <string>
#include <vector>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::internal {

// Element reader for a list of records registered with
// DataContract::RegisterCollection: reads one record from `elementText` and
// appends it to the std::vector<Record> at `context` only when the reading
// succeeded. An element that is not a record of that kind (reads false, or
// throws, e.g. a number where an object belongs) is skipped; the others keep
// their order. Returns whether the element was taken.
template <typename Record>
bool ReadRecordInto(void* context, const std::string& elementText) {
  // The record is read in its place at the end of the list, so that a record
  // read is never copied, and removed again when it does not read.
  auto& records = *static_cast<std::vector<Record>*>(context);
  records.emplace_back();
  bool ok = false;
  try {
    ok = records.back().FromJsonString(elementText);
  } catch (const std::exception&) {
    ok = false;
  }
  if (!ok) records.pop_back();
  return ok;
}

// List writer for a list of records: appends each record's ToJsonString() to
// `elementTexts`, in order.
template <typename Record>
void WriteRecords(void* context, std::vector<std::string>& elementTexts) {
  const auto& records = *static_cast<const std::vector<Record>*>(context);
  elementTexts.reserve(elementTexts.size() + records.size());
  for (const Record& record : records) elementTexts.push_back(record.ToJsonString());
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::internal

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_INTERNAL_RECORDLIST_H_
