#include "platform/crash_note.h"

#include "platform/safe_file.h"
#include "platform/wire_trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <functional>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ombrix;
using testing::HasSubstr;

namespace {

bool IsFile(const char *path)
{
    return QFileInfo(path).isFile();
}

// What another process leaves that does this, and of which signal it dies.
struct Death {
    int signal = 0;
    bool dumped = false;
    std::string note;
};

Death After(const std::function<void()> &life, bool ignored = false)
{
    const pid_t child = fork();
    if (child == 0) {
        rlimit core{};
        getrlimit(RLIMIT_CORE, &core);
        core.rlim_cur = core.rlim_max;
        setrlimit(RLIMIT_CORE, &core);
        OpenTrace(".");
        Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
        for (const int number : {SIGQUIT, SIGXFSZ})
            std::signal(number, ignored ? SIG_IGN : SIG_DFL);
        WatchCrashes(kCrashFile);
        life();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    const std::string note = IsFile(kCrashFile) ? ReadFile(kCrashFile).value_or("none") : "none";
    QFile::remove(kCrashFile);
    return {WIFSIGNALED(status) ? WTERMSIG(status) : 0, WCOREDUMP(status), note};
}

// As deep as it goes: the stack is used up.
int Deeper(int depth)
{
    volatile char room[4096] = {};
    room[depth % 4096] = 1;
    return depth < 0 ? 0 : Deeper(depth + 1) + room[0];
}

void MeetsAFault()
{
    throw std::runtime_error("no such word");
}

// From here nothing gets out.
void Ends(void (*work)()) noexcept
{
    work();
}

// An address at which there is nothing.
void *Nowhere()
{
    return mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
}

// Whoever looks where this was called from meets a fault.
[[gnu::noinline]] void AbortsCalledFrom(void *place)
{
    static_cast<void *volatile *>(__builtin_frame_address(0))[1] = place;
    kill(getpid(), SIGABRT);
}

class CrashBy : public testing::TestWithParam<int>
{
};

}  // namespace

TEST_P(CrashBy, LeavesABacktraceAndTheLastWordsOnTheLinesAndDiesOfTheSame)
{
    const Death death = After([] { kill(getpid(), GetParam()); });
    EXPECT_EQ(death.signal, GetParam());
    EXPECT_FALSE(death.dumped) << "its line stays open meanwhile";
    EXPECT_THAT(death.note, HasSubstr("\nBacktrace:\n"));
    EXPECT_THAT(death.note, HasSubstr("platform_tests"));
    EXPECT_THAT(death.note, HasSubstr("\nThe lines, in UTC:\n"));
    EXPECT_THAT(death.note, HasSubstr("  meter       sent      *1B1\\r\n"));
}

INSTANTIATE_TEST_SUITE_P(Signals, CrashBy,
                         testing::Values(SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGQUIT, SIGTRAP, SIGSYS, SIGXCPU,
                                         SIGXFSZ));

TEST(Crash, OfAStackThatIsUsedUpIsTold)
{
    const Death death = After([] { Deeper(0); });
    EXPECT_EQ(death.signal, SIGSEGV);
    EXPECT_THAT(death.note, HasSubstr("Died of SIGSEGV"));
}

TEST(Crash, ByAJumpToNowhereTellsTheLinesThoughItsBacktraceFaults)
{
    const Death death = After([] { reinterpret_cast<void (*)()>(Nowhere())(); });
    EXPECT_EQ(death.signal, SIGSEGV);
    EXPECT_THAT(death.note, HasSubstr("Died of SIGSEGV"));
    EXPECT_THAT(death.note, HasSubstr("  meter       sent      *1B1\\r\n"));
}

TEST(Crash, WhoseBacktraceFaultsIsTheOneThatIsTold)
{
    const Death death = After([] { AbortsCalledFrom(Nowhere()); });
    EXPECT_THAT(death.note, HasSubstr("Died of SIGABRT"));
    EXPECT_THAT(death.note, HasSubstr("  meter       sent      *1B1\\r\n"));
}

TEST(Crash, ByAnExceptionThatNobodyCatchesTellsItsWords)
{
    const Death death = After([] { Ends(MeetsAFault); });
    EXPECT_EQ(death.signal, SIGABRT);
    EXPECT_THAT(death.note, HasSubstr("Died of SIGABRT\nNobody caught: no such word\n"));
}

TEST(Crash, WhoseNoteNobodyTakesDiesAllTheSame)
{
    ASSERT_EQ(mkfifo(kCrashFile, 0600), 0);
    const Death death = After([] {
        alarm(5);
        kill(getpid(), SIGSEGV);
    });
    EXPECT_EQ(death.signal, SIGSEGV) << "it waited for a reader";
}

TEST(Crash, BySignalsThatWereIgnoredIsNone)
{
    const Death death = After(
        [] {
            kill(getpid(), SIGQUIT);
            kill(getpid(), SIGXFSZ);
        },
        true);
    EXPECT_EQ(death.signal, 0);
    EXPECT_EQ(death.note, "none");
}

TEST(Crash, ThatDoesNotHappenLeavesNothing)
{
    const Death death = After([] {});
    EXPECT_EQ(death.signal, 0);
    EXPECT_EQ(death.note, "none");
}
