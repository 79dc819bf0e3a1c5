#pragma once

#include <utility>

namespace zm::detail {

/// Runs a function at the end of a scope, however it is left. The function must not throw.
template <class F>
class TFinally {
 public:
  explicit TFinally(F Function) : FFunction(std::move(Function)) {}
  ~TFinally() { FFunction(); }
  TFinally(const TFinally&) = delete;
  TFinally& operator=(const TFinally&) = delete;

 private:
  F FFunction;
};

}  // namespace zm::detail
