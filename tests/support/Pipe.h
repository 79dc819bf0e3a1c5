#pragma once

#include <unistd.h>

#include <utility>

#include "zamrit/platform/Streams.h"

/// The two ends of a pipe.
class TPipeEnds {
 public:
  TPipeEnds() {
    if (::pipe(FEnds) != 0) FEnds[0] = FEnds[1] = -1;
  }
  ~TPipeEnds() {
    ::close(FEnds[0]);
    CloseOut();
  }
  /// The reading end then comes to an end.
  void CloseOut() {
    if (FEnds[1] >= 0) ::close(std::exchange(FEnds[1], -1));
  }

 protected:
  int FEnds[2];
};

/// A pipe with a stream at each end.
struct TPipe : TPipeEnds {
  zm::THandleStream In{FEnds[0]}, Out{FEnds[1]};
};
