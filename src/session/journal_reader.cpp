#include "session/journal_reader.h"

#include "platform/append_file.h"

#include <QDir>

#include <algorithm>
#include <iterator>
#include <utility>

namespace ombrix {
namespace {

constexpr std::size_t kPiece = std::size_t{64} << 10;

// The more of a line is at hand, the more is read at once.
std::size_t NextPiece(std::size_t atHand)
{
    return std::max(kPiece, atHand);
}

// Stands for the part of a too long line that was thrown away, so that the rest is never taken for an event.
constexpr const char *kNoEvent = "?";

// Paths of the months, oldest first.
std::vector<std::string> MonthsOf(const std::string &folder)
{
    const std::string journal = JournalFolder(folder);
    std::vector<std::string> paths;
    const QStringList pattern("[0-9][0-9][0-9][0-9]-[0-9][0-9].jsonl");
    for (const QString &name : QDir(QString::fromStdString(journal)).entryList(pattern, QDir::Files, QDir::Name))
        paths.push_back(journal + "/" + name.toStdString());
    return paths;
}

// A file line by line, a piece at a time: a journal grows longer than one likes to hold in memory.
class Lines
{
public:
    explicit Lines(const AppendFile &file) : m_file(file) {}

    /// The next line without its end; nothing behind the last one.
    std::optional<std::string> Next()
    {
        for (;;) {
            const std::size_t end = m_piece.find('\n', m_read);
            if (end != std::string::npos)
                return TakeUntil(end, end + 1);
            std::string more = m_file.ReadAt(m_place, NextPiece(m_piece.size()));
            if (more.empty())
                return m_read == m_piece.size() ? std::nullopt
                                                : std::optional(TakeUntil(m_piece.size(), m_piece.size()));
            m_place += static_cast<std::int64_t>(more.size());
            m_piece.erase(0, m_read);
            m_read = 0;
            if (m_piece.size() > kLongestJournalLine)
                m_piece = kNoEvent;
            m_piece += more;
        }
    }

private:
    std::string TakeUntil(std::size_t end, std::size_t next)
    {
        std::string line = m_piece.substr(m_read, end - m_read);
        m_read = next;
        return line;
    }

    const AppendFile &m_file;
    std::int64_t m_place = 0;  // behind what was read of the file
    std::string m_piece;
    std::size_t m_read = 0;  // of the piece
};

// The last whole event among the complete lines of `text`, whose first line may have begun before it and is left there.
std::optional<JournalEvent> TakeLastEvent(std::string &text)
{
    for (;;) {
        const std::size_t end = text.rfind('\n');
        if (end == std::string::npos)
            return std::nullopt;
        auto event = ParseJournalLine(std::string_view(text).substr(end + 1));
        text.resize(end);
        if (event)
            return event;
    }
}

}  // namespace

std::string JournalFolder(const std::string &folder)
{
    return folder + "/Journal";
}

std::string JournalMonth(const std::string &utc)
{
    return utc.substr(0, 7) + ".jsonl";
}

std::vector<JournalEvent> ReadJournalFile(const std::string &path)
{
    std::vector<JournalEvent> events;
    AppendFile file;
    if (!file.OpenToRead(path))
        return events;
    Lines lines(file);
    while (const auto line = lines.Next())
        if (auto event = ParseJournalLine(*line))
            events.push_back(std::move(*event));
    return events;
}

std::vector<JournalEvent> ReadJournal(const std::string &folder)
{
    std::vector<JournalEvent> events;
    for (const std::string &path : MonthsOf(folder)) {
        std::vector<JournalEvent> month = ReadJournalFile(path);
        std::move(month.begin(), month.end(), std::back_inserter(events));
    }
    // Where the system's clock stepped back over a month, an older file goes on behind a newer one.
    std::stable_sort(events.begin(), events.end(),
                     [](const JournalEvent &a, const JournalEvent &b) { return a.seq < b.seq; });
    return events;
}

std::optional<std::size_t> ChainTrouble(const std::vector<JournalEvent> &events)
{
    for (std::size_t place = 0; place < events.size(); ++place) {
        const JournalEvent &event = events[place];
        if (place == 0 && event.seq != 1)
            continue;
        if (event.prev != (place == 0 ? "" : events[place - 1].hash))
            return place;
    }
    return std::nullopt;
}

std::optional<JournalTail> ReadJournalTail(const AppendFile &file)
{
    const std::int64_t size = file.Size();
    if (size < 0)
        return std::nullopt;
    JournalTail tail;
    tail.size = size;
    std::string text;  // from `place` up to the lines that were looked at
    for (std::int64_t place = size; place > 0 && !tail.last;) {
        const auto count = static_cast<std::size_t>(std::min<std::int64_t>(NextPiece(text.size()), place));
        place -= static_cast<std::int64_t>(count);
        std::string piece = file.ReadAt(place, count);
        if (piece.size() != count)
            return std::nullopt;
        if (place + static_cast<std::int64_t>(count) == size)
            tail.insideLine = piece.back() != '\n';
        text.insert(0, piece);
        tail.last = TakeLastEvent(text);
        if (place == 0 && !tail.last)
            tail.last = ParseJournalLine(text);
        if (text.size() > kLongestJournalLine)
            text = kNoEvent;
    }
    return tail;
}

std::optional<JournalEvent> LastJournalEvent(const std::string &folder)
{
    std::optional<JournalEvent> last;
    for (const std::string &path : MonthsOf(folder)) {
        AppendFile file;
        const auto tail = file.OpenToRead(path) ? ReadJournalTail(file) : std::nullopt;
        if (tail && tail->last && (!last || tail->last->seq > last->seq))
            last = tail->last;
    }
    return last;
}

}  // namespace ombrix
