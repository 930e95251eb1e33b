// The station is killed while an output stands: the guard takes it off. On real pseudo-terminals, in real time.
//
// One kill a route; with OMBRIX_SOAK=1 a hundred, in ten lanes that may run side by side.

#include "platform/safe_file.h"
#include "support/other_process.h"
#include "testbench/bench.h"
#include "testbench/program/pty_line.h"
#include "testbench/program/station_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <poll.h>
#include <random>
#include <string>
#include <vector>

using namespace ombrix;

namespace {

constexpr bench::Micros kSecond = 1'000'000;
constexpr bench::Micros kToOutput = 180 * kSecond;  // from the start to an output, on a machine with much else to do
constexpr bench::Micros kLongestMoment = 4 * kSecond;
constexpr bench::Micros kPatience = 5 * kSecond;
constexpr bench::Micros kByte = 1042;
constexpr bench::Micros kToStandby = kSecond / 5;
// Until the guard's first byte, on a machine with much else to do. Nothing where only kills run.
constexpr bench::Micros kLatest = kSecond;
constexpr int kLongestBlock = 200;
constexpr int kLongestLookMs = 10;
// Less than one of the guard's commands takes on the line: the bench's calibrator begins anew with each.
constexpr int kOperateMs = 20;
constexpr char kStandby[] = "OUT 0 V, 0 Hz ; STBY ; *WAI";

bench::Micros Now()
{
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(since).count();
}

// The guard of a station; "" when it has none. One that only waits to be buried is none.
QString GuardOf(qint64 station)
{
    for (const QString &number : QDir("/proc").entryList(QDir::Dirs)) {
        QFile status("/proc/" + number + "/status");
        if (QFile::symLinkTarget("/proc/" + number + "/exe") == OMBRIX_GUARD && status.open(QIODevice::ReadOnly) &&
            status.readAll().contains("PPid:\t" + QByteArray::number(station) + "\n"))
            return number;
    }
    return "";
}

// All that it did is done, and it does nothing more.
bool IsStopped(qint64 process)
{
    const std::string stat = ReadFile("/proc/" + std::to_string(process) + "/stat").value_or("");
    return stat.find(") T ") != std::string::npos;
}

bool Lives(const QString &guard)
{
    return QFile::symLinkTarget("/proc/" + guard + "/exe") == OMBRIX_GUARD;
}

// What the system says that it does.
std::string StateOf(const QString &process)
{
    return ReadFile(("/proc/" + process + "/status").toStdString()).value_or("").substr(0, 80) + " in " +
           ReadFile(("/proc/" + process + "/syscall").toStdString()).value_or("");
}

// Bytes that an open block still takes for the meter's, when a command stops behind `said`. Behind a header that isn't
// whole nobody knows.
int BytesSwallowed(const std::string &said)
{
    const std::size_t block = said.find('#');
    if (!said.starts_with("UUT_SEND") || block == std::string::npos)
        return 0;
    const std::size_t digits = block + 1 < said.size() ? static_cast<std::size_t>(said[block + 1] - '0') : 9;
    if (said.size() < block + 2 + digits || digits == 0)
        return kLongestBlock;
    const int length = std::atoi(said.substr(block + 2, digits).c_str());
    return std::max(0, length - static_cast<int>(said.size() - block - 2 - digits));
}

struct Lane {
    bool uut;
    int number;
};

// The rest of a command when its station dies between two of its bytes.
enum class Rest { Comes, IsLost };

class KilledStation : public testing::TestWithParam<Lane>
{
protected:
    KilledStation()
        : bench(SetupOf(GetParam().uut)), meter(PathOf("COM1")), calibrator(PathOf("COM2")),
          random(static_cast<unsigned>(GetParam().number * 2 + (GetParam().uut ? 2 : 1)))
    {}
    ~KilledStation() override
    {
        if (station.state() != QProcess::NotRunning)
            station.kill();
        station.waitForFinished();
    }

    static bench::BenchSetup SetupOf(bool uut)
    {
        bench::BenchSetup setup;
        setup.uut = uut;
        setup.operateDelayMs = kOperateMs;
        return setup;
    }
    std::string PathOf(const char *name) const { return folder.filePath(name).toStdString(); }

    // The instruments go on until it is so, or the time is up.
    bool Until(const std::function<bool()> &done, bench::Micros limit)
    {
        const bench::Micros end = Now() + limit;
        while (!done() && Now() < end) {
            pollfd inputs[] = {{meter.Descriptor(), POLLIN, 0}, {calibrator.Descriptor(), POLLIN, 0}};
            const bench::Micros due = bench.NextDue(Now()).value_or(end) - Now();
            poll(inputs, 2, static_cast<int>(std::clamp<bench::Micros>(due / 1000, 1, kLongestLookMs)));
            Carry(bench::Line::Meter, meter);
            Carry(bench::Line::Calibrator, calibrator);
        }
        return done();
    }
    void LetTimePass(bench::Micros time)
    {
        Until([] { return false; }, time);
    }
    bool Operates() const { return bench.CalibratorNow().operating; }

