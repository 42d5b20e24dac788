#include "wevlin/infrastructure/interop/internal/IndexedServiceList.h"

#include <algorithm>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

IHostServiceDescriptor* IndexedServiceList::Find(const std::string& fqn,
                                                 const std::string& version) {
  Update();
  const auto found = byFqn_.find(fqn);
  if (found == byFqn_.end()) return nullptr;
  for (const Entry& entry : found->second) {
    if (entry.version == version) return entry.service;
  }
  return nullptr;
}

void IndexedServiceList::Update() {
  if (stale_) {
    byFqn_.clear();
    indexed_ = 0;
    stale_ = false;
  }
  const int size = GetSize();
  while (indexed_ < size) {
    IHostServiceDescriptor* service = GetAt(indexed_);
    std::vector<Entry>& entries = byFqn_[service->GetFQN()];
    entries.push_back(Entry{service->GetSvcVersion(), service});
    ++indexed_;
  }
}

IHostServiceDescriptor* IndexedServiceList::SetAt(int index, IHostServiceDescriptor* const& item) {
  stale_ = true;
  return ObservableList::SetAt(index, item);
}

bool IndexedServiceList::Add(IHostServiceDescriptor* const& item) {
  // An append: the next lookup indexes the new entry.
  return ObservableList::Add(item);
}

void IndexedServiceList::Add(int index, IHostServiceDescriptor* const& item) {
  if (index != GetSize()) stale_ = true;
  ObservableList::Add(index, item);
}

IHostServiceDescriptor* IndexedServiceList::RemoveAt(int index) {
  stale_ = true;
  return ObservableList::RemoveAt(index);
}

void IndexedServiceList::Remove(IHostServiceDescriptor* const& item) {
  // ObservableList::Remove, one RemoveAt per occurrence (the same events), so
  // that the index is marked before each removal and not just the first.
  for (int index = GetSize() - 1; index >= 0; --index) {
    if (GetAt(index) != item) continue;
    RemoveAt(index);
    // A listener may have shrunk the list; never look past its end.
    index = std::min(index, GetSize());
  }
}

void IndexedServiceList::Clear() {
  stale_ = true;
  ObservableList::Clear();
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal
