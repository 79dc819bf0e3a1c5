#include "zamrit/common/Logger.h"

#include <mutex>
#include <utility>

namespace zm {
namespace {

struct THolder {
  std::mutex Lock;
  TZmIntf<IZmLogger> Logger;
};

THolder& Holder() {
  static THolder& holder = *new THolder;  // never destroyed: traces may come to the last
  return holder;
}

}  // namespace

TZmIntf<IZmLogger> ZmGetLogger() {
  const std::lock_guard guard(Holder().Lock);
  return Holder().Logger;
}

void ZmSetLogger(TZmIntf<IZmLogger> Logger) {
  const std::lock_guard guard(Holder().Lock);
  std::swap(Holder().Logger, Logger);
}

}  // namespace zm
