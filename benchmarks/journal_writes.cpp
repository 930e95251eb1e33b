#include "journal_writes.h"

#include "program.h"

#include "session/journal.h"
#include "session/journal_reader.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <thread>
#include <unistd.h>
#include <vector>

namespace ombrix::benchmarks {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kEvents = 10'000;
constexpr auto kPause = 800us;            // so that they meet many syncs, in all their states
constexpr auto kPatience = 20s;           // until the other process is at it
constexpr std::size_t kSynced = 1 << 16;  // bytes written before each sync
constexpr int kPlaces = 64;               // in turn

// A round as a range page tells it.
JournalFields Round(std::size_t number)
{
    return {{"board", "DC"},       {"range", "200 mV"},        {"position", 3},
            {"desired", 80000},    {"plus", "+ 199.87"},       {"minus", "- 199.91"},
            {"before", "7F3A"},    {"after", "7F41"},          {"limited", false},
            {"asked", "200.0 mV"}, {"reported", "2.0000E-01"}, {"round", number},
            {"slope", 9.737f}};
}

// The file begins with the number of syncs so far.
int SyncsOf(const std::string &path)
{
    int syncs = 0;
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char *>(&syncs), sizeof syncs);
    return syncs;
}

std::vector<double> TimeRecords()
{
    std::vector<double> times;
    for (std::size_t number = 0; number < kEvents; ++number) {
        const JournalFields fields = Round(number);
        const auto before = std::chrono::steady_clock::now();
        Record("round", fields);
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - before).count());
        std::this_thread::sleep_for(kPause);
    }
    return times;
}

}  // namespace

JournalWrites RecordBeside(Disk disk, const std::string &folder)
{
    const std::filesystem::path own = std::filesystem::absolute(folder) / "recorded";  // no other run's journal
    std::filesystem::remove_all(own);
    std::filesystem::create_directory(own);
    const std::string busy = own / "busy";
    JournalWrites result;
    std::vector<double> times;
    {
        std::optional<Program> other;
        if (disk == Disk::Busy)
            other.emplace(std::vector<std::string>{"/proc/self/exe", kKeepSyncing, busy}, folder,
                          std::vector<std::string>());
        const auto begin = std::chrono::steady_clock::now();
        while (other && SyncsOf(busy) < 2 && std::chrono::steady_clock::now() - begin < kPatience)
            std::this_thread::sleep_for(10ms);
        OpenJournal(own, "benchmark", "");
        const int before = SyncsOf(busy);
        times = TimeRecords();
        result.syncs = SyncsOf(busy) - before;
    }
    if (CloseJournal() != 0 || ReadJournal(own).size() != kEvents + 2)
        throw std::runtime_error("the journal did not take every event");
    if (disk == Disk::Busy && result.syncs == 0)
        throw std::runtime_error("nothing was synced beside the journal");
    std::sort(times.begin(), times.end());
    result.medianMs = times[kEvents / 2];
    result.p99Ms = times[kEvents * 99 / 100];
    result.maxMs = times.back();
    return result;
}

void KeepSyncing(const std::string &path)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const std::vector<char> bytes(kSynced, 'x');
    bool works = file >= 0;
    for (int syncs = 1; works; ++syncs) {
        const off_t place = static_cast<off_t>(syncs % kPlaces) * static_cast<off_t>(kSynced);
        works = pwrite(file, bytes.data(), bytes.size(), place) == static_cast<ssize_t>(bytes.size()) &&
                pwrite(file, &syncs, sizeof syncs, 0) == sizeof syncs && fsync(file) == 0;
    }
}

}  // namespace ombrix::benchmarks
