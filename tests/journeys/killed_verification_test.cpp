// The station is killed while a range is verified, at each call to a file: what the page has shown as taken is in the
// file, and the next run goes on behind it. A process of its own dies, by a signal that nothing can catch.

#include "journeys/page_loops.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/file_faults.h"
#include "platform/safe_file.h"
#include "session/state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QTemporaryDir>

#include <array>
#include <csignal>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr std::size_t kRecord = 6;
const std::string kEmpty(162, ' ');

std::string LabelOf(int slot)
{
    return "lblVfyRdg(" + std::to_string(slot) + ")";
}

void OpensTheFile(BenchStation &station, const std::string &file)
{
    station.Establishes();
    station.person.Clicks(ButtonOf(Step::Verify)).Clicks("cmdFileSpec").ChoosesFile(file).WaitsFor("cmdVfyReady");
}

// The toolkit paints large areas with threads of its own, which a fork leaves behind: whoever waits for them waits for
// ever. Nobody looks at the child.
class PaintsNothing : public QObject
{
public:
    PaintsNothing() { QCoreApplication::instance()->installEventFilter(this); }
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        return event->type() == QEvent::Paint || event->type() == QEvent::UpdateRequest;
    }
};

// Takes both readings of the first range and tells each that the page shows. Dies at a call to a file, counted from the
// first "Ready" on; 0 lives to the end.
[[noreturn]] void VerifiesUntilKilled(const std::string &file, int last, int tells)
{
    const PaintsNothing blind;
    BenchStation station(Wiring{});
    OpensTheFile(station, file);
    station.person.Does([last] {
        UseFileFaults([last, calls = 0](FileCall) mutable {
            if (++calls == last)
                kill(getpid(), SIGKILL);
            return FileFault();
        });
    });
    station.person.Clicks("cmdVfyReady");
    for (int slot = 0; slot < 2; ++slot) {
        station.person.Clicks("cmdVfyOK")
            .WaitsUntil("it is taken", [slot] { return ScriptedOperator::Text(LabelOf(slot)) != "      "; })
            .Does([slot, tells] {
                const std::string reading = ScriptedOperator::Text(LabelOf(slot));
                if (write(tells, reading.data(), reading.size()) != static_cast<ssize_t>(reading.size()))
                    _exit(2);
            });
    }
    station.person.WaitsFor("cmdVfyReady");
    _exit(station.person.Runs() ? 0 : 1);
}

struct Death {
    bool killed = false;
    std::string taken;  // the readings that it had shown
};

Death LivesUntil(const std::string &file, int last)
{
    std::array<int, 2> tells{};
    Death death;
    if (pipe(tells.data()) != 0)
        return death;
    const pid_t child = fork();
    if (child == 0)
        VerifiesUntilKilled(file, last, tells[1]);
    close(tells[1]);
    std::array<char, 64> bytes{};
    for (ssize_t got = 0; (got = read(tells[0], bytes.data(), bytes.size())) > 0;)
        death.taken.append(bytes.data(), static_cast<std::size_t>(got));
    close(tells[0]);
    int status = 0;
    waitpid(child, &status, 0);
    death.killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    EXPECT_TRUE(death.killed || (WIFEXITED(status) && WEXITSTATUS(status) == 0)) << status;
    return death;
}

void ExpectTheNextRunGoesOnBehind(const std::string &file, const std::string &bytes)
{
    BenchStation station(Wiring{});
    OpensTheFile(station, file);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    for (int slot = 0; slot < 2; ++slot)
        EXPECT_EQ(ScriptedOperator::Text(LabelOf(slot)),
                  bytes.substr(static_cast<std::size_t>(slot) * kRecord, kRecord));
    const bool both = bytes.find("      ") >= 2 * kRecord;
    EXPECT_EQ(ScriptedOperator::Fill(both ? "cmdVfyRng(1)" : "cmdVfyRng(0)"), "#00ffff");
}

}  // namespace

TEST(KilledVerification, LosesNoReadingThatThePageHasShown)
{
    const QTemporaryDir folder;
    const std::string file = folder.filePath("unit.vfy").toStdString();
    ASSERT_EQ(WriteFile(file, kEmpty), "");
    const std::string sound = LivesUntil(file, 0).taken;  // the same unit shows the same each time
    ASSERT_EQ(sound.size(), 2 * kRecord);
    std::vector<std::size_t> counts;  // of readings that had been shown
    bool killed = true;
    for (int last = 1; killed; last += Stride(3)) {
        SCOPED_TRACE("file call " + std::to_string(last));
        ASSERT_LT(last, 60);
        ASSERT_EQ(WriteFile(file, kEmpty), "");
        const Death death = LivesUntil(file, last);
        killed = death.killed;
        counts.push_back(death.taken.size() / kRecord);
        const std::string bytes = ReadFile(file).value_or("");
        ASSERT_EQ(bytes.size(), kEmpty.size());
        EXPECT_EQ(bytes.substr(0, death.taken.size()), death.taken);
        for (const std::size_t record : {std::size_t{0}, kRecord})
            EXPECT_THAT(bytes.substr(record, kRecord), testing::AnyOf(sound.substr(record, kRecord), "      "));
        EXPECT_EQ(bytes.substr(2 * kRecord), kEmpty.substr(2 * kRecord));
        if (last == 1 || counts.back() != *(counts.end() - 2))
            ExpectTheNextRunGoesOnBehind(file, bytes);
    }
    EXPECT_THAT(counts, testing::IsSupersetOf({0U, 1U, 2U})) << "before, between and behind the two";
}
