#include "shell/trace_start.h"

#include "links/wire_text.h"
#include "platform/crash_note.h"
#include "platform/safe_file.h"
#include "platform/wire_trace.h"
#include "session/kept_remarks.h"
#include "session/outlets.h"

#include <QDir>

#include <cstdio>

namespace ombrix {
namespace {

constexpr const char *kOldCrashFile = "Ombrix.crash.old";

std::string traceFolder;  // "" while nothing is traced
bool oldIsNews = false;

// The note of the run before, out of the way of the next crash. True when there was one.
bool TakeCrashNote()
{
    const std::string note = traceFolder + "/" + kCrashFile;
    return StateOfFile(note) == FileState::Readable &&
           std::rename(note.c_str(), (traceFolder + "/" + kOldCrashFile).c_str()) == 0;
}

void TellNotKept(const std::string &why)
{
    KeepRemarkOn(Subject::Trace, "The trace is not kept in a file: " + why);
}

void Offer(bool trace, bool note)
{
    if (!trace && !note)
        return;
    std::string words = "The last run ended without goodbye: ";
    if (trace)
        words += std::string("F12 shows its trace (") + kOldTraceFile + ")";
    if (note)
        words += std::string(trace ? ", " : "") + kOldCrashFile + " tells where it stood";
    outlets.showRemark(words);
}

}  // namespace

void BeginTrace(const std::string &folder)
{
    traceFolder = QDir(QString::fromStdString(folder)).absolutePath().toStdString();
    const TraceOpened opened = OpenTrace(traceFolder);
    oldIsNews = opened.oldKept;
    if (!opened.trouble.empty())
        TellNotKept(opened.trouble);
    UseTraceTrouble(TellNotKept);
    Offer(opened.oldKept, TakeCrashNote());
}

void EndTrace()
{
    EndTraceText();
    CloseTrace();
    UseTraceTrouble(nullptr);
    traceFolder.clear();
    oldIsNews = false;
}

std::string OldTracePath()
{
    const std::string path = traceFolder + "/" + kOldTraceFile;
    return !traceFolder.empty() && StateOfFile(path) == FileState::Readable ? path : "";
}

bool OldTraceIsNews()
{
    return oldIsNews;
}

}  // namespace ombrix
