#include "zamrit/xml/dom/WatchDetail.h"

#ifndef NDEBUG
#include <mutex>
#include <unordered_set>

#include "zamrit/platform/Exceptions.h"
#endif

namespace zm::detail {

#ifdef NDEBUG

bool TDOMWatch::IsOn() noexcept { return false; }
void TDOMWatch::Begin(const std::vector<TZmDOMNode*>&) {}
void TDOMWatch::End() noexcept {}
void TDOMWatch::NodeGone(const TZmDOMNode*) noexcept {}
void TDOMWatch::Check(const TZmDOMNode*) {}

#else

namespace {

struct TWatched {
  std::mutex Mutex;
  std::size_t Lists = 0;
  std::unordered_set<const TZmDOMNode*> Gone;  // an address that serves again leaves it with the next list
};

TWatched& Watched() {
  static TWatched& watched = *new TWatched;
  return watched;
}

}  // namespace

bool TDOMWatch::IsOn() noexcept {
  const std::lock_guard lock(Watched().Mutex);
  return Watched().Lists > 0;
}

void TDOMWatch::Begin(const std::vector<TZmDOMNode*>& Nodes) {
  const std::lock_guard lock(Watched().Mutex);
  ++Watched().Lists;
  if (!Watched().Gone.empty())
    for (const TZmDOMNode* const node : Nodes) Watched().Gone.erase(node);
}

void TDOMWatch::End() noexcept {
  const std::lock_guard lock(Watched().Mutex);
  if (--Watched().Lists == 0) Watched().Gone.clear();
}

void TDOMWatch::NodeGone(const TZmDOMNode* Node) noexcept {
  const std::lock_guard lock(Watched().Mutex);
  if (Watched().Lists == 0) return;
  try {
    Watched().Gone.insert(Node);
  } catch (const std::bad_alloc&) {  // then this one is not told
    return;
  }
}

void TDOMWatch::Check(const TZmDOMNode* Node) {
  const std::lock_guard lock(Watched().Mutex);
  if (Watched().Gone.contains(Node)) throw EAssertionFailed(u"The list holds a node that has been freed!");
}

#endif

}  // namespace zm::detail
