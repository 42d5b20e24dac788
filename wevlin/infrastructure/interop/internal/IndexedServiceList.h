#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_INDEXEDSERVICELIST_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_INDEXEDSERVICELIST_H_

#include <string>
#include <unordered_map>
#include <vector>

#include "wevlin/infrastructure/base/ObservableList.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// The host manager's list of known services: an ordinary observable list
// (same elements, same events, same order) that can also find a service by
// FQN and version without walking the whole list, so that a call from the
// page costs the same with ten services registered as with ten thousand.
//
// Find gives exactly what walking the list from index 0 and comparing
// GetFQN() and then GetSvcVersion() would give: the first entry whose two
// texts are equal to the ones asked for. It remembers each entry's texts from
// the first lookup after the entry was added, so a registered service must
// keep its FQN and version while it is in the list (they are what it is
// registered under; BaseHostingService fixes them at construction).
//
// Upkeep: appending (what registration does) costs nothing until the next
// lookup, which then reads the new entries' texts once. Any other change
// (insertion before the end, replacement, removal, clearing) makes the next
// lookup read the whole list again. The index is marked before the list
// notifies its listeners, so a listener that looks a service up sees the
// change.
//
// Not thread-safe, like the list and the manager.
class IndexedServiceList : public Base::ObservableList<IHostServiceDescriptor*> {
 public:
  IndexedServiceList() = default;
  IndexedServiceList(const IndexedServiceList& other) = default;
  IndexedServiceList& operator=(const IndexedServiceList& other) = default;
  ~IndexedServiceList() override = default;

  // Returns the first entry registered under `fqn` and `version` (exact,
  // case-sensitive), or null.
  IHostServiceDescriptor* Find(const std::string& fqn, const std::string& version);

  IHostServiceDescriptor* SetAt(int index, IHostServiceDescriptor* const& item) override;
  bool Add(IHostServiceDescriptor* const& item) override;
  void Add(int index, IHostServiceDescriptor* const& item) override;
  IHostServiceDescriptor* RemoveAt(int index) override;
  void Remove(IHostServiceDescriptor* const& item) override;
  void Clear() override;

 private:
  struct Entry {
    std::string version;
    IHostServiceDescriptor* service;
  };

  // Brings the index up to date with the list.
  void Update();

  // The indexed entries by FQN, each list in the order of the entries.
  std::unordered_map<std::string, std::vector<Entry>> byFqn_;
  // How many entries, from index 0, the index covers.
  int indexed_ = 0;
  // Set when the list changed other than by appending.
  bool stale_ = false;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_INDEXEDSERVICELIST_H_
