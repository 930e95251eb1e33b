#include "shell/start_options.h"

#include "platform/fault.h"
#include "platform/folders.h"
#include "platform/wire_trace.h"
#include "shell/simulation_switch.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

namespace ombrix {
namespace {

constexpr const char *kUsage =
    "Usage: ombrix [options]\n"
    "\n"
    "Calibrates digital panel meters. It opens with the wiring of the last session.\n"
    "\n"
    "  --simulate     begin in the simulator, as after a double click on \"Calibrator Output\"\n"
    "  --station DIR  work in DIR: settings, journal and other files lie there. Without it they lie in the program's\n"
    "                 folder, or when the program is installed or that folder isn't the user's to write, in\n"
    "                 $XDG_DATA_HOME/ombrix (~/.local/share/ombrix)\n"
    "  --trace FILE   write what is said on the lines behind what stands in FILE\n"
    "  --version      the version\n"
    "  --help         this text\n";

std::string Absolute(const QString &path)
{
    return path.isEmpty() ? "" : QDir::cleanPath(QDir::current().absoluteFilePath(path)).toStdString();
}

std::string StationTrouble(const QString &told, const std::string &path)
{
    const std::string trouble = path.empty() ? "no folder is named" : FolderTrouble(path);
    return trouble.empty() ? "" : "the station can't work in '" + told.toStdString() + "': " + trouble;
}

std::string Trouble(const QCommandLineParser &parser, const StartOptions &options)
{
    if (!parser.positionalArguments().isEmpty())
        return "'" + parser.positionalArguments()[0].toStdString() + "' is too much. ombrix --help lists the options.";
    if (parser.isSet("trace") && options.trace.empty())
        return "no file is named for the trace";
    if (const QString name = QFileInfo(parser.value("trace")).fileName(); name == kTraceFile || name == kOldTraceFile)
        return name.toStdString() + " is the station's own: name another file for the trace";
    return parser.isSet("station") ? StationTrouble(parser.value("station"), options.station) : "";
}

}  // namespace

StartOptions ReadStartOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.addOptions({{{"h", "help"}, ""},
                       {{"v", "version"}, ""},
                       {"simulate", ""},
                       {"station", "", "folder"},
                       {"trace", "", "file"}});
    StartOptions options;
    if (!parser.parse(arguments)) {
        options.trouble = parser.errorText().toStdString() + " ombrix --help lists the options.";
        return options;
    }
    options.help = parser.isSet("help");
    options.version = parser.isSet("version");
    options.simulate = parser.isSet("simulate");
    options.station = Absolute(parser.value("station"));
    options.trace = Absolute(parser.value("trace"));
    options.trouble = Trouble(parser, options);
    return options;
}

void BeginAsTold(const StartOptions &options)
{
    if (options.simulate)
        RunHandler(SwitchSimulation);
}

std::string StartUsage()
{
    return kUsage;
}

}  // namespace ombrix
