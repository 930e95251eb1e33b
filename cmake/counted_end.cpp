// Linked into the programs of the build that counts lines: a process that dies of a fault of its own or ends by _exit
// leaves its counts too. What is killed leaves none.

#include <csignal>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {

void __gcov_dump();
void __gcov_reset();

int kill(pid_t process, int signal) noexcept
{
    if (process == getpid() && signal != 0 && signal != SIGKILL && signal != SIGSTOP) {
        __gcov_dump();
        __gcov_reset();  // it may live on, and counts are written once
    }
    return static_cast<int>(syscall(SYS_kill, process, signal));
}

int raise(int signal) noexcept
{
    return kill(getpid(), signal);
}

void _exit(int code)
{
    // The files of the counts belong to whoever started it; one that gave up its rights for a while takes them back.
    [[maybe_unused]] const bool back = setresuid(-1, 0, -1) == 0 && setresgid(-1, 0, -1) == 0;
    rlimit limit{};  // a disk that was full to it is full no more: a file of counts cut off would lose all of them
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    __gcov_dump();
    syscall(SYS_exit_group, code);
    __builtin_unreachable();
}

}  // extern "C"
