#pragma once

#include "zamrit/platform/Interfaces.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// Takes what a trace writes. The application implements it; it may be called from several threads at once.
class IZmLogger : public virtual IZmInterface {
 public:
  /// Label names the part that writes, such as "XPath". The views are valid until the function returns.
  virtual void Trace(StringView Message, StringView Label) = 0;
};

/// The logger of the process, nil unless the application sets one. Both can be called from any thread.
TZmIntf<IZmLogger> ZmGetLogger();
void ZmSetLogger(TZmIntf<IZmLogger> Logger);

}  // namespace zm
