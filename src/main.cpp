// Starts the station in the program's own folder and runs it until Quit.

#include "session/state.h"
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
    ombrix::OpenGuard((QCoreApplication::applicationDirPath() + "/ombrix-guard").toStdString());
    ombrix::WatchSignals();
    const int result = ombrix::Quitting ? 0 : QApplication::exec();  // nothing would end it after the last words
    ombrix::StopWatchingSignals();
    ombrix::CloseStation();
    return result;
}
