// The program itself, as a process of its own in an empty folder. Real time: a start and an end take what they take.

#include "platform/safe_file.h"
#include "platform/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>
#include <string>
#include <sys/stat.h>
#include <vector>

using namespace ombrix;
using testing::EndsWith;

namespace {

constexpr int kStartMs = 20'000;  // on a machine with much else to do
constexpr int kEndMs = 4'000;

class Program : public testing::Test
{
protected:
    Program() : path(folder.filePath("ombrix")) { QFile::copy(OMBRIX_PROGRAM, path); }

    ~Program() override
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished();
        }
    }

    void Launch(const QStringList &options)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory("/");  // not its own folder
        process.start(path, options);
    }

    // Returns when it listens to SIGTERM, which is the last thing of its start.
    bool Starts(const QStringList &options = {})
    {
        Launch(options);
        QElapsedTimer timer;
        timer.start();
        while (process.waitForStarted() && process.state() == QProcess::Running && !CatchesTerminate()) {
            if (timer.elapsed() > kStartMs)
                return false;
            QThread::msleep(5);
        }
        return process.state() == QProcess::Running;
    }

    bool CatchesTerminate() const
    {
        QFile status(QString("/proc/%1/status").arg(process.processId()));
        if (!status.open(QIODevice::ReadOnly))
            return false;
        for (const QByteArray &line : status.readAll().split('\n'))
            if (line.startsWith("SigCgt:"))
                return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> (SIGTERM - 1) & 1) != 0;
        return false;
    }

    // Exit code 0 within the time that an end may take.
    void EndsBy(int signal)
    {
        ASSERT_EQ(kill(static_cast<pid_t>(process.processId()), signal), 0);
        ASSERT_TRUE(process.waitForFinished(kEndMs));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), 0);
    }

    // It ends by itself with this exit code before it has begun; what it said to standard error.
    std::string Refuses(const QStringList &options, int code)
    {
        Launch(options);
        EXPECT_TRUE(process.waitForFinished(kStartMs));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), code);
        EXPECT_FALSE(QFile::exists(folder.filePath("Ombrix.ini"))) << "it began to work";
        return process.readAllStandardError().toStdString();
    }

    std::string Ini() const { return folder.filePath("Ombrix.ini").toStdString(); }

    // A file that is written anew is another one.
    ino_t IniIdentity() const
    {
        struct stat status {
        };
        stat(Ini().c_str(), &status);
        return status.st_ino;
    }

    QTemporaryDir folder;
    QString path;
    QProcess process;
};

std::vector<std::string> Sections(const std::string &ini)
{
    std::vector<std::string> sections;
    for (const std::string &line : Split(ini, '\n'))
        if (line.starts_with('['))
            sections.push_back(line);
    return sections;
}

}  // namespace

TEST_F(Program, EndsWellByTerminateAndLeavesItsSettingsWhereItStands)
{
    ASSERT_TRUE(Starts());
    EndsBy(SIGTERM);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files, QDir::Name),
              QStringList({"Ombrix.ini", "Ombrix.trace", "ombrix"}));
    EXPECT_THAT(Sections(ReadFile(Ini()).value_or("")),
                testing::ElementsAre("[Comms]", "[Gains]", "[CalibValues]", "[Ratio]", "[QuasiDiode]", "[Filter]",
                                     "[SFNames]", "[Ports]", "[AnaCal]"));
    EXPECT_THAT(ReadFile(Ini()).value_or(""), testing::HasSubstr("\n[Filter]\nDC.1A=00108\n"));
}

TEST_F(Program, EndsWellByInterruptAndWritesNothingTheSecondTime)
{
    ASSERT_TRUE(Starts());
    EndsBy(SIGINT);
    const std::string first = ReadFile(Ini()).value_or("");
    const ino_t identity = IniIdentity();
    ASSERT_FALSE(first.empty());
    ASSERT_TRUE(Starts());
    EXPECT_EQ(IniIdentity(), identity) << "a start with complete settings writes nothing";
    EndsBy(SIGINT);
    EXPECT_EQ(ReadFile(Ini()).value_or(""), first);
    EXPECT_EQ(IniIdentity(), identity) << "and a session without a change neither";
}

TEST_F(Program, OpensTheFileOfItsTraceWhereItIsToldTo)
{
    const QString trace = folder.filePath("said.txt");
    ASSERT_TRUE(Starts({"--trace", trace}));
    EXPECT_TRUE(QFile::exists(trace));
    EndsBy(SIGTERM);
}

TEST_F(Program, RefusesWhatItDoesNotUnderstand)
{
    EXPECT_THAT(Refuses({"--trade", "x"}, 2),
                EndsWith("ombrix: Unknown option 'trade'. ombrix --help lists the options.\n"));
    EXPECT_THAT(Refuses({"DC"}, 2), EndsWith("ombrix: 'DC' is too much. ombrix --help lists the options.\n"));
    EXPECT_THAT(Refuses({"--trace"}, 2), EndsWith("'--trace'. ombrix --help lists the options.\n"));
    EXPECT_THAT(
        Refuses({"--trace", "/no-such-folder/said.txt"}, 2),
        EndsWith("ombrix: the trace can't be written to /no-such-folder/said.txt: No such file or directory\n"));
}

TEST_F(Program, TellsItsOptions)
{
    Refuses({"--help"}, 0);
    EXPECT_THAT(process.readAllStandardOutput().toStdString(), testing::HasSubstr("--trace <file>"));
}
