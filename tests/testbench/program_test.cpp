// The program itself, on real pseudo-terminals and in real time.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <string>

#include "platform/clock.h"
#include "platform/fault.h"
#include "platform/folder_hold.h"
#include "platform/port_check.h"
#include "platform/safe_file.h"
#include "platform/serial_port.h"
#include "testbench/program/station_folder.h"

namespace ombrix::bench {
namespace {

using testing::HasSubstr;

constexpr int kPatienceMs = 10'000;

class Program : public testing::Test
{
protected:
    ~Program() override
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    void Starts(const QStringList &options)
    {
        m_process.start(TESTBENCH_PROGRAM, options);
        ASSERT_TRUE(m_process.waitForStarted());
    }
    // The next line that the program prints.
    std::string Line()
    {
        QElapsedTimer timer;
        timer.start();
        while (!m_process.canReadLine() && timer.elapsed() < kPatienceMs && m_process.state() != QProcess::NotRunning)
            m_process.waitForReadyRead(100);
        return m_process.readLine().trimmed().toStdString();
    }
    // The next line that holds a text.
    std::string LineWith(const std::string &text)
    {
        std::string line = Line();
        while (!line.empty() && line.find(text) == std::string::npos)
            line = Line();
        return line;
    }
    void Types(const std::string &line)
    {
        m_process.write((line + "\n").c_str());
        m_process.waitForBytesWritten(kPatienceMs);
    }
    // Its exit code.
    int Ends()
    {
        EXPECT_TRUE(m_process.waitForFinished(kPatienceMs));
        EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
        return m_process.exitCode();
    }
    std::string ErrorText() { return m_process.readAllStandardError().toStdString(); }
    void Signals(int signal) { ::kill(static_cast<pid_t>(m_process.processId()), signal); }

    // Device paths behind "COM1 (meter): " and its like.
    static std::string PathIn(const std::string &line) { return line.substr(line.find(": ") + 2); }

    // What comes within a time that is long enough on real lines.
    static std::string Asks(SerialPort &port, const std::string &text, std::size_t bytes)
    {
        port.Write(text);
        std::string reply;
        const Deadline limit(kPatienceMs);
        while (reply.size() < bytes && !limit.Passed()) {
            PumpEvents(20);
            reply += port.ReadAll();
        }
        return reply;
    }

