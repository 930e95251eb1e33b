// Starts the station in the program's own folder and runs it until Quit.

#include "shell/quit.h"
#include "shell/station.h"

#include <QApplication>
#include <QDir>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    QApplication::setQuitOnLastWindowClosed(false);  // the last words come first, then the end
    QDir::setCurrent(QCoreApplication::applicationDirPath());
    ombrix::FillOutlets();
    ombrix::RegisterPages();
    ombrix::OpenStation();
    ombrix::WatchSignals();
    const int result = QApplication::exec();
    ombrix::StopWatchingSignals();
    ombrix::CloseStation();
    return result;
}