    void Begins()
    {
        const bench::DevicePaths paths{meter.Link(), calibrator.Link()};
        ASSERT_EQ(bench::TellStation(folder.path().toStdString(), paths, SetupOf(GetParam().uut)), "");
        meter.LetOthersIn();
        calibrator.LetOthersIn();
        station.setWorkingDirectory(folder.path());
        station.start(OMBRIX_TOUR, {"--until-killed", OMBRIX_GUARD});
        ASSERT_TRUE(Until([this] { return Operates(); }, kToOutput)) << WhatHappened();
        guard = GuardOf(station.processId());
        ASSERT_NE(guard, "");
    }

    // Another one stands in its place under the same output.
    void LosesItsGuard()
    {
        const QString first = guard;
        ::kill(first.toInt(), SIGKILL);
        const auto replaced = [this, &first] {
            guard = GuardOf(station.processId());
            return guard != "" && guard != first;
        };
        ASSERT_TRUE(Until(replaced, kPatience)) << "no other guard has come";
        ASSERT_TRUE(Operates());
    }

    std::string WhatHappened()
    {
        station.waitForReadyRead(1);
        return station.readAll().toStdString() + station.readAllStandardError().toStdString() + "\n" +
               bench.LastWords();
    }

    // After a while, under an output.
    void IsKilledAfter(bench::Micros moment)
    {
        LetTimePass(moment);
        do {
            ::kill(static_cast<pid_t>(station.processId()), SIGCONT);
            ASSERT_TRUE(Until([this] { return Operates(); }, kToOutput)) << WhatHappened();
            ASSERT_NO_FATAL_FAILURE(Stops());
            Hears(calibrator.ReadAll());
        } while (!Operates());  // what was on the line took it off
        Dies();
    }

    // After a while, with a part of its next command to the calibrator on the line.
    void IsKilledInsideACommand(bench::Micros moment, Rest rest)
    {
        LetTimePass(moment);
        cutting = true;
        ASSERT_TRUE(Until([this] { return cut.size() > 1; }, kToOutput)) << "no command came";
        cutting = false;
        ASSERT_NO_FATAL_FAILURE(Stops());
        cut += calibrator.ReadAll();
        const std::size_t part = 1 + random() % (cut.size() - 1);
        Hears(cut.substr(0, part));
        LetTimePass(static_cast<bench::Micros>(part) * kByte);
        if (rest == Rest::Comes)
            Hears(cut.substr(part));
        Dies();
        ++inside;
    }

    // What the line holds now is the station's last; all that follows is the guard's.
    void Stops()
    {
        ::kill(static_cast<pid_t>(station.processId()), SIGSTOP);
        const bench::Micros end = Now() + kPatience;
        while (!IsStopped(station.processId()) && Now() < end)
            poll(nullptr, 0, 1);
        ASSERT_TRUE(IsStopped(station.processId()));
    }

    void Dies()
    {
        under += Operates() ? 1 : 0;
        killed = Now();
        firstOfGuard = 0;
        stationsEnd = std::max(killed, onWire);
        swallowed = BytesSwallowed(said);
        ::kill(static_cast<pid_t>(station.processId()), SIGKILL);
        station.waitForFinished();
    }

    bench::Micros InStandbySince() const
    {
        const std::vector<bench::OutputEvent> history = bench.OutputHistory();
        bench::Micros since = 0;
        for (auto each = history.rbegin(); each != history.rend() && !each->operate; ++each)
            since = each->time;
        return since;
    }

    // Judged by what stands on the terminals.
    void ExpectStandbyInTime()
    {
        ASSERT_TRUE(Until([this] { return !Lives(guard); }, kPatience)) << "a guard is left behind: " << StateOf(guard);
        ASSERT_TRUE(Until([this] { return firstOfGuard > 0; }, kPatience)) << "it has said nothing";
        Until([this] { return !Operates() && Now() > onWire + kToStandby; }, kPatience);
        EXPECT_FALSE(Operates());
        EXPECT_EQ(bench.CalibratorNow().output, "0 V, 0 Hz");
        EXPECT_TRUE(said.empty()) << "it ended inside a command";
        const bench::Micros standby = InStandbySince();
        const bench::Micros waited = stationsEnd + swallowed * kByte;
        const bench::Micros late = std::max<bench::Micros>(0, firstOfGuard - stationsEnd);
        const bench::Micros forgiven = test::TimesOfSoak(static_cast<int>(std::min(late, kLatest)), 0);
        EXPECT_LE(standby, waited + kToStandby + forgiven)
            << "the last byte to wait for came at " << waited << ", the guard's first " << late << " us behind it";
        if (standby > killed)
            times.push_back((standby - killed) / 1000);
    }

    void TellFigures()
    {
        std::sort(times.begin(), times.end());
        if (!times.empty())
            std::printf("%d kills under an output, %d inside a command: standby after %lld ms, at worst %lld ms\n",
                        under, inside, static_cast<long long>(times[times.size() / 2]),
                        static_cast<long long>(times.back()));
    }