    QProcess m_process;
};

TEST_F(Program, ServesBothInstrumentsOnTheDevicesThatItNames)
{
    Starts({"--board", "AC2", "--kind", "wtmtr", "--xmtr", "--seed", "7"});
    const std::string meterLine = Line();
    const std::string calibratorLine = Line();
    ASSERT_THAT(meterLine, testing::StartsWith("COM1 (meter): /"));
    ASSERT_THAT(calibratorLine, testing::StartsWith("COM2 (calibrator): /"));
    SerialPort meter, calibrator;
    meter.Open(PathIn(meterLine));
    calibrator.Open(PathIn(calibratorLine));
    EXPECT_EQ(Asks(meter, "*1X16DZ\r", 5), "3206\r");
    EXPECT_EQ(Asks(meter, "*1X115Z\r", 5), "0012\r");
    EXPECT_EQ(Asks(calibrator, "ERR?\n", 14), "0,\"No Error\"\r\n");
    meter.Close();
    meter.Open(PathIn(meterLine));
    EXPECT_EQ(Asks(meter, "*1X16DZ\r", 5), "3206\r") << "a station may come and go";
    Signals(SIGINT);
    EXPECT_EQ(Ends(), 0);
    EXPECT_EQ(StateOfFile(PathIn(meterLine)), FileState::Missing) << "the links go with the program";
}

TEST_F(Program, PacesItsBytesInRealTime)
{
    Starts({});
    const std::string path = PathIn(Line());
    SerialPort meter;
    meter.Open(path);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(Asks(meter, "*1XZ32Z\r", 141).size(), 141u);
    // 8 bytes there, 8 ms of thought, 141 bytes back, 1.042 ms each.
    EXPECT_GE(timer.elapsed(), 163);
    EXPECT_LE(timer.elapsed(), 400);
}

TEST_F(Program, TakesCommandsAndShowsALineASecondWhileSomethingChanges)
{
    Starts({"--manual"});
    EXPECT_THAT(LineWith("input"), HasSubstr("input open"));
    Types("apply 200 mV");
    EXPECT_EQ(LineWith("applied"), "applied: 200 mV");
    EXPECT_THAT(LineWith("input"), testing::AllOf(HasSubstr("input 200 mV"), HasSubstr("range 60")));
    Types("truth GND");
    EXPECT_THAT(LineWith("GND"), HasSubstr("ideal"));
    Types("quit");
    EXPECT_EQ(Ends(), 0);
}

TEST_F(Program, HangsUpAPortThatGoesAndBringsItBackUnderItsName)
{
    Starts({});
    const std::string path = PathIn(Line());
    SerialPort meter;
    meter.Open(path);
    Types("fault port-gone");
    EXPECT_EQ(LineWith("is gone"), path + " is gone");
    EXPECT_EQ(StateOfFile(path), FileState::Missing);
    SerialPort second;
    EXPECT_THROW(second.Open(path), RuntimeFault);
    Types("fault port-gone off");
    EXPECT_EQ(LineWith("is back"), path + " is back");
    meter.Close();
    meter.Open(path);
    EXPECT_EQ(Asks(meter, "*1X16DZ\r", 5), "3201\r");
    Signals(SIGTERM);
    EXPECT_EQ(Ends(), 0);
    EXPECT_EQ(StateOfFile(path), FileState::Missing);
}

TEST_F(Program, RunsOnWithoutAConsole)
{
    m_process.setStandardInputFile(QProcess::nullDevice());
    Starts({"--fault", "lost-cr"});
    const std::string path = PathIn(Line());
    SerialPort meter;
    meter.Open(path);
    EXPECT_EQ(Asks(meter, "*1X16DZ\r", 4), "3201");
    Signals(SIGTERM);
    EXPECT_EQ(Ends(), 0);
}

TEST_F(Program, WritesItsDevicesIntoTheStationsSettings)
{
    const QTemporaryDir folder;
    const std::string station = folder.path().toStdString();
    WriteFile(station + "/Ombrix.ini", "[CalibValues]\nDC.19=52A7\n[Ports]\nCOM1=/dev/old\n");
    Starts({"--station", folder.path(), "--uut"});
    const std::string meter = PathIn(Line());
    EXPECT_EQ(meter, station + "/COM1");
    FolderHold hold;
    EXPECT_TRUE(hold.TakeFolderOf(station + "/Ombrix.ini")) << "the station's settings are its own to save";
    EXPECT_EQ(PortTrouble(meter), "") << "whoever serves a port does not keep the station from it";
    const std::string ini = ReadFile(station + "/Ombrix.ini").value_or("");
    EXPECT_THAT(ini, HasSubstr("[CalibValues]\nDC.19=52A7\n"));
    EXPECT_THAT(ini, HasSubstr("COM1=" + station + "/COM1\n"));
    EXPECT_THAT(ini, HasSubstr("COM2=" + station + "/COM2\n"));
    EXPECT_THAT(ini, HasSubstr("CALPort=2\nDPMPort=0\n"));
    Signals(SIGINT);
    EXPECT_EQ(Ends(), 0);
    EXPECT_EQ(StateOfFile(station + "/COM1"), FileState::Missing);
}

TEST_F(Program, EndsWithItsTroubleOnStandardError)
{
    Starts({"--board", "xx"});
    EXPECT_EQ(Ends(), 2);
    EXPECT_EQ(ErrorText(), "ombrix-testbench: 'xx' is no value for --board; --help lists the options\n");
    Starts({"--station", "/no/such/folder"});
    EXPECT_EQ(Ends(), 2);
    EXPECT_EQ(
        ErrorText(),
        "ombrix-testbench: the station can't work in '/no/such/folder': there is no such folder; --help lists the "
        "options\n");
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir("COM2"));
    Starts({"--station", folder.path()});
    EXPECT_EQ(Ends(), 1);
    const std::string place = folder.path().toStdString();
    EXPECT_EQ(ErrorText(), "ombrix-testbench: " + place + "/COM2 can't be made: File exists\n");
    EXPECT_EQ(StateOfFile(place + "/COM1"), FileState::Missing) << "nor is the other one left behind";
}

TEST_F(Program, TellsItsOptions)
{
    Starts({"--help"});
    EXPECT_THAT(Line(), HasSubstr("Usage: ombrix-testbench"));
    EXPECT_EQ(Ends(), 0);
    Starts({"--version"});
    EXPECT_THAT(Line(), testing::MatchesRegex("ombrix-testbench [0-9]+\\.[0-9]+\\.[0-9]+"));
    EXPECT_EQ(Ends(), 0);
}

// ---- the settings of a station ----

std::string SettingsAfter(const std::string &before, const BenchSetup &setup, const DevicePaths &paths)
{
    const QTemporaryDir folder;
    const std::string file = folder.path().toStdString() + "/Ombrix.ini";
    if (!before.empty())
        WriteFile(file, before);
    EXPECT_EQ(TellStation(folder.path().toStdString(), paths, setup), "");
    return ReadFile(file).value_or("");
}

TEST(StationFolder, GetsPortsAndWiring)
{
    EXPECT_EQ(SettingsAfter("", {}, {"/m", "/c"}),
              "[Ports]\nCOM1=/m\nCOM2=/c\n[Comms]\nCALPort=2\nDPMPort=1\nSwitch=1\n");
    EXPECT_EQ(SettingsAfter("", {.calibrator = false, .outputSwitch = false}, {"/m", ""}),
              "[Ports]\nCOM1=/m\n[Comms]\nCALPort=0\nDPMPort=1\nSwitch=0\n");
}

TEST(StationFolder, KeepsWhatElseItsFileHolds)
{
    EXPECT_EQ(
        SettingsAfter("[Comms]\nCALPort=1\nDPMPort=2\nSwitch=0\n[Gains]\nDC.25=3.2960\n", {.uut = true}, {"/m", "/c"}),
        "[Comms]\nCALPort=2\nDPMPort=0\nSwitch=1\n[Gains]\nDC.25=3.2960\n[Ports]\nCOM1=/m\nCOM2=/c\n");
}

TEST(StationFolder, TellsWhenItCantBeWritten)
{
    EXPECT_THAT(TellStation("/no/such/folder", {"/m", "/c"}, {}), HasSubstr("can't be written"));
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir("Ombrix.ini"));
    EXPECT_THAT(TellStation(folder.path().toStdString(), {"/m", "/c"}, {}), HasSubstr("can't be read"));
}

TEST(StationFolder, IsLeftToTheStationThatWorksInIt)
{
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
    FolderHold station;
    ASSERT_TRUE(station.TakeFolderOf(path + "/Ombrix.ini"));
    EXPECT_THAT(TellStation(path, {"/m", "/c"}, {}), HasSubstr("is in use by another station ("));
    EXPECT_EQ(StateOfFile(path + "/Ombrix.ini"), FileState::Missing);
}

}  // namespace
}  // namespace ombrix::bench
