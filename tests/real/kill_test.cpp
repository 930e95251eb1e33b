// The station is killed while an output stands: the guard takes it off. On real pseudo-terminals, in real time.
//
// A few kills; with OMBRIX_SOAK=1 a hundred.

#include "testbench/bench.h"
#include "testbench/program/pty_line.h"
#include "testbench/program/station_folder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <poll.h>
#include <random>
#include <string>

using namespace ombrix;

namespace {

constexpr bench::Micros kSecond = 1'000'000;
constexpr bench::Micros kToOutput = 40 * kSecond;  // from the start to an output, on a machine with much else to do
constexpr bench::Micros kLongestMoment = 4 * kSecond;
constexpr bench::Micros kPatience = 3 * kSecond;
constexpr int kOperateMs = 50;
// A terminal has the guard's words at once; at 9600 baud the calibrator has their last byte so much later.
constexpr bench::Micros kWire = 300 * 1042;

bench::Micros Now()
{
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(since).count();
}

int Kills()
{
    const char *soak = std::getenv("OMBRIX_SOAK");
    return soak != nullptr && *soak == '1' ? 50 : 1;
}

// The guard of this station: other tests have theirs beside it. 0 when it has none.
pid_t GuardOf(qint64 station)
{
    for (const QString &number : QDir("/proc").entryList(QDir::Dirs)) {
        QFile status("/proc/" + number + "/status");
        if (QFile::symLinkTarget("/proc/" + number + "/exe") == OMBRIX_GUARD && status.open(QIODevice::ReadOnly) &&
            status.readAll().contains("\nPPid:\t" + QByteArray::number(station) + "\n"))
            return number.toInt();
    }
    return 0;
}

// More than only waiting to be buried by whoever inherited it.
bool Lives(pid_t guard)
{
    return QFile::symLinkTarget(QString("/proc/%1/exe").arg(guard)) == OMBRIX_GUARD;
}

class KilledStation : public testing::TestWithParam<bool>
{
protected:
    KilledStation() : bench(SetupOf(GetParam())), meter(PathOf("COM1")), calibrator(PathOf("COM2")) {}

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
            poll(inputs, 2, 1);
            Carry(bench::Line::Meter, meter);
            if (Carry(bench::Line::Calibrator, calibrator))
                lastByte = Now();
        }
        return done();
    }
    bool Operates() const { return bench.CalibratorNow().operating; }

    void StationIsKilledUnderAnOutput(bench::Micros moment)
    {
        QProcess station;
        station.setWorkingDirectory(folder.path());
        station.start(OMBRIX_TOUR, {"--until-killed", OMBRIX_GUARD});
        ASSERT_TRUE(Until([this] { return Operates(); }, kToOutput)) << station.readAll().toStdString();
        Until([] { return false; }, moment);
        const bool stood = Operates();
        const pid_t guard = GuardOf(station.processId());
        ASSERT_NE(guard, 0) << "no guard stands beside the station";
        ::kill(static_cast<pid_t>(station.processId()), SIGKILL);
        station.waitForFinished();
        under += stood ? 1 : 0;
        ASSERT_TRUE(Until([guard] { return !Lives(guard); }, kPatience)) << "a guard is left behind";
        Until([this] { return !Operates() && Now() - lastByte > kWire; }, kPatience);
        EXPECT_FALSE(Operates());
        EXPECT_EQ(bench.CalibratorNow().output, "0 V, 0 Hz");
        ASSERT_FALSE(bench.OutputHistory().empty());
        EXPECT_LE(bench.OutputHistory().back().time, lastByte + kWire + kSecond / 5);
    }

    QTemporaryDir folder;
    bench::Bench bench;
    bench::PtyLine meter;
    bench::PtyLine calibrator;
    bench::Micros lastByte = 0;
    int under = 0;

private:
    bool Carry(bench::Line line, bench::PtyLine &pty)
    {
        const std::string heard = pty.ReadAll();
        if (!heard.empty())
            bench.Receive(line, heard, Now());
        pty.Write(bench.Collect(line, Now()));
        return !heard.empty();
    }
};

}  // namespace

TEST_P(KilledStation, LeavesTheCalibratorInStandbyWithin200MillisecondsOfTheGuardsLastByte)
{
    ASSERT_EQ(meter.Open() + calibrator.Open(), "");
    const bench::DevicePaths paths{meter.Link(), calibrator.Link()};
    std::mt19937 random(GetParam() ? 2 : 1);
    for (int n = 0; n < Kills() && !HasFailure(); ++n) {
        ASSERT_EQ(bench::TellStation(folder.path().toStdString(), paths, SetupOf(GetParam())), "");
        meter.LetOthersIn();
        calibrator.LetOthersIn();
        const auto moment = static_cast<bench::Micros>(random() % kLongestMoment);
        SCOPED_TRACE("killed " + std::to_string(moment / 1000) + " ms after an output began");
        StationIsKilledUnderAnOutput(moment);
    }
    EXPECT_GT(under, 0) << "no output stood at any of these moments";
}

INSTANTIATE_TEST_SUITE_P(Routes, KilledStation, testing::Values(false, true),
                         [](const auto &info) { return info.param ? "ThroughUut" : "Direct"; });
