#include "support/other_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ombrix::test {
namespace {

constexpr int kUntrue = 1;
constexpr int kEnded = 2;
constexpr unsigned kNobody = 65534;

}  // namespace

int TimesOfSoak(int few, int all)
{
    const char *soak = std::getenv("OMBRIX_SOAK");
    return soak != nullptr && *soak == '1' ? all : few;
}

void LivesUntilKilled(int micros, const std::function<void()> &life)
{
    int begun[2];
    ASSERT_EQ(pipe(begun), 0);
    const pid_t child = fork();
    if (child == 0) {
        if (write(begun[1], "!", 1) == 1)
            life();
        _exit(kEnded);
    }
    char letter = 0;
    ASSERT_EQ(read(begun[0], &letter, 1), 1);
    close(begun[0]);
    close(begun[1]);
    usleep(static_cast<useconds_t>(micros));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "it ended by itself";
}

void InAnotherProcess(const std::function<void()> &life)
{
    std::fflush(nullptr);  // what stands in its buffers would be said twice
    const pid_t child = fork();
    if (child == 0) {
        life();
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? kUntrue : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "see above";
}

void BecomesNobody()
{
    if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0))
        _exit(kEnded);
}

void FilesEndAt(std::uint64_t bytes)
{
    rlimit limit{};
    const bool known = std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && getrlimit(RLIMIT_FSIZE, &limit) == 0;
    limit.rlim_cur = bytes == kNoEnd ? limit.rlim_max : bytes;
    if (!known || setrlimit(RLIMIT_FSIZE, &limit) != 0)
        _exit(kEnded);
}

}  // namespace ombrix::test
