#include "tour/bench_walk.h"

#include <QDir>
#include <QMessageBox>
#include <QWidget>

#include <cstdio>

namespace ombrix::tour {
namespace {

constexpr unsigned kSeed = 7;
constexpr int kQuietMs = 1100;  // then the status line says what is, not what was

test::Wiring WiringOf(int board, const Options &options)
{
    test::Wiring wiring;
    wiring.bench.board = board;
    wiring.bench.seed = kSeed;
    wiring.painted = options.pictures.isEmpty() ? test::Painted::No : test::Painted::Yes;
    wiring.theme = options.theme.toStdString();
    return wiring;
}

}  // namespace

void LeavePicture(const QString &folder, const QString &name, QWidget *window)
{
    if (folder.isEmpty())
        return;
    QDir().mkpath(folder);
    const QString file = QDir(folder).filePath(name + ".png");
    if (window)
        window->grab().save(file);
    else
        test::ScriptedOperator::TakesPicture(file);
}

BenchWalk::BenchWalk(int board, const Options &options)
    : m_folder(options.pictures.isEmpty() ? "" : QDir(options.pictures).absolutePath()),
      m_station(WiringOf(board, options))
{}

test::ScriptedOperator &BenchWalk::Takes(const QString &name, const std::string &widget)
{
    return m_station.person.Waits(m_folder.isEmpty() ? 0 : kQuietMs).Does([this, name, widget] {
        QWidget *const shown = widget.empty() ? test::ScriptedOperator::Box() : test::ScriptedOperator::Find(widget);
        LeavePicture(m_folder, name, shown ? shown->window() : nullptr);
    });
}

bool BenchWalk::Ends()
{
    const bool good = m_station.person.Runs();
    if (!good)
        std::printf("%s\n", m_station.person.Trouble().c_str());
    return good;
}

}  // namespace ombrix::tour
