// The guard, started as the station starts it: what it says on a line when the one who started it has died.

#include "platform/clock.h"
#include "platform/line_guard.h"
#include "session/journal_reader.h"
#include "session/kept_remarks.h"
#include "shell/station.h"
#include "support/station.h"
#include "testbench/bench.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <poll.h>
#include <string>
#include <sys/time.h>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace ombrix;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr int kHangUpMs = 3000;

// A pseudo-terminal: the near end is the station's line, the far end the calibrator's.
class Line
{
public:
    Line()
    {
        m_far = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (m_far < 0 || grantpt(m_far) != 0 || unlockpt(m_far) != 0)
            std::abort();
        m_near = open(ptsname(m_far), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        termios plain{};
        tcgetattr(m_near, &plain);
        cfmakeraw(&plain);
        tcsetattr(m_near, TCSANOW, &plain);
    }
    ~Line()
    {
        LeaveNear();
        close(m_far);
    }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    int Near() const { return m_near; }
    void LeaveNear()
    {
        if (m_near >= 0)
            close(m_near);
        m_near = -1;
    }
    // All that is said until nobody holds the near end any more; with "..." at its end when somebody still does.
    std::string HeardUntilTheEnd() const
    {
        std::string heard;
        for (;;) {
            pollfd input = {m_far, POLLIN, 0};
            if (poll(&input, 1, kHangUpMs) != 1)
                return heard + "...";
            std::array<char, 256> bytes{};
            const ssize_t got = read(m_far, bytes.data(), bytes.size());
            if (got <= 0)
                return heard;
            heard.append(bytes.data(), static_cast<std::size_t>(got));
        }
    }

private:
    int m_far = -1;
    int m_near = -1;
};

void Writes(int line, const std::string &bytes)
{
    if (write(line, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        _exit(3);
}

// Until the line takes nothing any more, also a moment later, when the system has carried on what it holds. Returns how
// many bytes that were.
std::size_t Fills(int line)
{
    std::size_t full = 0;
    for (int refused = 0; refused < 3;) {
        if (write(line, "V", 1) == 1) {
            ++full;
            refused = 0;
            continue;
        }
        ++refused;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return full;
}

// Another process does something with a guard and dies as told: by a signal, or with 0 by its own end. True when it
// had come that far.
bool Dies(int signal, const std::function<void()> &life)
{
    const pid_t child = fork();
    if (child == 0) {
        if (!StartGuard(OMBRIX_GUARD))
            _exit(2);
        life();
        if (signal != 0) {
            std::signal(signal, SIG_DFL);  // a build with checks would report the fault instead of dying of it
            kill(getpid(), signal);
        }
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return signal != 0 ? WIFSIGNALED(status) && WTERMSIG(status) == signal
                       : WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string StatusOf(const std::string &process)
{
    std::ifstream file("/proc/" + process + "/status");
    return {std::istreambuf_iterator<char>(file), {}};
}

// Of the guards, the one that this process has started.
pid_t GuardOfThisProcess()
{
    for (const auto &each : std::filesystem::directory_iterator("/proc")) {
        const std::string number = each.path().filename();
        if (StatusOf(number).find("PPid:\t" + std::to_string(getpid()) + "\n") != std::string::npos)
            return std::atoi(number.c_str());
    }
    return 0;
}

// Not when it has ended and only waits to be buried by whoever inherited it.
bool Runs(pid_t process)
{
    const std::string status = StatusOf(std::to_string(process));
    return !status.empty() && status.find("State:\tZ") == std::string::npos;
}

std::string LastWords()
{
    Line line;
    EXPECT_TRUE(Dies(SIGKILL, [&line] { GuardLine(line.Near()); }));
    line.LeaveNear();
    return line.HeardUntilTheEnd();
}

// What a calibrator on the bench does that heard all this.
bench::CalibratorState After(const std::string &heard)
{
    bench::Bench bench{bench::BenchSetup()};
    bench.Receive(bench::Line::Calibrator, heard, 0);
    for (bench::Micros now = 0; now < 5'000'000; now += 10'000)
        bench.Collect(bench::Line::Calibrator, now);
    return bench.CalibratorNow();
}

class GuardAfter : public testing::TestWithParam<int>
{
};

}  // namespace

TEST_P(GuardAfter, SaysStandbyAndLocalAndLeavesTheLine)
{
    Line line;
    ASSERT_TRUE(Dies(GetParam(), [&line] {
        GuardLine(line.Near());
        Writes(line.Near(), "OUT 660 V ; OP");
    }));
    line.LeaveNear();
    const std::string heard = line.HeardUntilTheEnd();
    EXPECT_THAT(heard, StartsWith("OUT 660 V ; OP\nOUT 0 V, 0 Hz ; STBY ; *WAI\n"));
    EXPECT_THAT(heard, testing::EndsWith("\nOUT 0 V, 0 Hz ; STBY ; *WAI\nLOCAL\n"));
}

INSTANTIATE_TEST_SUITE_P(Deaths, GuardAfter, testing::Values(SIGKILL, SIGSEGV, SIGABRT, 0));

TEST(Guard, SaysNothingAfterAGoodbye)
{
    Line line;
    ASSERT_TRUE(Dies(0, [&line] {
        GuardLine(line.Near());
        EndGuard();
    }));
    line.LeaveNear();
    EXPECT_EQ(line.HeardUntilTheEnd(), "");
}

TEST(Guard, SaysNothingOnALineThatWasGivenUp)
{
    Line line;
    ASSERT_TRUE(Dies(SIGKILL, [&line] {
        GuardLine(line.Near());
        GuardLine(-1);
    }));
    line.LeaveNear();
    EXPECT_EQ(line.HeardUntilTheEnd(), "");
}

TEST(Guard, HoldsTheLineThatWasOpenedLastAndNoOther)
{
    Line first;
    Line second;
    ASSERT_TRUE(Dies(SIGKILL, [&] {
        GuardLine(first.Near());
        GuardLine(second.Near());
    }));
    first.LeaveNear();
    second.LeaveNear();
    EXPECT_EQ(first.HeardUntilTheEnd(), "");
    EXPECT_THAT(second.HeardUntilTheEnd(), HasSubstr("STBY"));
}

TEST(Guard, SurvivesWhatATerminalSendsToTheStationsGroup)
{
    Line line;
    ASSERT_TRUE(Dies(SIGKILL, [&line] {
        setpgid(0, 0);
        GuardLine(line.Near());
        for (const int each : {SIGINT, SIGQUIT, SIGHUP, SIGTERM, SIGTSTP}) {
            signal(each, SIG_IGN);
            kill(0, each);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        if (!GuardStands())
            _exit(4);
    }));
    line.LeaveNear();
    EXPECT_THAT(line.HeardUntilTheEnd(), HasSubstr("STBY"));
}

TEST(Guard, ThatDiedIsStartedAnewForTheNextLine)
{
    Line line;
    ASSERT_TRUE(Dies(SIGKILL, [&line] {
        GuardLine(-1);
        kill(GuardOfThisProcess(), SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        GuardLine(line.Near());
        if (!GuardStands())
            _exit(4);
    }));
    line.LeaveNear();
    EXPECT_THAT(line.HeardUntilTheEnd(), HasSubstr("STBY"));
}

TEST(Guard, ThatDiedUnderALineIsStartedAnewWithIt)
{
    Line line;
    ASSERT_TRUE(Dies(SIGKILL, [&line] {
        GuardLine(line.Near());
        kill(GuardOfThisProcess(), SIGKILL);
        pollfd end = {GuardSocket(), POLLIN, 0};
        if (poll(&end, 1, 5000) != 1)
            _exit(4);
        RenewGuard();
        if (!GuardStands())
            _exit(5);
    }));
    line.LeaveNear();
    EXPECT_THAT(line.HeardUntilTheEnd(), HasSubstr("STBY"));
}

TEST(Guard, ThatWasTooSlowToAnswerIsReplacedAndSaysNothingWhileTheStationLives)
{
    Line line;
    ASSERT_TRUE(Dies(0, [&line] {
        const pid_t slow = GuardOfThisProcess();
        kill(slow, SIGSTOP);
        GuardLine(line.Near());
        kill(slow, SIGCONT);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        if (!GuardStands() || GuardOfThisProcess() == slow)
            _exit(4);
        EndGuard();
    }));
    line.LeaveNear();
    EXPECT_EQ(line.HeardUntilTheEnd(), "");
}

TEST(Guard, WhoseProgramComesFromASlowDiskIsWaitedFor)
{
    const QTemporaryDir folder;
    const std::string slow = folder.filePath("slow-guard").toStdString();
    std::ofstream(slow) << "#!/bin/sh\nsleep 0.8\nexec " OMBRIX_GUARD "\n";
    std::filesystem::permissions(slow, std::filesystem::perms::owner_all);
    Line line;
    ASSERT_TRUE(Dies(SIGKILL, [&] {
        EndGuard();
        if (!StartGuard(slow))
            _exit(4);
        GuardLine(line.Near());
        GuardLine(-1);
    }));
    line.LeaveNear();
    EXPECT_EQ(line.HeardUntilTheEnd(), "") << "the line was given up";
}

TEST(Guard, ThatIsLostIsTold)
{
    const QTemporaryDir folder;
    const std::string own = folder.filePath("ombrix-guard").toStdString();
    std::filesystem::copy_file(OMBRIX_GUARD, own);
    std::vector<bool> told;
    UseGuardNews([&told](bool stands) { told.push_back(stands); });
    ASSERT_TRUE(StartGuard(own));
    kill(GuardOfThisProcess(), SIGKILL);
    GuardLine(-1);
    std::filesystem::remove(own);
    kill(GuardOfThisProcess(), SIGKILL);
    GuardLine(-1);
    EXPECT_EQ(told, (std::vector<bool>{true, false}));
    EXPECT_FALSE(GuardStands());
    EndGuard();
    UseGuardNews(nullptr);
}

TEST(Guard, ThatDiesAgainAndAgainIsGivenUpAndTold)
{
    std::vector<bool> told;
    UseGuardNews([&told](bool stands) { told.push_back(stands); });
    ASSERT_TRUE(StartGuard(OMBRIX_GUARD));
    for (int death = 0; death < 16; ++death) {
        if (death == 5)
            GuardLine(-1);  // this one is well: those before it count no more
        ASSERT_TRUE(GuardStands()) << death;
        kill(GuardOfThisProcess(), SIGKILL);
        pollfd end = {GuardSocket(), POLLIN, 0};
        ASSERT_EQ(poll(&end, 1, kHangUpMs), 1) << death;
        RenewGuard();
    }
    std::vector<bool> expected(15, true);
    expected.push_back(false);
    EXPECT_EQ(told, expected);
    EXPECT_EQ(GuardSocket(), -1);
    EXPECT_TRUE(StartGuard(OMBRIX_GUARD)) << "a station that starts has all its guards again";
    EndGuard();
    UseGuardNews(nullptr);
}

TEST(Guard, OfAStationThatDiedBeforeItHadItsAnswerSpeaks)
{
    Line line;
    std::array<int, 2> told{};
    ASSERT_EQ(pipe(told.data()), 0);
    ASSERT_TRUE(Dies(SIGALRM, [&] {
        const pid_t guard = GuardOfThisProcess();
        Writes(told[1], std::string(reinterpret_cast<const char *>(&guard), sizeof guard));
        kill(guard, SIGSTOP);
        const itimerval soon = {{0, 0}, {0, 50'000}};
        setitimer(ITIMER_REAL, &soon, nullptr);
        GuardLine(line.Near());
    }));
    pid_t guard = 0;
    ASSERT_EQ(read(told[0], &guard, sizeof guard), static_cast<ssize_t>(sizeof guard));
    kill(guard, SIGCONT);
    line.LeaveNear();
    EXPECT_THAT(line.HeardUntilTheEnd(), HasSubstr("STBY"));
    close(told[0]);
    close(told[1]);
}

// What fills it up, whatever the station said; then nothing reads for a while.
TEST(Guard, WaitsForALineThatTakesNothing)
{
    Line line;
    const std::size_t full = Fills(line.Near());
    ASSERT_TRUE(Dies(SIGKILL, [&line] { GuardLine(line.Near()); }));
    line.LeaveNear();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const std::string heard = line.HeardUntilTheEnd();
    EXPECT_GT(heard.size(), full);
    EXPECT_THAT(heard, testing::EndsWith("\nOUT 0 V, 0 Hz ; STBY ; *WAI\nLOCAL\n"));
}

TEST(Guard, EndsWithALineThatGoesWhileItWaits)
{
    pid_t guard = 0;
    std::array<int, 2> told{};
    ASSERT_EQ(pipe(told.data()), 0);
    {
        Line line;
        Fills(line.Near());
        ASSERT_TRUE(Dies(SIGKILL, [&] {
            GuardLine(line.Near());
            guard = GuardOfThisProcess();
            Writes(told[1], std::string(reinterpret_cast<const char *>(&guard), sizeof guard));
        }));
        ASSERT_EQ(read(told[0], &guard, sizeof guard), static_cast<ssize_t>(sizeof guard));
        EXPECT_TRUE(Runs(guard));
    }
    for (int tries = 0; Runs(guard) && tries < 100; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(Runs(guard));
    close(told[0]);
    close(told[1]);
}

TEST(Guard, ThatIsNotThereIsToldAndEverythingElseGoesOn)
{
    EXPECT_FALSE(StartGuard("/nowhere/ombrix-guard"));
    EXPECT_FALSE(GuardStands());
    GuardLine(0);
    EndGuard();
}

TEST(Guard, WhereverTheStationDiesInACommandTheCalibratorEndsInStandby)
{
    const std::string lastWords = LastWords();
    const std::string before = "REMOTE\nOUT 660 V ; OPER ; *WAI\n";
    const std::string block(150, 'F');
    const std::vector<std::string> commands = {"OUT 200 V ; OPER ; *WAI\n", "OPER?\n", "UUT_SEND #205*1B1\r\n",
                                               "UUT_SEND #3151*1W" + block.substr(3) + "\r\n", "ERR?\n"};
    for (const std::string &command : commands)
        for (std::size_t cut = 0; cut <= command.size(); ++cut) {
            const std::string heard = before + command.substr(0, cut);
            EXPECT_TRUE(cut > 0 || After(heard).operating);
            const bench::CalibratorState end = After(heard + lastWords);
            EXPECT_FALSE(end.operating) << command.substr(0, cut);
        }
}

TEST(Guard, ThatIsLostForGoodIsToldInFrontOfAllElseAndOnceInTheJournal)
{
    constexpr char kTold[] = "No output guard: a kill leaves the output as it stands";
    test::Station station;
    std::filesystem::copy_file(OMBRIX_GUARD, "guard");
    OpenGuard(std::filesystem::absolute("guard"));
    ASSERT_TRUE(GuardStands());
    KeepRemarkOn(Subject::Settings, "something else");
    EXPECT_EQ(test::ScriptedOperator::Text("lblKeptRemark"), "something else");
    std::filesystem::remove("guard");
    kill(GuardOfThisProcess(), SIGKILL);
    pollfd end = {GuardSocket(), POLLIN, 0};
    ASSERT_EQ(poll(&end, 1, kHangUpMs), 1);
    RenewGuard();
    GuardLine(-1);  // finds none either
    EXPECT_EQ(test::ScriptedOperator::Text("lblKeptRemark"), std::string(kTold) + "   something else");
    std::vector<std::string> warned;
    for (const JournalEvent &event : ReadJournal("."))
        if (event.kind == "warned")
            warned.push_back(TextOf(event, "of"));
    EXPECT_EQ(warned, std::vector<std::string>{kTold});
}
