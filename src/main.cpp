// Starts the station in the program's own folder and runs it until Quit.

#include "links/wire_text.h"
#include "platform/crash_note.h"
#include "session/state.h"
#include "shell/quit.h"
#include "shell/station.h"
#include "shell/trace_start.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>

#include <cstdio>

namespace {

constexpr int kWrongCall = 2;

int Refuse(const QString &why)
{
    std::fprintf(stderr, "ombrix: %s\n", qPrintable(why));
    return kWrongCall;
}

// 0, or what the program ends with because it can't be started as it was told to.
int TakeOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Calibrates digital panel meters.");
    parser.addHelpOption();
    parser.addOption({"trace", "Write what is said on the lines behind what stands in <file>.", "file"});
    if (!parser.parse(arguments))
        return Refuse(parser.errorText() + " ombrix --help lists the options.");
    if (parser.isSet("help"))
        parser.showHelp();
    if (!parser.positionalArguments().isEmpty())
        return Refuse(
            QString("'%1' is too much. ombrix --help lists the options.").arg(parser.positionalArguments()[0]));
    if (!parser.isSet("trace"))
        return 0;
    const std::string trouble =
        ombrix::WriteTraceTo(QDir::current().absoluteFilePath(parser.value("trace")).toStdString());
    if (!trouble.empty())
        return Refuse(QString("the trace can't be written to %1: %2").arg(parser.value("trace"), trouble.c_str()));
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (const int wrong = TakeOptions(QApplication::arguments()))
        return wrong;
    QApplication::setStyle("Fusion");
    QApplication::setQuitOnLastWindowClosed(false);  // the last words come first, then the end
    QDir::setCurrent(QCoreApplication::applicationDirPath());
    ombrix::WatchCrashes((QDir::currentPath() + "/" + ombrix::kCrashFile).toStdString());
    ombrix::FillOutlets();
    ombrix::RegisterPages();
    ombrix::OpenStation();
    ombrix::BeginTrace(".");
    ombrix::OpenGuard((QCoreApplication::applicationDirPath() + "/ombrix-guard").toStdString());
    ombrix::WatchSignals();
    const int result = ombrix::Quitting ? 0 : QApplication::exec();  // nothing would end it after the last words
    ombrix::StopWatchingSignals();
    ombrix::CloseStation();
    return result;
}
