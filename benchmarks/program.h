// A program under measurement: started, looked at from outside through /proc, ended.
#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace ombrix::benchmarks {

/// VmRSS in MiB.
double ResidentMiBOf(pid_t pid);
/// How often the threads of a process went to sleep by themselves so far.
long SleepsOf(pid_t pid);
/// The same a second, over the next `seconds`.
double SleepsASecondOf(pid_t pid, int seconds);
/// A child of this name.
pid_t ChildOf(pid_t parent, const std::string &name);

class Program
{
public:
    /// Starts it in `folder` with these variables set beside the present ones ("DISPLAY=:3").
    Program(const std::vector<std::string> &command, const std::string &folder,
            const std::vector<std::string> &variables);
    /// SIGTERM, then SIGKILL when it is still there after 5 s.
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    std::chrono::steady_clock::time_point Started() const { return m_started; }
    /// VmRSS in MiB.
    double ResidentMiB() const;
    /// VmRSS in MiB of its child of this name.
    double ResidentMiBOfChild(const std::string &name) const;
    /// Sleeps a second over the next `seconds`.
    double SleepsASecond(int seconds) const;

private:
    pid_t m_pid = -1;
    std::chrono::steady_clock::time_point m_started;
};

}  // namespace ombrix::benchmarks
