// IndexedServiceList must find exactly what walking the list finds (the first
// entry with both texts equal), after any sequence of changes, and also from
// inside the list's own change notifications. It must stay an ordinary
// observable list: same elements, same events.

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/CountingService.h"
#include "wevlin/infrastructure/base/IListChangeListener.h"
#include "wevlin/infrastructure/base/ObservableList.h"
#include "wevlin/infrastructure/interop/internal/IndexedServiceList.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::IHostServiceDescriptor;
using interop::internal::IndexedServiceList;
using wevlin_test::CountingService;

// Walks `list` from index 0 as a lookup without an index does.
IHostServiceDescriptor* Walk(const base::IObservableList<IHostServiceDescriptor*>& list,
                             const std::string& fqn, const std::string& version) {
  for (int i = 0; i < list.GetSize(); ++i) {
    IHostServiceDescriptor* entry = list.GetAt(i);
    if (entry->GetFQN() == fqn && entry->GetSvcVersion() == version) return entry;
  }
  return nullptr;
}

// A pool of services with few names and versions, so that lookups hit,
// miss and meet several entries under one name.
class Pool {
 public:
  Pool() {
    for (const char* fqn : {"a.host", "b.host", "c.host"}) {
      for (const char* version : {"_2014_02", "_2014_07"}) {
        services_.push_back(std::make_unique<CountingService>(fqn, version));
        services_.push_back(std::make_unique<CountingService>(fqn, version));
      }
    }
  }
  IHostServiceDescriptor* Pick(std::mt19937& random) {
    return services_[random() % services_.size()].get();
  }

 private:
  std::vector<std::unique_ptr<CountingService>> services_;
};

const char* const kNames[] = {"a.host", "b.host", "c.host", "d.host", "A.host"};
const char* const kVersions[] = {"_2014_02", "_2014_07", "_2014_10"};

void ExpectFindsAsWalk(IndexedServiceList& list, const std::string& context) {
  for (const char* fqn : kNames) {
    for (const char* version : kVersions) {
      ASSERT_EQ(list.Find(fqn, version), Walk(list, fqn, version))
          << context << " looking up " << fqn << " " << version;
    }
  }
}

// Applies one random change to `list`.
void RandomChange(IndexedServiceList& list, Pool& pool, std::mt19937& random, std::string& log) {
  const int size = list.GetSize();
  switch (random() % 7) {
    case 0:
    case 1:
      log += " Add";
      list.Add(pool.Pick(random));
      break;
    case 2: {
      const int index = static_cast<int>(random() % (size + 1));
      log += " Insert@" + std::to_string(index);
      list.Add(index, pool.Pick(random));
      break;
    }
    case 3:
      if (size > 0) {
        const int index = static_cast<int>(random() % size);
        log += " SetAt@" + std::to_string(index);
        list.SetAt(index, pool.Pick(random));
      }
      break;
    case 4:
      if (size > 0) {
        const int index = static_cast<int>(random() % size);
        log += " RemoveAt@" + std::to_string(index);
        list.RemoveAt(index);
      }
      break;
    case 5:
      log += " Remove";
      list.Remove(pool.Pick(random));
      break;
    default:
      if (random() % 8 == 0) {
        log += " Clear";
        list.Clear();
      }
      break;
  }
}

TEST(IndexedServiceListTest, FindsWhatAWalkFindsAfterEveryChange) {
  Pool pool;
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    IndexedServiceList list;
    std::string log;
    for (int step = 0; step < 40; ++step) {
      RandomChange(list, pool, random, log);
      // Look up only now and then, so that several changes pile up between
      // two lookups as well.
      if (random() % 3 == 0) ExpectFindsAsWalk(list, "after" + log);
    }
    ExpectFindsAsWalk(list, "after" + log);
  }
}

