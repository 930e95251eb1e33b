#include "trace_writes.h"

#include "platform/safe_file.h"
#include "platform/wire_trace.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>
#include <vector>

namespace ombrix::benchmarks {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kChunks = 10'000;
constexpr auto kPause = 100us;

}  // namespace

TraceWrites TimeTrace(const std::string &folder)
{
    const std::filesystem::path own = std::filesystem::absolute(folder) / "traced";
    std::filesystem::remove_all(own);
    std::filesystem::create_directory(own);
    if (!OpenTrace(own).trouble.empty())
        throw std::runtime_error("the trace has no file");
    std::vector<double> times;
    for (std::size_t number = 0; number < kChunks; ++number) {
        const auto before = std::chrono::steady_clock::now();
        Trace(TraceLine::Meter, ByteWay::Received, "0503000021D16536\r");
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - before).count());
        std::this_thread::sleep_for(kPause);
    }
    CloseTrace();
    if (ReadTraceBytes(ReadFile(own / kTraceFile).value_or("")).size() != kChunks)
        throw std::runtime_error("the trace did not take every chunk");
    std::sort(times.begin(), times.end());
    return {times[kChunks / 2], times[kChunks * 99 / 100], times.back()};
}

}  // namespace ombrix::benchmarks
