#pragma once

namespace zm::detail {

/// Whether two values compare as an operator says: one of opUnequal to opGreaterEqual.
template <class TOperator, class T>
bool ComparesAs(TOperator Operator, const T& Left, const T& Right) {
  switch (Operator) {
    case TOperator::opUnequal:
      return Left != Right;
    case TOperator::opEqual:
      return Left == Right;
    case TOperator::opSmaller:
      return Left < Right;
    case TOperator::opSmallerEqual:
      return Left <= Right;
    case TOperator::opGreater:
      return Left > Right;
    default:
      return Left >= Right;
  }
}

}  // namespace zm::detail
