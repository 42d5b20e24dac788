#ifndef WEVLIN_INFRASTRUCTURE_BASE_IOBSERVABLELIST_H_
#define WEVLIN_INFRASTRUCTURE_BASE_IOBSERVABLELIST_H_

#include "wevlin/infrastructure/base/INotifyListChange.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// An ordered list of T (a pointer type) that tells its listeners about every
// change. The host manager and each host control instance expose their
// service lists through it.
//
// The list never owns its elements or its listeners. Indexes are not checked:
// callers pass 0 to GetSize() - 1, or 0 to GetSize() to insert. Not
// thread-safe: use a list from one thread at a time.
template <typename T>
class IObservableList : public INotifyListChange<T> {
 public:
  ~IObservableList() override = default;

  // Returns the element at `index`.
  virtual T GetAt(int index) const = 0;

  // Returns the number of elements.
  virtual int GetSize() const = 0;

  // Replaces the element at `index` by `item` and returns the element it
  // replaced.
  virtual T SetAt(int index, const T& item) = 0;

  // Appends `item` and returns whether it was added.
  virtual bool Add(const T& item) = 0;

  // Inserts `item` before position `index` (GetSize() appends).
  virtual void Add(int index, const T& item) = 0;

  // Removes the element at `index` and returns it.
  virtual T RemoveAt(int index) = 0;

  // Removes every element equal to `item`.
  virtual void Remove(const T& item) = 0;

  // Removes every element.
  virtual void Clear() = 0;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_IOBSERVABLELIST_H_
