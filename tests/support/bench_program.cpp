#include "support/bench_program.h"

#include "platform/clock.h"

#include <QFile>

namespace ombrix::test {
namespace {

constexpr int kStartMs = 5000;
constexpr int kEndMs = 2000;

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

void BenchProgram::Dies()
{
    m_process.kill();
    m_process.waitForFinished(kEndMs);
}

}  // namespace ombrix::test