// Looks services up from inside every notification and records whether the
// answers matched a walk of the list as it stood then.
class LookingListener : public base::IListChangeListener<IHostServiceDescriptor*> {
 public:
  explicit LookingListener(IndexedServiceList* list) : list_(list) {}
  void OnListChanged(const base::ListChangeEvent<IHostServiceDescriptor*>& /*event*/) override {
    ++notifications;
    for (const char* fqn : kNames) {
      for (const char* version : kVersions) {
        if (list_->Find(fqn, version) != Walk(*list_, fqn, version)) ++mismatches;
      }
    }
  }
  int notifications = 0;
  int mismatches = 0;

 private:
  IndexedServiceList* list_;
};

TEST(IndexedServiceListTest, ListenersThatLookUpSeeEachChange) {
  Pool pool;
  std::mt19937 random(11);
  IndexedServiceList list;
  LookingListener listener(&list);
  list.AddChangeListener(&listener);
  std::string log;
  for (int step = 0; step < 2000; ++step) RandomChange(list, pool, random, log);
  EXPECT_GT(listener.notifications, 1000);
  EXPECT_EQ(listener.mismatches, 0);
  list.RemoveChangeListener(&listener);
}

TEST(IndexedServiceListTest, RemovingEveryOccurrenceKeepsLookupsRightBetweenTheEvents) {
  CountingService first("a.host", "_2014_07");
  CountingService second("a.host", "_2014_07");
  IndexedServiceList list;
  list.Add(&first);
  list.Add(&second);
  list.Add(&first);
  list.Add(&second);
  LookingListener listener(&list);
  list.AddChangeListener(&listener);
  list.Remove(&first);
  EXPECT_EQ(listener.notifications, 2);
  EXPECT_EQ(listener.mismatches, 0);
  EXPECT_EQ(list.GetSize(), 2);
  EXPECT_EQ(list.Find("a.host", "_2014_07"), &second);
  list.RemoveChangeListener(&listener);
}

// Records the events a list raises.
class RecordingListener : public base::IListChangeListener<IHostServiceDescriptor*> {
 public:
  void OnListChanged(const base::ListChangeEvent<IHostServiceDescriptor*>& event) override {
    std::string line = std::to_string(static_cast<int>(event.GetAction())) + ":" +
                       std::to_string(event.GetNewIndex()) + ":" +
                       std::to_string(event.GetOldIndex()) + ":";
    for (IHostServiceDescriptor* item : event.GetNewItems()) line += item->GetSvcVersion() + ",";
    line += "/";
    for (IHostServiceDescriptor* item : event.GetOldItems()) line += item->GetSvcVersion() + ",";
    lines.push_back(line);
  }
  std::vector<std::string> lines;
};

TEST(IndexedServiceListTest, RaisesTheEventsOfAnObservableList) {
  CountingService a("s.host", "1");
  CountingService b("s.host", "2");
  CountingService c("s.host", "3");
  IndexedServiceList indexed;
  base::ObservableList<IHostServiceDescriptor*> plain;
  RecordingListener indexedEvents;
  RecordingListener plainEvents;
  indexed.AddChangeListener(&indexedEvents);
  plain.AddChangeListener(&plainEvents);
  for (base::IObservableList<IHostServiceDescriptor*>* list :
       {static_cast<base::IObservableList<IHostServiceDescriptor*>*>(&indexed),
        static_cast<base::IObservableList<IHostServiceDescriptor*>*>(&plain)}) {
    list->Add(&a);
    list->Add(&b);
    list->Add(0, &c);
    list->Add(&a);
    list->SetAt(1, &b);
    list->Remove(&a);
    list->Remove(&c);
    list->Add(&c);
    list->RemoveAt(0);
    list->Clear();
    list->Add(&a);
  }
  EXPECT_EQ(indexedEvents.lines, plainEvents.lines);
  EXPECT_EQ(indexed.GetSize(), 1);
  EXPECT_EQ(indexed.Find("s.host", "1"), &a);
  indexed.RemoveChangeListener(&indexedEvents);
  plain.RemoveChangeListener(&plainEvents);
}

}  // namespace
