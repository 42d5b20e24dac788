#ifndef WEVLIN_INFRASTRUCTURE_BASE_LISTCHANGEEVENT_H_
#define WEVLIN_INFRASTRUCTURE_BASE_LISTCHANGEEVENT_H_

#include <exception>
#include <vector>

#include "wevlin/infrastructure/base/EventObject.h"
#include "wevlin/infrastructure/base/IEventSource.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// Describes one change of an observable list of T (see ObservableList): what
// happened, at which index, and which element was added or removed. Its source
// is the list that changed.
//
//   action   newIndex        oldIndex            newItems   oldItems
//   Add      index of item   -1                  [item]     []
//   Remove   -1              index item had      []         [item]
//   Reset    -1              -1                  []         []
//
// A Reset says only "the content changed, read it again" (it is raised when an
// element is replaced and when the list is cleared).
//
// The event holds copies of the elements (T is a pointer type, so the pointed
// objects are neither copied nor owned) and does not own its source. It is a
// value: copies are independent. Any thread may read an event; one thread at a
// time may assign.
template <typename T>
class ListChangeEvent : public EventObject {
 public:
  // The kind of change. The numbers are fixed; 2 has no name, is never raised
  // and is refused by the item constructor. The underlying type is fixed so
  // that any int converted to it is a well-defined value that the item
  // constructor can refuse.
  enum ChangeAction : int { Add = 0, Remove = 1, Reset = 3 };

  // Creates an event with no indexes (both -1) and no items.
  ListChangeEvent(IEventSource* source, ChangeAction action)
      : EventObject(source), action_(action), newIndex_(-1), oldIndex_(-1) {}

  // Creates an event about `item` at `index`: for Add the index and item are
  // the new ones, for Remove the old ones, and Reset ignores both.
  //
  // Any other action throws a newly allocated std::exception by pointer; the
  // catcher owns it and must delete it. (Callers never pass such an action;
  // the pointer form is kept because code that catches it relies on it.)
  ListChangeEvent(IEventSource* source, ChangeAction action, const T& item, int index)
      : ListChangeEvent(source, action) {
    switch (action) {
      case Add:
        newIndex_ = index;
        newItems_.push_back(item);
        break;
      case Remove:
        oldIndex_ = index;
        oldItems_.push_back(item);
        break;
      case Reset:
        break;
      default:
        // By pointer on purpose: the exported interface throws a newly
        // allocated std::exception for an action it does not know.
        // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference,cert-err09-cpp,cert-err61-cpp)
        throw new std::exception();
    }
  }

  ListChangeEvent(const ListChangeEvent& other) = default;
  ListChangeEvent& operator=(const ListChangeEvent& other) = default;
  ~ListChangeEvent() override = default;

  // Returns the kind of change.
  ChangeAction GetAction() const { return action_; }

  // Returns the index of the added item for Add, else -1.
  int GetNewIndex() const { return newIndex_; }

  // Returns the index that the removed item had for Remove, else -1.
  int GetOldIndex() const { return oldIndex_; }

  // Returns the added item (one element) for Add, else an empty vector.
  const std::vector<T>& GetNewItems() const { return newItems_; }

  // Returns the removed item (one element) for Remove, else an empty vector.
  const std::vector<T>& GetOldItems() const { return oldItems_; }

 private:
  ChangeAction action_;
  int newIndex_;
  int oldIndex_;
  std::vector<T> newItems_;
  std::vector<T> oldItems_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_LISTCHANGEEVENT_H_
