// The whole station in its real window, on virtual time, in an empty folder of its own.
#pragma once

#include "support/positions.h"
#include "support/scripted_operator.h"
#include "support/virtual_clock.h"

#include <QString>
#include <QTemporaryDir>

namespace ombrix::test {

/// An empty folder that is the current one while it stands.
class WorkFolder
{
public:
    WorkFolder();
    ~WorkFolder();

private:
    QTemporaryDir m_folder;
    QString m_before;
};

/// Whether the window draws itself. It takes most of a test's time, so only what takes pictures asks for it.
enum class Painted { No, Yes };

/// The station without instruments: what a double click on "Calibrator Output" makes a simulation.
class Station
{
public:
    explicit Station(Painted painted = Painted::No);
    ~Station();
    Station(const Station &) = delete;
    Station &operator=(const Station &) = delete;

    VirtualClock clock;
    WorkFolder folder;
    ScriptedOperator person;

    /// Switches to simulation and establishes.
    bool EstablishesInSimulation();
};

/// What main does: fills the outlets, registers the pages, opens the window.
void OpenWholeStation(Painted painted = Painted::Yes);

/// Setup can be clicked, so nothing is in work.
bool NavigationIsFree();

}  // namespace ombrix::test
