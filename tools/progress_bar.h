// A one-line progress bar on standard error for reading a large file:
// drawn only when standard error is a terminal and the file is at least
// kProgressThreshold bytes, redrawn at most ten times a second, and erased
// when the object goes away, so that it never mixes with other output.
#ifndef IDXBASE_TOOLS_PROGRESS_BAR_H_
#define IDXBASE_TOOLS_PROGRESS_BAR_H_

#include <chrono>
#include <cstdint>
#include <string>

namespace idxbase_tool {

constexpr std::uint64_t kProgressThreshold = std::uint64_t{64} << 20;

class ProgressBar {
 public:
  // `label` names the work (a file name); `total` is its size in bytes.
  ProgressBar(const std::string& label, std::uint64_t total);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  // Counts `bytes` more done.
  void Advance(std::uint64_t bytes);
  // True when the bar is drawn.
  bool active() const { return active_; }

 private:
  using Clock = std::chrono::steady_clock;
  void Draw();

  bool active_;
  std::string label_;
  std::uint64_t total_;
  std::uint64_t done_ = 0;
  Clock::time_point start_;
  Clock::time_point lastDraw_;
};

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_PROGRESS_BAR_H_
