#ifndef WEVLIN_INFRASTRUCTURE_BASE_OBSERVABLELIST_H_
#define WEVLIN_INFRASTRUCTURE_BASE_OBSERVABLELIST_H_

#include <algorithm>
#include <cstddef>
#include <exception>
#include <vector>

#include "wevlin/infrastructure/base/IListChangeListener.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/base/ListChangeEvent.h"
#include "wevlin/infrastructure/base/LogLine.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// The observable list: a vector of T (a pointer type) that raises one
// ListChangeEvent<T> per change, after the change is made, to each listener in
// registration order.
//
//   Add(item)         Add,    newIndex = new last index, newItems = [item]
//   Add(index, item)  Add,    newIndex = index,          newItems = [item]
//   RemoveAt(index)   Remove, oldIndex = index,          oldItems = [removed]
//   Remove(item)      Remove per occurrence, highest index first
//   SetAt, Clear      Reset,  no indexes, no items (Clear notifies even when
//                             the list was already empty)
//
// Duplicates are allowed. The list owns neither its elements nor its
// listeners; destroying it deletes neither. Copying it copies both the
// elements and the registrations, so a copy notifies the same listeners.
//
// A listener that throws is logged and skipped; the others are still called
// and the caller never sees the exception. Unlike the property-change object,
// the list refuses to register a listener twice and to remove one it does not
// know.
//
// Not thread-safe: use a list from one thread at a time. Listeners run on the
// calling thread and may read the list, but must not register or remove
// listeners of it.
template <typename T>
class ObservableList : public IObservableList<T> {
 public:
  // Creates an empty list with no listeners.
  ObservableList() = default;
  ObservableList(const ObservableList& other) = default;
  ObservableList& operator=(const ObservableList& other) = default;
  ~ObservableList() override = default;

  // Registers `listener` after those already registered. Throws a default
  // std::exception, changing nothing, when the same pointer is registered
  // already.
  void AddChangeListener(IListChangeListener<T>* listener) override {
    if (std::find(listeners_.begin(), listeners_.end(), listener) != listeners_.end()) {
      throw std::exception();
    }
    listeners_.push_back(listener);
  }

  // Removes `listener`. Throws a default std::exception, changing nothing,
  // when it is not registered.
  void RemoveChangeListener(IListChangeListener<T>* listener) override {
    auto found = std::find(listeners_.begin(), listeners_.end(), listener);
    if (found == listeners_.end()) {
      throw std::exception();
    }
    listeners_.erase(found);
  }

  // Returns the element at `index` (0 to GetSize() - 1; not checked).
  T GetAt(int index) const override { return items_[Position(index)]; }

  // Returns the number of elements.
  int GetSize() const override { return static_cast<int>(items_.size()); }

  // Replaces the element at `index` (0 to GetSize() - 1; not checked) by
  // `item`, raises Reset and returns the replaced element.
  T SetAt(int index, const T& item) override {
    T previous = items_[Position(index)];
    items_[Position(index)] = item;
    NotifyChange(Event(this, Event::Reset));
    return previous;
  }

  // Appends `item`, raises Add with the new last index, and returns true.
  bool Add(const T& item) override {
    items_.push_back(item);
    NotifyChange(Event(this, Event::Add, item, GetSize() - 1));
    return true;
  }

  // Inserts `item` before position `index` (0 to GetSize(); not checked) and
  // raises Add with `index`.
  void Add(int index, const T& item) override {
    items_.insert(items_.begin() + index, item);
    NotifyChange(Event(this, Event::Add, item, index));
  }

  // Removes the element at `index` (0 to GetSize() - 1; not checked), raises
  // Remove with `index` and returns the removed element.
  T RemoveAt(int index) override {
    T removed = items_[Position(index)];
    items_.erase(items_.begin() + index);
    NotifyChange(Event(this, Event::Remove, removed, index));
    return removed;
  }

  // Removes every element equal to `item`, from the last index down to 0,
  // raising one Remove per occurrence with the index it had. Nothing is raised
  // when `item` is absent.
  void Remove(const T& item) override {
    for (int index = GetSize() - 1; index >= 0; --index) {
      if (!(items_[Position(index)] == item)) {
        continue;
      }
      items_.erase(items_.begin() + index);
      NotifyChange(Event(this, Event::Remove, item, index));
      // A listener may have shrunk the list; never look past its end.
      index = std::min(index, GetSize());
    }
  }

  // Removes every element and raises Reset, also when the list was empty.
  void Clear() override {
    items_.clear();
    NotifyChange(Event(this, Event::Reset));
  }

 protected:
  // Passes `event` to every listener in registration order. A listener that
  // throws (anything) is logged with one line and the next one is called, so
  // every listener sees every event once. Never throws because of a listener.
  void NotifyChange(const ListChangeEvent<T>& event) {
    std::size_t next = 0;
    while (next < listeners_.size()) {
      IListChangeListener<T>* listener = listeners_[next];
      try {
        listener->OnListChanged(event);
      } catch (...) {
        internal::WriteLogLine(
            "ObservableList<T>::NotifyChange - caught exception from OnListChanged");
      }
      if (next < listeners_.size() && listeners_[next] == listener) {
        ++next;
        continue;
      }
      // The listener changed the registrations although it must not. Stay
      // memory-safe: go on after its new position, or, if it is gone, with
      // whichever listener took its place.
      auto found = std::find(listeners_.begin(), listeners_.end(), listener);
      if (found != listeners_.end()) {
        next = static_cast<std::size_t>(found - listeners_.begin()) + 1;
      }
    }
  }

 private:
  using Event = ListChangeEvent<T>;

  static std::size_t Position(int index) { return static_cast<std::size_t>(index); }

  std::vector<T> items_;
  std::vector<IListChangeListener<T>*> listeners_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_OBSERVABLELIST_H_
