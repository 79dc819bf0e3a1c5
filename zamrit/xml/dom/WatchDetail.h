#pragma once

#include <vector>

namespace zm {

class TZmDOMNode;

namespace detail {

/// In debug builds, which nodes have been freed while lists of results were held; asking such a list for one of them is
/// its holder's error. In other builds nothing.
class TDOMWatch {
 public:
  /// Whether lists are held.
  static bool IsOn() noexcept;
  /// A list of living nodes is held from here on, and is no more.
  static void Begin(const std::vector<TZmDOMNode*>& Nodes);
  static void End() noexcept;
  static void NodeGone(const TZmDOMNode* Node) noexcept;
  /// Raises EAssertionFailed for a node that has been freed.
  static void Check(const TZmDOMNode* Node);
};

}  // namespace detail
}  // namespace zm
