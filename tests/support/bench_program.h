// The testbench as a program of its own, wired to a station's folder through pseudo-terminals.
#pragma once

#include <QProcess>
#include <QString>

#include <string>

namespace ombrix::test {

class BenchProgram
{
public:
    BenchProgram(const QString &program, const QString &folder, const QString &board, unsigned seed);
    ~BenchProgram();

    /// Waits until it runs and has told the folder where its lines are. False when it doesn't start.
    bool Stands() const;
    /// Types a line at its console; the first line of its answer that begins so, "" when none comes.
    std::string Answers(const std::string &line, const std::string &begins);
    /// Ends it without a word, so both its lines hang up.
    void Dies();

private:
    QString m_folder;
    QProcess m_process;
};

}  // namespace ombrix::test
