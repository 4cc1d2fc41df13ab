#include "decode/DecodeProgress.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>

#include "output/StandardStreams.h"
#include "output/Terminal.h"

namespace norv::tool {

namespace {

constexpr std::chrono::milliseconds kPatience{1000};
constexpr std::chrono::milliseconds kTick{100};
constexpr std::uint64_t kMebibyte = 1048576;

std::optional<std::uint64_t> TotalSize(const std::vector<std::string>& sources) {
  std::uint64_t total = 0;
  for (const std::string& source : sources) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(source, failure)) {
      return std::nullopt;
    }
    const std::uintmax_t size = std::filesystem::file_size(source, failure);
    if (failure) {
      return std::nullopt;
    }
    total += size;
  }
  return total;
}

std::string Line(std::uint64_t bytesRead, const std::optional<std::uint64_t>& total) {
  constexpr std::size_t kWidth = 30;
  const std::string read = std::to_string(bytesRead / kMebibyte);
  if (!total || *total == 0) {
    return "Decoding: " + read + " MiB";
  }
  const double share = std::min(1.0, static_cast<double>(bytesRead) / static_cast<double>(*total));
  const auto filled = static_cast<std::size_t>(share * kWidth);
  return "Decoding [" + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] " +
         std::to_string(static_cast<int>(share * 100)) + " % of " + std::to_string(*total / kMebibyte) + " MiB";
}

}  // namespace

DecodeProgress::DecodeProgress(const std::vector<std::string>& sources)
    : isShown_(StandardErrorIsTerminal()), total_(TotalSize(sources)), nextChange_(Clock::now() + kPatience) {
}

DecodeProgress::~DecodeProgress() {
  if (isShown_) {
    StandardError::Instance().ClearPassingLine();
  }
}

void DecodeProgress::Update(std::uint64_t bytesRead) {
  if (isShown_ && Clock::now() >= nextChange_) {
    StandardError::Instance().ShowPassingLine(Line(bytesRead, total_));
    nextChange_ = Clock::now() + kTick;
  }
}

}  // namespace norv::tool
