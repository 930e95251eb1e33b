// Starts the station in its folder and runs it until Quit.

#include "links/wire_text.h"
#include "platform/crash_note.h"
#include "platform/folders.h"
#include "platform/safe_file.h"
#include "session/state.h"
#include "shell/folder_note.h"
#include "shell/quit.h"
#include "shell/start_options.h"
#include "shell/station.h"
#include "shell/trace_start.h"
#include "version.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <string>

namespace {

using namespace ombrix;

constexpr int kWrongCall = 2;

int Refuse(const std::string &why)
{
    std::fprintf(stderr, "ombrix: %s\n", why.c_str());
    return kWrongCall;
}

// The toolkit isn't asked yet: it would end a program that finds no display.
StartOptions OptionsOf(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    return ReadStartOptions(arguments);
}

// From here on the station's folder is the current one.
void EnterStationFolder(const std::string &told)
{
    const std::string program = QCoreApplication::applicationDirPath().toStdString();
    const StationFolder folder =
        told.empty() ? FindStationFolder(program, UserDataFolder()) : StationFolder{told, told == program, ""};
    TellStationFolder(folder);
    LookForSamplesIn(InstalledSamples(program));
    QDir::setCurrent(QString::fromStdString(folder.path));
}

int RunStation(int argc, char **argv, const StartOptions &options)
{
    QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    QApplication::setDesktopFileName("ombrix");
    QApplication::setQuitOnLastWindowClosed(false);  // the last words come first, then the end
    EnterStationFolder(options.station);
    WatchCrashes((QDir::currentPath() + "/" + kCrashFile).toStdString());
    const bool firstStart = StateOfFile("Ombrix.ini") == FileState::Missing;
    FillOutlets();
    RegisterPages();
    OpenStation();
    BeginTrace(".");
    OpenGuard((QCoreApplication::applicationDirPath() + "/ombrix-guard").toStdString());
    RemarkOnFolder(firstStart);
    BeginAsTold(options);
    WatchSignals();
    const int result = Quitting ? 0 : QApplication::exec();  // nothing would end it after the last words
    StopWatchingSignals();
    CloseStation();
    return result;
}

}  // namespace

int main(int argc, char **argv)
{
    const StartOptions options = OptionsOf(argc, argv);
    if (options.help || options.version) {
        std::fputs(options.help ? StartUsage().c_str() : "ombrix " OMBRIX_VERSION "\n", stdout);
        return 0;
    }
    if (!options.trouble.empty())
        return Refuse(options.trouble);
    if (!options.trace.empty())
        if (const std::string trouble = WriteTraceTo(options.trace); !trouble.empty())
            return Refuse("the trace can't be written to " + options.trace + ": " + trouble);
    return RunStation(argc, argv, options);
}
