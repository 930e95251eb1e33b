#include "session/journal.h"

#include "platform/append_file.h"
#include "platform/clock.h"
#include "platform/fault.h"
#include "session/journal_reader.h"
#include "session/kept_remarks.h"
#include "session/state.h"

#include <QDateTime>
#include <QDir>
#include <QUuid>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <deque>
#include <exception>
#include <iterator>
#include <unistd.h>
#include <utility>
#include <vector>

namespace ombrix {
namespace {

constexpr const char *kEnd = "end";

constexpr std::int64_t kLastMoment = 253'402'300'799'999;  // the end of the year 9999

// An event that is not on file yet. Its place in the chain comes with the file.
struct Waiting {
    JournalEvent event;
    std::string content;
};

// Events that found no room in memory.
struct Lost {
    std::size_t count = 0;
    std::string first;  // when, in UTC
    std::string last;
};

struct Journal {
    bool open = false;
    std::string folder;
    std::string station;
    std::string version;

    std::string path;                 // of the file being written, "" when there is none
    std::optional<std::int64_t> end;  // its size as it was left; nothing: nobody has looked yet
    bool insideLine = false;          // it ends in a broken line

    std::int64_t seq = 0;  // of the last line
    std::string lastHash;  // the last line's
    bool goodbye = true;   // of the run before

