#include "program.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace ombrix::benchmarks {
namespace {

using namespace std::chrono_literals;

// The number behind `key:` in a status file of /proc.
long StatusNumber(const std::filesystem::path &file, const std::string &key)
{
    std::ifstream status(file);
    for (std::string word; status >> word;) {
        long number = 0;
        if (word == key + ":" && status >> number)
            return number;
    }
    throw std::runtime_error("no " + key + " in " + file.string() + ": the program has ended");
}

bool EndsWithin(pid_t pid, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (waitpid(pid, nullptr, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

}  // namespace

double ResidentMiBOf(pid_t pid)
{
    return static_cast<double>(StatusNumber("/proc/" + std::to_string(pid) + "/status", "VmRSS")) / 1024;
}

long SleepsOf(pid_t pid)
{
    long sum = 0;
    for (const auto &task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task"))
        sum += StatusNumber(task.path() / "status", "voluntary_ctxt_switches");
    return sum;
}

double SleepsASecondOf(pid_t pid, int seconds)
{
    const long before = SleepsOf(pid);
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    return static_cast<double>(SleepsOf(pid) - before) / seconds;
}

pid_t ChildOf(pid_t parent, const std::string &name)
{
    std::ifstream children("/proc/" + std::to_string(parent) + "/task/" + std::to_string(parent) + "/children");
    for (pid_t child = 0; children >> child;) {
        std::ifstream comm("/proc/" + std::to_string(child) + "/comm");
        if (std::string is; std::getline(comm, is) && is == name)
            return child;
    }
    throw std::runtime_error("no " + name + " was started");
}

Program::Program(const std::vector<std::string> &command, const std::string &folder,
                 const std::vector<std::string> &variables)
{
    std::vector<char *> words;
    words.reserve(command.size() + 1);
    for (const std::string &word : command)
        words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);
    m_started = std::chrono::steady_clock::now();
    m_pid = fork();
    if (m_pid != 0)
        return;
    for (const std::string &variable : variables)
        putenv(const_cast<char *>(variable.c_str()));
    prctl(PR_SET_PDEATHSIG, SIGTERM);  // ends with the benchmark, also with one that is killed
    if (chdir(folder.c_str()) == 0)
        execv(words.front(), words.data());
    _exit(127);
}

Program::~Program()
{
    kill(m_pid, SIGTERM);
    if (EndsWithin(m_pid, 5s))
        return;
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
}

double Program::ResidentMiB() const
{
    return ResidentMiBOf(m_pid);
}

double Program::ResidentMiBOfChild(const std::string &name) const
{
    return ResidentMiBOf(ChildOf(m_pid, name));
}

double Program::SleepsASecond(int seconds) const
{
    return SleepsASecondOf(m_pid, seconds);
}

}  // namespace ombrix::benchmarks
