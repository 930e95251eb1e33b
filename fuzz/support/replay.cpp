// Runs the kept cases of every target: fuzz_replay CORPUS [TARGET...]. Ends at the first broken rule or crash with the
// case's path.

#include "platform/safe_file.h"
#include "targets.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string path;  // of the case in work

extern "C" void TellCase(int number)
{
    constexpr std::string_view kWords = "\nfailed on ";
    [[maybe_unused]] auto written = write(STDERR_FILENO, kWords.data(), kWords.size());
    written = write(STDERR_FILENO, path.data(), path.size());
    written = write(STDERR_FILENO, "\n", 1);
    std::signal(number, SIG_DFL);
    std::raise(number);
}

std::vector<std::string> FilesOf(const fs::path &folder)
{
    std::vector<std::string> files;
    if (fs::is_directory(folder))
        for (const auto &entry : fs::directory_iterator(folder))
            files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

// How many cases it was.
std::size_t Replay(const Target &target, const fs::path &folder)
{
    const auto files = FilesOf(folder);
    for (const std::string &file : files) {
        path = file;
        const std::string bytes = ombrix::ReadFile(path).value();
        target.run(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    }
    return files.size();
}

}  // namespace

int main(int count, char **arguments)
{
    for (const int number : {SIGABRT, SIGSEGV, SIGFPE, SIGBUS})
        std::signal(number, TellCase);
    const std::vector<std::string> words(arguments + 1, arguments + count);
    if (words.empty()) {
        std::fputs("Usage: fuzz_replay CORPUS [TARGET...]\n", stderr);
        return 2;
    }
    const fs::path corpus = fs::absolute(words[0]);  // a target may leave the folder for one of its own
    bool good = true;
    for (const Target &target : kTargets) {
        if (words.size() > 1 && std::find(words.begin() + 1, words.end(), target.name) == words.end())
            continue;
        const std::size_t cases = Replay(target, corpus / target.name);
        std::printf("%-20s %4zu cases\n", target.name, cases);
        good = good && cases > 0;  // a target without cases proves nothing
    }
    return good ? 0 : 1;
}
