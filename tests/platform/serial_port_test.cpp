// The operating system's port, on pseudo-terminals.

#include "platform/serial_port.h"

#include "platform/clock.h"
#include "platform/fault.h"
#include "platform/port_check.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

using namespace ombrix;

namespace {

// A pseudo-terminal: the test is the far end.
class Pty
{
public:
    Pty()
    {
        char name[128];
        EXPECT_EQ(openpty(&m_master, &m_slave, name, nullptr, nullptr), 0);
        termios raw{};
        tcgetattr(m_slave, &raw);
        cfmakeraw(&raw);
        tcsetattr(m_slave, TCSANOW, &raw);
        fcntl(m_master, F_SETFL, O_NONBLOCK);
        m_name = name;
    }
    ~Pty() { HangsUp(); }
    const std::string &Name() const { return m_name; }
    void Says(const std::string &bytes)
    {
        EXPECT_EQ(write(m_master, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    std::string Hears()
    {
        char buffer[256];
        const ssize_t count = read(m_master, buffer, sizeof buffer);
        return count > 0 ? std::string(buffer, static_cast<std::size_t>(count)) : "";
    }
    // Whoever has it open keeps it for himself; the administrator alone may still open it.
    void IsKept() const { EXPECT_EQ(ioctl(m_slave, TIOCEXCL), 0); }
    void HangsUp()
    {
        for (int *end : {&m_slave, &m_master})
            if (*end >= 0) {
                close(*end);
                *end = -1;
            }
    }

private:
    int m_master = -1;
    int m_slave = -1;
    std::string m_name;
};

void WaitForBytes(SerialPort &port, std::size_t count, int ms)
{
    const Deadline limit(ms);
    while (port.BytesWaiting() < count && !limit.Passed())
        PumpEvents(limit.LeftMs());
}

int NumberOfRefusal(const std::string &device)
{
    SerialPort port;
    try {
        port.Open(device);
    } catch (const RuntimeFault &fault) {
        EXPECT_FALSE(port.IsOpen());
        return fault.Number();
    }
    return 0;
}

// The same for a user who doesn't own the device, nor is the administrator.
int NumberOfRefusalForAUser(const std::string &device)
{
    const pid_t other = fork();
    if (other == 0) {
        if (getuid() == 0 && (setresgid(65534, 65534, 0) != 0 || setresuid(65534, 65534, 0) != 0))
            _exit(255);
        _exit(NumberOfRefusal(device));
    }
    int status = 0;
    waitpid(other, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

TEST(SerialPort, CarriesBytesBothWays)
{
    Pty pty;
    SerialPort port;
    port.Open(pty.Name());
    port.Write("*1B1\r");
    EXPECT_EQ(pty.Hears(), "*1B1\r") << "leaves at once, without a pump";
    pty.Says("12.345\r");
    WaitForBytes(port, 7, 500);
    EXPECT_EQ(port.ReadAll(), "12.345\r");
    EXPECT_EQ(port.BytesWaiting(), 0u);
}

TEST(SerialPort, TellsAllThatItTookAndGave)
{
    Pty pty;
    SerialPort port;
    std::string told;
    port.onBytes = [&told](ByteWay way, std::string_view bytes) {
        told += "<>x"[static_cast<int>(way)] + std::string(bytes) + " ";
    };
    port.Write("nobody hears it");
    port.Open(pty.Name());
    port.Write("*1B1\r");
    pty.Says("12.");
    WaitForBytes(port, 3, 500);
    EXPECT_EQ(told, "<*1B1\r >12. ") << "when it came";
    EXPECT_EQ(port.ReadAll(), "12.");
    EXPECT_EQ(port.ReadAll(), "");
    pty.Says("345\r");
    WaitForBytes(port, 4, 500);
    EXPECT_EQ(port.Drop(), "345\r");
    EXPECT_EQ(told, "<*1B1\r >12. >345\r ") << "each byte once";
    pty.HangsUp();
    const Deadline limit(500);
    while (!port.IsGone() && !limit.Passed())
        PumpEvents(limit.LeftMs());
    port.Write("*1B1\r");
    EXPECT_EQ(told, "<*1B1\r >12. >345\r ") << "lost, so not sent";
}

TEST(SerialPort, AllEightBitsPassUnchanged)
{
    Pty pty;
    SerialPort port;
    port.Open(pty.Name());
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    pty.Says(all);
    WaitForBytes(port, 256, 500);
    EXPECT_EQ(port.ReadAll(), all);
}

TEST(SerialPort, WhatTheLineSaidToNobodyIsNotRead)
{
    Pty pty;
    pty.Says("stale\r");
    SerialPort port;
    port.Open(pty.Name());
    WaitForBytes(port, 1, 50);
    EXPECT_EQ(port.ReadAll(), "");
}

TEST(SerialPort, WhatWaitsInTheSystemsBufferIsDroppedToo)
{
    Pty pty;
    SerialPort port;
    std::string dropped;
    port.onBytes = [&dropped](ByteWay way, std::string_view bytes) {
        if (way == ByteWay::Dropped)
            dropped += bytes;
    };
    port.Open(pty.Name());
    pty.Says("seen ");
    WaitForBytes(port, 5, 500);
    pty.Says("unseen\r");
    usleep(20'000);  // the system has it; the port, which nobody pumps, has not
    EXPECT_EQ(port.Drop(), "seen unseen\r");
    EXPECT_EQ(dropped, "unseen\r") << "told as what it is";
    pty.Says("fresh\r");
    WaitForBytes(port, 6, 500);
    EXPECT_EQ(port.ReadAll(), "fresh\r");
    port.Write("*1B1\r");
    port.Drop();
    EXPECT_EQ(pty.Hears(), "*1B1\r") << "what leaves is not dropped";
}

TEST(SerialPort, ALineThatCantSetRtsIsNoFailure)
{
    Pty pty;
    SerialPort port;
    port.Open(pty.Name());
    port.SetRts(true);
    port.SetDtr(true);
    port.SetRts(false);
    PumpEvents(5);
    pty.Says("x");
    WaitForBytes(port, 1, 500);
    EXPECT_EQ(port.ReadAll(), "x");
}

TEST(SerialPort, BytesWakeAWaitAtOnce)
{
    Pty pty;
    SerialPort port;
    port.Open(pty.Name());
    pty.Says("x");
    const std::int64_t start = NowMicros();
    WaitForBytes(port, 1, 1000);
    EXPECT_LT(NowMicros() - start, 200'000);
}

TEST(SerialPort, AFarEndThatGoesAwayIsSilenceAndTheWaitsKeepTheirPace)
{
    Pty pty;
    SerialPort port;
    port.Open(pty.Name());
    pty.HangsUp();
    int pumps = 0;
    const std::int64_t start = NowMicros();
    const Deadline limit(200);
    while (port.BytesWaiting() == 0 && !limit.Passed()) {
        PumpEvents(limit.LeftMs());
        ++pumps;
    }
    EXPECT_GE(NowMicros() - start, 200'000);
    EXPECT_LT(pumps, 20) << "a spin";
    port.Write("lost");
    EXPECT_EQ(port.ReadAll(), "");
    EXPECT_TRUE(port.IsOpen()) << "until it is closed";
    EXPECT_TRUE(port.IsGone());
    port.Close();
    EXPECT_FALSE(port.IsOpen());
    EXPECT_FALSE(port.IsGone());
}

TEST(SerialPort, ThatItsLineHasGoneIsToldOnceFromAnEvent)
{
    Pty pty;
    SerialPort port;
    int told = 0;
    port.onGone = [&] {
        ++told;
        EXPECT_TRUE(port.IsGone());
        PumpEvents(5);  // allowed: it isn't the device's own error handler
    };
    port.Open(pty.Name());
    PumpEvents(5);
    EXPECT_FALSE(port.IsGone()) << "a silent line is there";
    EXPECT_EQ(told, 0);
    pty.HangsUp();
    const Deadline limit(500);
    while (told == 0 && !limit.Passed())
        PumpEvents(limit.LeftMs());
    port.Write("lost");
    PumpEvents(20);
    EXPECT_EQ(told, 1);
}

TEST(SerialPort, AGoneLineIsOpenedAgainUnderItsName)
{
    const QString link = QDir::current().filePath("line");
    QFile::remove(link);
    SerialPort port;
    {
        Pty pty;
        ASSERT_TRUE(QFile::link(QString::fromStdString(pty.Name()), link));
        port.Open(link.toStdString());
        pty.HangsUp();
        PumpEvents(20);
    }
    QFile::remove(link);
    for (int tries = 0; tries < 2; ++tries) {
        EXPECT_FALSE(port.OpenAgain());
        EXPECT_TRUE(port.IsGone());
        EXPECT_TRUE(port.IsOpen());
    }
    Pty back;
    ASSERT_TRUE(QFile::link(QString::fromStdString(back.Name()), link));
    EXPECT_TRUE(port.OpenAgain());
    EXPECT_FALSE(port.IsGone());
    port.Write("A");
    EXPECT_EQ(back.Hears(), "A");
}

TEST(SerialPort, OpensAgainWhenTheLineIsBack)
{
    SerialPort port;
    {
        Pty pty;
        port.Open(pty.Name());
        pty.HangsUp();
        PumpEvents(5);
    }
    Pty back;
    port.Open(back.Name());
    port.Write("A");
    EXPECT_EQ(back.Hears(), "A");
}

TEST(SerialPort, ASecondOpenOfTheSamePortIsNotRefused)
{
    Pty pty;
    SerialPort port;
    port.Open(pty.Name());
    EXPECT_NO_THROW(port.Open(pty.Name()));
}

TEST(SerialPort, TwoNamesOfOneDeviceAreNotOpenedBoth)
{
    Pty pty;
    const QString link = QDir::current().filePath("by-id");
    QFile::remove(link);
    ASSERT_TRUE(QFile::link(QString::fromStdString(pty.Name()), link));
    SerialPort first;
    first.Open(pty.Name());
    EXPECT_EQ(NumberOfRefusal(link.toStdString()), EBUSY);
    EXPECT_TRUE(SameDevice(pty.Name(), link.toStdString()));
    first.Close();
    EXPECT_EQ(NumberOfRefusal(link.toStdString()), 0);
}

TEST(SerialPort, ABareNameIsADeviceInTheCurrentFolder)
{
    Pty pty;
    QFile::remove("COM1");
    ASSERT_TRUE(QFile::link(QString::fromStdString(pty.Name()), "COM1"));
    EXPECT_EQ(PortTrouble("COM1"), "");
    EXPECT_EQ(NumberOfRefusal("COM1"), 0);
    EXPECT_NE(PortTrouble("null"), "") << "not the one in /dev";
    EXPECT_EQ(NumberOfRefusal("null"), ENOENT);
}

TEST(SerialPort, TellsWhyItCantBeOpened)
{
    EXPECT_EQ(NumberOfRefusal("/dev/no-such-line"), ENOENT);
    EXPECT_EQ(NumberOfRefusal(""), ENOENT);
    EXPECT_EQ(NumberOfRefusal(QDir::currentPath().toStdString()), ENOTTY);
    try {
        SerialPort port;
        port.Open("/dev/no-such-line");
    } catch (const RuntimeFault &fault) {
        EXPECT_STREQ(fault.what(), std::strerror(ENOENT)) << "in the words of the system";
    }
}

TEST(SerialPort, TellsMissingRightsFromALineThatAnotherProgramKeepsForItself)
{
    Pty pty;
    ASSERT_EQ(chmod(pty.Name().c_str(), 0000), 0);
    EXPECT_EQ(NumberOfRefusalForAUser(pty.Name()), EACCES);
    ASSERT_EQ(chmod(pty.Name().c_str(), 0666), 0);
    EXPECT_EQ(NumberOfRefusalForAUser(pty.Name()), 0);
    pty.IsKept();
    EXPECT_EQ(NumberOfRefusalForAUser(pty.Name()), EBUSY);
}

TEST(SerialPort, AClosedPortSwallowsWhatIsAskedOfIt)
{
    SerialPort port;
    port.Write("x");
    port.SetRts(true);
    port.Close();
    EXPECT_EQ(port.BytesWaiting(), 0u);
    EXPECT_EQ(port.ReadAll(), "");
}

TEST(PortTrouble, NamesTheCauseAndTheCure)
{
    EXPECT_NE(PortTrouble("/dev/no-such-line").find("Missing"), std::string::npos);
    EXPECT_NE(PortTrouble("").find("No device is set"), std::string::npos);
    QFile file("plain");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_NE(PortTrouble("plain").find("No serial line"), std::string::npos);
}

TEST(PortTrouble, IsSilentOnALineOfOurOwn)
{
    Pty pty;
    EXPECT_EQ(PortTrouble(pty.Name()), "");
    SerialPort port;
    port.Open(pty.Name());
    EXPECT_EQ(PortTrouble(pty.Name()), "");
}
