#include "support/station.h"

#include "session/state.h"
#include "shell/main_window.h"
#include "shell/station.h"

#include <QCoreApplication>
#include <QDir>
#include <QMainWindow>

namespace ombrix::test {

void OpenWholeStation(Painted painted)
{
    FillOutlets();
    RegisterPages();
    OpenStation();
    frmOmbrix->resize(FirstSize(QSize(1920, 1080)));  // the screen without a screen is a small one
    QCoreApplication::sendPostedEvents();
    frmOmbrix->setUpdatesEnabled(painted == Painted::Yes);
}

bool NavigationIsFree()
{
    return ScriptedOperator::IsEnabled("cmdSetup");
}

WorkFolder::WorkFolder() : m_before(QDir::currentPath())
{
    QDir::setCurrent(m_folder.path());
}

WorkFolder::~WorkFolder()
{
    QDir::setCurrent(m_before);
}

Station::Station(Painted painted) : person(&clock)
{
    OpenWholeStation(painted);
}

Station::~Station()
{
    CloseStation();
}

bool Station::EstablishesInSimulation()
{
    person.DoubleClicks("lblCalOut").Clicks("cmdEstablish").WaitsUntil("it is established", [] { return Established; });
    return person.Runs();
}

}  // namespace ombrix::test
