// A walk over the station on the bench's instruments, in virtual time, that leaves pictures.
#pragma once

#include "support/bench_station.h"
#include "tour/tour.h"

#include <string>

class QWidget;

namespace ombrix::tour {

/// Leaves a picture of a window: the main one when none is told.
void LeavePicture(const QString &folder, const QString &name, QWidget *window = nullptr);

class BenchWalk
{
public:
    BenchWalk(int board, const Options &options);

    bool Establishes() { return m_station.Establishes(); }
    test::ScriptedOperator &Person() { return m_station.person; }
    test::BenchStation &Station() { return m_station; }
    /// When the status line says what is, not what was: a picture of the window in which a widget stands, else of the
    /// box that is open, else of the main window. Without a folder for pictures none.
    test::ScriptedOperator &Takes(const QString &name, const std::string &widget = "");
    /// Runs what was told so far. What went wrong is printed.
    bool Ends();

private:
    QString m_folder;  // first: the station has a folder of its own to work in
    test::BenchStation m_station;
};

}  // namespace ombrix::tour
