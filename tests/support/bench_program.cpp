#include "support/bench_program.h"

#include "platform/clock.h"

#include <QFile>

namespace ombrix::test {
namespace {

constexpr int kStartMs = 5000;
constexpr int kEndMs = 2000;
constexpr int kAnswerMs = 100;
constexpr int kAnswerTries = 20;

}  // namespace

BenchProgram::BenchProgram(const QString &program, const QString &folder, const QString &board, unsigned seed)
    : m_folder(folder)
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(program, {"--station", folder, "--board", board, "--seed", QString::number(seed)});
}

BenchProgram::~BenchProgram()
{
    m_process.terminate();
    m_process.waitForFinished(kEndMs);
}

bool BenchProgram::Stands() const
{
    const Deadline limit(kStartMs);
    while (!QFile::exists(m_folder + "/Ombrix.ini") && !limit.Passed())
        PumpEvents(20);
    return m_process.state() == QProcess::Running && QFile::exists(m_folder + "/Ombrix.ini");
}

std::string BenchProgram::Answers(const std::string &line, const std::string &begins)
{
    m_process.readAll();  // what it has told until now
    m_process.write((line + "\n").c_str());
    for (int tries = 0; tries < kAnswerTries; ++tries) {
        while (m_process.canReadLine())
            if (const std::string told = m_process.readLine().trimmed().toStdString(); told.starts_with(begins))
                return told;
        m_process.waitForReadyRead(kAnswerMs);
    }
    return "";
}

void BenchProgram::Dies()
{
    m_process.kill();
    m_process.waitForFinished(kEndMs);
}

}  // namespace ombrix::test
