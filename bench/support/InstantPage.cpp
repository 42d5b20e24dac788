#include "support/InstantPage.h"

#include <algorithm>

namespace wevlin_bench {
namespace {

bool StartsWith(const std::string& text, const char* prefix) {
  return text.compare(0, std::char_traits<char>::length(prefix), prefix) == 0;
}

}  // namespace

void InstantPage::Navigate(std::string /*target*/) {}

std::string InstantPage::ExecuteScript(std::string script) {
  ++scriptCount_;
  if (StartsWith(script, "tavoInterop_WebMethod(")) return MethodReply;
  if (StartsWith(script, "tavoInterop_Ping(")) return "1.0";
  return std::string();
}

void InstantPage::AddLoadObserver(ILoadObserver* observer) { observers_.push_back(observer); }

void InstantPage::RemoveLoadObserver(ILoadObserver* observer) {
  observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

void InstantPage::CompleteLoad() {
  const std::vector<ILoadObserver*> observers = observers_;
  for (ILoadObserver* observer : observers) observer->OnLoadCompleted();
}

}  // namespace wevlin_bench