    QTemporaryDir folder;
    bench::Bench bench;
    bench::PtyLine meter;
    bench::PtyLine calibrator;
    std::mt19937 random;
    QProcess station;
    QString guard;

    std::string said;          // of the calibrator's line since its last line end
    bench::Micros onWire = 0;  // when the last byte of the calibrator's line has arrived
    bool cutting = false;      // what comes on that line is held back
    std::string cut;           // what was
    bench::Micros killed = 0;
    bench::Micros stationsEnd = 0;
    bench::Micros firstOfGuard = 0;
    int swallowed = 0;
    int under = 0;
    int inside = 0;
    std::vector<bench::Micros> times;  // from a kill to standby, ms

private:
    void Carry(bench::Line line, bench::PtyLine &pty)
    {
        const std::string heard = pty.ReadAll();
        if (line == bench::Line::Calibrator && cutting)
            cut += heard;
        else if (line == bench::Line::Calibrator)
            Hears(heard);
        else if (!heard.empty())
            bench.Receive(line, heard, Now());
        pty.Write(bench.Collect(line, Now()));
    }

    void Hears(const std::string &bytes)
    {
        if (bytes.empty())
            return;
        const bench::Micros now = Now();
        bench.Receive(bench::Line::Calibrator, bytes, now);
        onWire = std::max(onWire, now) + static_cast<bench::Micros>(bytes.size()) * kByte;
        firstOfGuard = firstOfGuard == 0 ? now : firstOfGuard;
        said += bytes;
        said.erase(0, said.rfind('\n') + 1);
    }
};

class StationThatIsAskedToQuit : public KilledStation
{
};

std::vector<Lane> Lanes()
{
    std::vector<Lane> lanes;
    for (int number = 0; number < test::TimesOfSoak(1, 10); ++number)
        for (const bool uut : {false, true})
            lanes.push_back({uut, number});
    return lanes;
}

}  // namespace

// Every second kill comes between two bytes of a command, and of these every second loses the command's rest. Through the
// UUT port it is a second guard that speaks: the first one was killed before.
TEST_P(KilledStation, LeavesTheCalibratorInStandbyWithin200MillisecondsOfTheLastByteThatItMustWaitFor)
{
    ASSERT_EQ(meter.Open() + calibrator.Open(), "");
    const int first = GetParam().uut ? 1 : 0;
    const int kills = test::TimesOfSoak(1, 10);
    for (int n = first; n < first + kills && !HasFailure(); ++n) {
        const auto moment = static_cast<bench::Micros>(random() % kLongestMoment);
        SCOPED_TRACE("kill " + std::to_string(n) + ", " + std::to_string(moment / 1000) + " ms after an output began");
        ASSERT_NO_FATAL_FAILURE(Begins());
        if (GetParam().uut) {
            ASSERT_NO_FATAL_FAILURE(LosesItsGuard());
        }
        cut.clear();
        if (n % 2 == 0)
            IsKilledAfter(moment);
        else
            IsKilledInsideACommand(moment, n % 4 == 1 ? Rest::IsLost : Rest::Comes);
        SCOPED_TRACE("inside \"" + cut + "\"");
        ExpectStandbyInTime();
    }
    TellFigures();
}

// Its own last words end with LOCAL. The guard has nothing to add.
TEST_P(StationThatIsAskedToQuit, LeavesTheGuardNothingToSay)
{
    ASSERT_EQ(meter.Open() + calibrator.Open(), "");
    ASSERT_NO_FATAL_FAILURE(Begins());
    LetTimePass(static_cast<bench::Micros>(random() % kLongestMoment));
    const bench::Micros asked = Now();
    ::kill(static_cast<pid_t>(station.processId()), SIGTERM);
    ASSERT_TRUE(
        Until([this] { return station.waitForFinished(0) || station.state() == QProcess::NotRunning; }, kPatience));
    EXPECT_EQ(station.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(station.exitCode(), 0);
    EXPECT_FALSE(Lives(guard));
    LetTimePass(kToStandby);
    EXPECT_FALSE(Operates());
    std::vector<std::string> last;
    for (const auto &each : bench.Transcript())
        if (each.fromStation && each.line == bench::Line::Calibrator && each.time >= asked &&
            each.text.find("UUT_SEND") == std::string::npos)
            last.push_back(each.text);
    ASSERT_GE(last.size(), 2u);
    EXPECT_THAT(last[last.size() - 2], testing::HasSubstr(kStandby));
    EXPECT_THAT(last.back(), testing::HasSubstr("LOCAL"));
    EXPECT_EQ(std::count_if(last.begin(), last.end(), [](const auto &text) { return text.find("LOCAL") != text.npos; }),
              1);
}

static std::string NameOfLane(const testing::TestParamInfo<Lane> &info)
{
    return (info.param.uut ? "ThroughUut" : "Direct") + std::to_string(info.param.number);
}

INSTANTIATE_TEST_SUITE_P(Routes, KilledStation, testing::ValuesIn(Lanes()), NameOfLane);
INSTANTIATE_TEST_SUITE_P(Routes, StationThatIsAskedToQuit, testing::Values(Lane{false, 0}), NameOfLane);
