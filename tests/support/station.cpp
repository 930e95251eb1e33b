#include "support/station.h"

#include "session/state.h"
#include "shell/station.h"

#include <QDir>

namespace ombrix::test {

void OpenWholeStation()
{
    FillOutlets();
    RegisterPages();
    OpenStation();
}

WorkFolder::WorkFolder() : m_before(QDir::currentPath())
{
    QDir::setCurrent(m_folder.path());
}

WorkFolder::~WorkFolder()
{
    QDir::setCurrent(m_before);
}

Station::Station() : person(&clock)
{
    OpenWholeStation();
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