    std::deque<Waiting> waiting;
    std::size_t waitingSize = 0;
    Lost lost;
    bool refused = false;  // the last try to write what waits did not come to its end
    bool writing = false;  // listeners may record: that waits until what they were told of is dealt with
};

struct Listener {
    int number;
    JournalListener listener;
};

Journal journal;
AppendFile file;
bool remarkStands = false;
std::string visit;
std::vector<Listener> listeners;
int lastListener = 0;
bool inUse = true;
std::function<std::int64_t()> wallClock;

std::string Uuid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

// As ISO 8601 writes it: "2026-11-22T01:39:00.123Z". By hand, because QDateTime takes a third of a whole Record for it.
std::string UtcNow()
{
    using namespace std::chrono;
    const std::int64_t now = wallClock ? wallClock() : QDateTime::currentMSecsSinceEpoch();
    const sys_time<milliseconds> moment{milliseconds(std::clamp<std::int64_t>(now, 0, kLastMoment))};
    const auto midnight = floor<days>(moment);
    const year_month_day date{midnight};
    const hh_mm_ss<milliseconds> time{moment - midnight};
    std::array<char, 96> text{};  // room for any int in each place
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    return text.data();
}

// The other way round; the end of all times for what tells no moment.
std::int64_t MomentOf(const std::string &utc)
{
    const QDateTime moment = QDateTime::fromString(QString::fromStdString(utc), Qt::ISODateWithMs);
    return moment.isValid() ? moment.toMSecsSinceEpoch() : kLastMoment;
}

// ---- the file ----

// Goes on behind an event of the file, unless more has been written since.
void JoinAt(const std::optional<JournalEvent> &last)
{
    if (!last || last->seq <= journal.seq)
        return;
    journal.seq = last->seq;
    journal.lastHash = last->hash;
}

// Opens the month's file unless it is open and still in its place.
bool OpenFile(const std::string &path)
{
    if (path == journal.path && file.IsInPlace())
        return true;
    journal.path.clear();
    journal.end.reset();
    if (!MakeFolder(JournalFolder(journal.folder)) || !file.Open(path))
        return false;
    journal.path = path;
    return true;
}

// Looks at how the file ends, unless it ends as it was left. A file that was opened anew may not be the last of all.
bool FindEnd(std::optional<JournalEvent> &last)
{
    if (journal.end == file.Size())
        return true;
    auto tail = ReadJournalTail(file);
    if (!tail)
        return false;
    if (!journal.end)
        JoinAt(LastJournalEvent(journal.folder));
    JoinAt(tail->last);
    journal.end = tail->size;
    journal.insideLine = tail->insideLine;
    last = std::move(tail->last);
    return true;
}

// Puts an event at the end of the file, which is locked, and completes it with what its line says. False: it is not
// there, or not whole.
bool WriteAtEnd(Waiting &waiting)
{
    JournalEvent &event = waiting.event;
    std::optional<JournalEvent> last;
    if (!FindEnd(last))
        return false;
    if (last && last->id == event.id) {  // the try before left all but the line end
        event.seq = last->seq;
        event.prev = last->prev;
        event.hash = last->hash;
        return true;
    }
    event.seq = journal.seq + 1;
    event.prev = journal.lastHash;
    const std::string line = JournalLine(event.seq, waiting.content, event.prev);
    const std::string bytes = (journal.insideLine ? "\n" : "") + line + "\n";
    if (!file.Append(bytes)) {
        journal.path.clear();  // what stands there now, the next try finds out
        return false;
    }
    event.hash = HashOfLine(line);
    *journal.end += static_cast<std::int64_t>(bytes.size());
    journal.insideLine = false;
    journal.seq = event.seq;
    journal.lastHash = event.hash;
    return true;
}

// The same in the file of the event's month, while no other program looks for its end.
bool Write(Waiting &waiting)
{
    if (!OpenFile(JournalFolder(journal.folder) + "/" + JournalMonth(waiting.event.utc)) || !file.Lock())
        return false;
    struct Unlocking {
        ~Unlocking() { file.Unlock(); }
    } const unlocking;
    return WriteAtEnd(waiting);
}

// ---- what waits ----

Waiting NewEvent(std::string_view kind, const JournalFields &fields)
{
    JournalEvent event{
        0,      Uuid(), UtcNow(), NowMicros() / 1000, journal.station, journal.version, visit, std::string(kind),
        fields, "",     ""};
    std::string content = JournalContent(event);
    return {std::move(event), std::move(content)};
}

void CountLost(const std::string &utc)
{
    if (journal.lost.count++ == 0)
        journal.lost.first = utc;
    journal.lost.last = utc;
}

// Puts an event behind those that wait. What was lost before it is told where it is missing, so both must find room.
void TakeIn(std::string_view kind, const JournalFields &fields)
{
    const Lost &lost = journal.lost;
    std::vector<Waiting> taken;
    if (lost.count > 0)
        taken.push_back(NewEvent("lost", {{"count", lost.count}, {"first", lost.first}, {"last", lost.last}}));
    taken.push_back(NewEvent(kind, fields));
    std::size_t size = 0;
    for (const Waiting &one : taken)
        size += one.content.size();
    if (journal.waitingSize + size > kJournalMemory)
        return CountLost(taken.back().event.utc);
    journal.lost = {};
    journal.waitingSize += size;
    std::move(taken.begin(), taken.end(), std::back_inserter(journal.waiting));
}

void Tell(const JournalListener &listener, const JournalEvent &event)
{
    try {
        listener(event);
    } catch (const std::exception &fault) {
        // The outlet may show a box and wait: not in here.
        CallAfter(0, [words = std::string(fault.what())] { RunHandler([&words] { FaultOutlet(words); }); });
    } catch (const Shutdown &) {
        // On its way down: the next pump throws again.
    }
}

void TellListeners(const JournalEvent &event)
{
    std::vector<int> numbers;  // listeners may come and go meanwhile
    numbers.reserve(listeners.size());
    for (const Listener &one : listeners)
        numbers.push_back(one.number);
    for (const int number : numbers) {
        const auto one = std::find_if(listeners.begin(), listeners.end(),
                                      [number](const Listener &other) { return other.number == number; });
        if (one == listeners.end())
            continue;
        const JournalListener listener = one->listener;
        Tell(listener, event);
    }
}

// Writes what waits, oldest first, until the system refuses. True when nothing waits any more.
bool WriteWaiting()
{
    const ScopedFlag writing(journal.writing);
    while (!journal.waiting.empty() && Write(journal.waiting.front())) {
        const Waiting done = std::move(journal.waiting.front());
        journal.waiting.pop_front();
        journal.waitingSize -= done.content.size();
        TellListeners(done.event);
    }
    journal.refused = !journal.waiting.empty();
    return !journal.refused;
}

void ShowWhetherBehind()
{
    if (JournalIsBehind() == remarkStands)
        return;
    remarkStands = !remarkStands;
    KeepRemarkOn(Subject::Journal, remarkStands ? "not recorded" : "");
}

}  // namespace

void OpenJournal(const std::string &folder, const std::string &station, const std::string &version,
                 const RunBefore &before)
{
    if (!inUse)
        return;
    file.Close();
    visit.clear();
    journal = {};
    journal.open = true;
    journal.folder = QDir(QString::fromStdString(folder)).absolutePath().toStdString();
    journal.station = station;
    journal.version = version;

    const auto last = LastJournalEvent(journal.folder);
    JoinAt(last);
    journal.goodbye = !last || last->kind == kEnd || !before.isOver || before.goodbyeMs >= MomentOf(last->utc);
    Record("start", {{"folder", journal.folder}, {"pid", getpid()}});
    if (!journal.goodbye)
        Record("no goodbye", {{"seq", last->seq}, {"utc", last->utc}, {"kind", last->kind}});
}

bool LastRunEndedWithoutGoodbye()
{
    return !journal.goodbye;
}

std::size_t CloseJournal()
{
    Record(kEnd, {});
    const std::size_t gone = journal.waiting.size() + journal.lost.count;
    file.Close();
    journal = {};
    return gone;
}

void Record(std::string_view kind, const JournalFields &fields)
{
    if (!journal.open || !inUse)
        return;
    try {
        if (journal.writing)
            return TakeIn(kind, fields);
        const bool works = WriteWaiting();
        TakeIn(kind, fields);
        if (works)
            WriteWaiting();
    } catch (const std::exception &) {
        CountLost("");  // no memory
    }
    ShowWhetherBehind();
}

void OpenVisit(const JournalFields &meter)
{
    visit = Uuid();
    Record("visit", meter);
}

std::string CurrentVisit()
{
    return visit;
}

int ListenToJournal(JournalListener listener)
{
    listeners.push_back({++lastListener, std::move(listener)});
    return lastListener;
}

void StopListening(int number)
{
    std::erase_if(listeners, [number](const Listener &one) { return one.number == number; });
}

bool JournalIsBehind()
{
    return journal.refused || journal.lost.count > 0;
}

void UseJournal(bool on)
{
    inUse = on;
}

void UseWallClock(std::function<std::int64_t()> clock)
{
    wallClock = std::move(clock);
}

}  // namespace ombrix
