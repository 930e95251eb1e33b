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
#include <unistd.h>
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

    // The program's folder is not the user's to write, and he has a home. Root becomes nobody for it.
    void BelongsToAnother()
    {
        constexpr uid_t kNobody = 65534;
        environment.remove("XDG_DATA_HOME");
        environment.insert("HOME", home.path());
        QFile::setPermissions(folder.path(), QFile::Permissions(0x5555));
        QFile::setPermissions(home.path(), QFile::Permissions(0x7777));
        if (getuid() == 0)
            process.setChildProcessModifier([] {
                if (setgid(kNobody) != 0 || setuid(kNobody) != 0)
                    _exit(99);
            });
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
    QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
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

TEST_F(Program, TellsItsOptionsAndItsVersionWithoutADisplay)
{
    environment.insert("QT_QPA_PLATFORM", "no such display");
    process.setProcessEnvironment(environment);
    process.start(path, {"--help"});
    ASSERT_TRUE(process.waitForFinished(kStartMs));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_THAT(process.readAllStandardOutput().toStdString(), testing::HasSubstr("--trace FILE"));
    process.start(path, {"--version"});
    ASSERT_TRUE(process.waitForFinished(kStartMs));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_THAT(process.readAllStandardOutput().toStdString(),
                testing::MatchesRegex("ombrix [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    process.start(path, {"--trade"});
    ASSERT_TRUE(process.waitForFinished(kStartMs));
    EXPECT_EQ(process.exitCode(), 2);
}

TEST_F(Program, LeavesNothingBesideItselfWhenTheUserCanNotWriteThere)
{
    BelongsToAnother();
    ASSERT_TRUE(Starts());
    const QDir station(home.filePath(".local/share/ombrix"));
    EXPECT_THAT(ReadFile(station.filePath("Ombrix.lock").toStdString()).value_or(""),
                testing::HasSubstr("process=" + std::to_string(process.processId()) + "\n"));
    EndsBy(SIGTERM);
    EXPECT_EQ(station.entryList(QDir::Files, QDir::Name), QStringList({"Ombrix.ini", "Ombrix.trace"}));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList({"ombrix"}));
}

TEST_F(Program, WorksInTheFolderThatItIsToldSeenFromWhereItWasStarted)
{
    ASSERT_TRUE(Starts({"--simulate", "--station", home.path().mid(1)}));  // it is started in the root folder
    EndsBy(SIGTERM);
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files, QDir::Name), QStringList({"Ombrix.ini", "Ombrix.trace"}));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList({"ombrix"}));
    EXPECT_EQ(Refuses({"--station", home.filePath("gone")}, 2), "ombrix: the station can't work in '" +
                                                                    home.filePath("gone").toStdString() +
                                                                    "': there is no such folder\n");
}

TEST_F(Program, OfTheGuardSaysWhatItIsToWhoeverStartsIt)
{
    process.start(OMBRIX_GUARD, QStringList());
    ASSERT_TRUE(process.waitForFinished(kStartMs));
    EXPECT_EQ(process.exitCode(), 2);
    EXPECT_THAT(process.readAllStandardError().toStdString(), testing::StartsWith("ombrix-guard puts the calibrator"));
    process.start(OMBRIX_GUARD, {"--version"});
    ASSERT_TRUE(process.waitForFinished(kStartMs));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_THAT(process.readAllStandardOutput().toStdString(),
                testing::MatchesRegex("ombrix-guard [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    process.start(OMBRIX_GUARD, {"--trade"});
    ASSERT_TRUE(process.waitForFinished(kStartMs));
    EXPECT_EQ(process.exitCode(), 2);
}
