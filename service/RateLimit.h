// How often something may happen, with a reserve for bursts.
#pragma once

#include <algorithm>
#include <chrono>

namespace quillmarch::service {

class RateLimit {
 public:
  RateLimit(double perSecond, double burst) : perSecond_(perSecond), burst_(burst), left_(burst) {}
  bool Take(std::chrono::steady_clock::time_point now) {
    left_ =
        std::min(burst_, left_ + perSecond_ * std::chrono::duration<double>(now - last_).count());
    last_ = now;
    if (left_ < 1) return false;
    left_ -= 1;
    return true;
  }

 private:
  double perSecond_;
  double burst_;
  double left_;
  std::chrono::steady_clock::time_point last_{};
};

}  // namespace quillmarch::service
