#include "shell/quit.h"

#include "links/calibrator.h"
#include "links/calibrator_line.h"
#include "links/meter_link.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "model/ini_store.h"
#include "model/settings.h"
#include "platform/clock.h"
#include "platform/fault.h"
#include "session/delays.h"
#include "session/journal.h"
#include "session/kept_remarks.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/state.h"
#include "shell/main_window.h"
#include "shell/operator_boxes.h"
#include "widgets/widgets.h"

#include <QCoreApplication>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QSocketNotifier>
#include <QStringList>
#include <QThread>

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <memory>
#include <unistd.h>

namespace ombrix {

namespace {

constexpr int kAlertMs = 10'000;

// Closing a port takes its speed away at once: what was said last must have left by then.
constexpr int kLastBytesMs = 100;

// A restart may take longer, the end of the program may not.
constexpr int kLongestRestartMs = 2500;

// No click starts anything any more, and the window shows it.
void CloseDoors()
{
    CloseHandlers();
    frmOmbrix->centralWidget()->setEnabled(false);
    CloseBoxes();
}

// Says standby and local once to whoever has its port open. While an Establish runs, and after a failed or dropped
// one, there is no session, but the calibrator may hold its output.
void ReleaseCalibrator()
{
    const ScopedFlag lastWord(Quitting);
    const int chosen = CalPort;
    if (CalPort == 0)
        CalPort = 1;  // dropped on the Setup page since: the port that is open is still the calibrator's
    CalibratorStandby();
    CalibratorLocal();
    CalPort = chosen;
}

void SpeakLastWords()
{
    if (comCAL.IsOpen()) {
        ReleaseCalibrator();
    } else if (Established) {
        CalibratorStandby();
        CalibratorLocal();
    }
    if (Established) {
        WaitOutRestart(kLongestRestartMs);  // a meter that restarts hears nothing
        if (const auto words = RecordOfTab(CalibTab).lastWords)
            words();
        WriteDisplaySetupForward(1);
    }
    if (comCAL.IsOpen() || comDPM.IsOpen())
        DelayAlways(kLastBytesMs);
}

// ---- what must not end unsaid ----

QPointer<QMessageBox> alertBox;

// What the operator could not know otherwise when the window has gone, one thing after the other.
QStringList PartingWords(const std::string &alert)
{
    QStringList words;
    for (const std::string &each : {alert, IniDirty && IniReady ? KeptRemarkOn(Subject::Settings) : std::string()})
        if (!each.empty())
            words += Caption(each);
    if (JournalIsBehind())
        words += "What happened last is not recorded: the journal can't be written.";
    return words;
}

// A box that nobody need answer: the program ends without.
void ShowAlertBox(const QString &words)
{
    QMessageBox box(QMessageBox::Critical, "Ombrix", words, QMessageBox::Ok, frmOmbrix);
    box.setTextFormat(Qt::PlainText);
    box.setWindowModality(Qt::NonModal);
    alertBox = &box;
    box.show();
    for (const Deadline end(kAlertMs); box.isVisible() && !end.Passed();)
        PumpEvents(end.LeftMs());
}

void TellLast(const QStringList &words, QuitBy by)
{
    for (const QString &each : words)
        std::cerr << "ombrix: " << each.toStdString() << std::endl;
    if (by == QuitBy::Operator && !words.isEmpty())
        ShowAlertBox(words.join("\n"));
}

// The question about what the page in front would lose. Whoever quits while it stands has answered it.
bool MayEnd(QuitBy by)
{
    static bool asking = false;
    if (by == QuitBy::Signal || asking || Unsaved().empty())
        return true;
    const ScopedFlag scope(asking);
    return AskOperator(Unsaved() + "\r\nQuit without saving?", "Quit") && !Quitting;
}

void SaveSettings()
{
    SaveGains();
    SaveCalibValues();
}

// Whatever fails in one part of the end, the rest follows.
void Safely(void (*part)())
{
    try {
        part();
    } catch (const std::exception &) {
        // Nobody is left to be told.
    }
}

// ---- signals ----

std::array<int, 2> signalPipe = {-1, -1};
std::unique_ptr<QSocketNotifier> signalNotifier;

extern "C" void HandleSignal(int)
{
    const int before = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(signalPipe[1], &byte, 1);
    errno = before;
}

void ReadSignal()
{
    char byte = 0;
    while (read(signalPipe[0], &byte, 1) == 1) {
    }
    Quit(QuitBy::Signal);
}

void InstallHandler(void (*handler)(int))
{
    struct sigaction action {
    };
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGTERM, SIGINT, SIGHUP})  // the last when the terminal or the desktop session goes
        sigaction(number, &action, nullptr);
}

}  // namespace

void Quit(QuitBy by)
{
    if (by == QuitBy::Signal) {
        SilenceBoxes(true);
        CloseBoxes();
        if (alertBox)
            alertBox->hide();
    }
    if (Quitting || !MayEnd(by))
        return;
    Quitting = true;
    Abort = false;
    const std::string alert = AlertText();
    {
        const NoShutdownScope lastWords;
        CloseDoors();
        Safely(SpeakLastWords);
        CloseLinks();
        Safely(SaveSettings);
        TellLast(PartingWords(alert), by);
    }
    RequestShutdown();
    frmOmbrix->hide();
    if (QThread::currentThread()->loopLevel() > 0)
        QCoreApplication::exit(0);
}

void ReleaseLinks()
{
    const bool mayStand = GetLiveOutput().MayStand;
    if (comCAL.IsOpen()) {
        ReleaseCalibrator();
        DelayAlways(kLastBytesMs);
    }
    CloseLinks();
    if (!mayStand)
        ForgetLiveOutput();  // nobody waits for the answer to a standby that changed nothing
}

void WatchSignals()
{
    if (pipe2(signalPipe.data(), O_NONBLOCK | O_CLOEXEC) != 0)
        return;  // the signals then end the program at once, as for any other
    signalNotifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(signalNotifier.get(), &QSocketNotifier::activated, signalNotifier.get(), ReadSignal);
    InstallHandler(HandleSignal);
}

void StopWatchingSignals()
{
    InstallHandler(SIG_DFL);
    signalNotifier.reset();
    for (int &end : signalPipe) {
        if (end >= 0)
            close(end);
        end = -1;
    }
}

}  // namespace ombrix
