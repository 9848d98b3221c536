#include "progress_bar.h"

#include <unistd.h>

#include <cstdio>

#include "byte_units.h"

namespace idxbase_tool {
namespace {

constexpr int kBarWidth = 30;
constexpr std::size_t kLabelWidth = 30;
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);

// The end of a long name, which tells files apart better than its start.
std::string Shorten(const std::string& label) {
  if (label.size() <= kLabelWidth) return label;
  return "..." + label.substr(label.size() - (kLabelWidth - 3));
}

}  // namespace

ProgressBar::ProgressBar(const std::string& label, std::uint64_t total)
    : active_(total >= kProgressThreshold && isatty(STDERR_FILENO) == 1),
      label_(Shorten(label)),
      total_(total),
      start_(Clock::now()),
      lastDraw_(start_) {}

ProgressBar::~ProgressBar() {
  if (!active_) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
}

void ProgressBar::Advance(std::uint64_t bytes) {
  done_ += bytes;
  if (!active_) return;
  const Clock::time_point now = Clock::now();
  if (now - lastDraw_ < kRedrawInterval) return;
  lastDraw_ = now;
  Draw();
}

void ProgressBar::Draw() {
  const std::uint64_t done = done_ < total_ ? done_ : total_;
  const int filled = static_cast<int>(done * kBarWidth / total_);
  const double seconds = std::chrono::duration<double>(lastDraw_ - start_).count();
  const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '-');
  std::fprintf(stderr, "\r%s [%s] %3d%% %s\033[K", label_.c_str(), bar.c_str(),
               static_cast<int>(done * 100 / total_), FormatRate(done_, seconds).c_str());
  std::fflush(stderr);
}

}  // namespace idxbase_tool
