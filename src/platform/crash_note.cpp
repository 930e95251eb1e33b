#include "platform/crash_note.h"

#include "platform/wire_trace.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <execinfo.h>
#include <fcntl.h>
#include <string_view>
#ifdef __linux__
#include <sys/prctl.h>
#endif
#include <unistd.h>

namespace ombrix {
namespace {

constexpr int kFrames = 64;
constexpr unsigned kNoteSeconds = 1;                   // a disk that hangs gets no more
constexpr std::size_t kStack = std::size_t{64} << 10;  // for the handler: the program's own may be used up

struct DeadlySignal {
    int number;
    std::string_view name;
};
// All by which the system would leave an image of the memory.
constexpr std::array<DeadlySignal, 10> kDeadly = {{{SIGSEGV, "SIGSEGV"},
                                                   {SIGABRT, "SIGABRT"},
                                                   {SIGBUS, "SIGBUS"},
                                                   {SIGFPE, "SIGFPE"},
                                                   {SIGILL, "SIGILL"},
                                                   {SIGQUIT, "SIGQUIT"},
                                                   {SIGTRAP, "SIGTRAP"},
                                                   {SIGSYS, "SIGSYS"},
                                                   {SIGXCPU, "SIGXCPU"},
                                                   {SIGXFSZ, "SIGXFSZ"}}};

// All of it stands before a crash: in it nothing can be asked for.
std::array<char, 4096> notePath{};
std::array<char, 256> lastException{};
std::array<char, kStack> handlerStack{};
std::array<void *, kFrames> frames{};

void Say(int file, std::string_view text)
{
    [[maybe_unused]] const auto written = write(file, text.data(), text.size());
}

std::string_view NameOf(int number)
{
    for (const DeadlySignal &one : kDeadly)
        if (one.number == number)
            return one.name;
    return "a signal";
}

void LeaveNote(int number)
{
    const int file = open(notePath.data(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
    if (file < 0)
        return;
    Say(file, "Died of ");
    Say(file, NameOf(number));
    Say(file, "\n");
    if (lastException[0] != '\0') {
        Say(file, "Nobody caught: ");
        Say(file, lastException.data());
        Say(file, "\n");
    }
    Say(file, "\nThe lines, in UTC:\n");
    WriteTraceTail(file);
    Say(file, "\nBacktrace:\n");  // last: where the stack is broken, it meets a fault of its own
    backtrace_symbols_fd(frames.data(), backtrace(frames.data(), kFrames), file);
    close(file);
}

// The guard speaks when the program is really gone: nothing here may keep it.
void HoldUpNothing()
{
    std::signal(SIGALRM, SIG_DFL);
    alarm(kNoteSeconds);
#ifdef __linux__
    prctl(PR_SET_DUMPABLE, 0);
#endif
}

extern "C" void HandleCrash(int number, siginfo_t *info, void *)
{
    const bool met = info->si_code > 0;  // not sent by somebody
    if (number == SIGBUS && met && TakeRefusedTouch(info->si_addr))
        return;
    for (const DeadlySignal &one : kDeadly)
        std::signal(one.number, SIG_DFL);  // a fault in here ends the program at once
    HoldUpNothing();
    LeaveNote(number);
    raise(number);
}

[[noreturn]] void NoteException()
{
    try {
        if (const auto exception = std::current_exception())
            std::rethrow_exception(exception);
    } catch (const std::exception &fault) {
        std::strncpy(lastException.data(), fault.what(), lastException.size() - 1);
    } catch (...) {
        std::strncpy(lastException.data(), "an exception without words", lastException.size() - 1);
    }
    std::abort();
}

}  // namespace

void WatchCrashes(const std::string &path)
{
    if (path.size() >= notePath.size())
        return;
    std::strncpy(notePath.data(), path.c_str(), notePath.size() - 1);
    backtrace(frames.data(), 1);  // the first call loads a library
    stack_t stack{};
    stack.ss_sp = handlerStack.data();
    stack.ss_size = handlerStack.size();
    sigaltstack(&stack, nullptr);
    struct sigaction action {
    };
    action.sa_sigaction = HandleCrash;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_ONSTACK | SA_NODEFER | SA_SIGINFO;
    for (const DeadlySignal &one : kDeadly) {
        struct sigaction before {
        };
        sigaction(one.number, nullptr, &before);
        if (before.sa_handler != SIG_IGN)  // as a shell has it for what it starts behind
            sigaction(one.number, &action, nullptr);
    }
    std::set_terminate(NoteException);
}

}  // namespace ombrix
