#include "platform/wire_trace.h"

#include "platform/file_faults.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace ombrix {
namespace {

constexpr std::string_view kMagic = "OmbTrac1";
constexpr std::size_t kAlign = 8;
constexpr std::size_t kLongest = 4096;  // bytes of one record; more becomes several
constexpr std::size_t kTail = 40;       // records that a crash tells

// What the file begins with. Positions count the bytes that were ever written and never wrap.
struct Header {
    std::array<char, 8> magic;
    std::uint64_t capacity;  // of the ring behind it
    std::uint64_t oldest;    // the oldest whole record
    std::uint64_t next;      // where the next one comes
    std::uint64_t goodbye;   // when it was said, in microseconds since 1970
};
constexpr std::size_t kCapacity = kTraceFileBytes - sizeof(Header);

// What a record begins with; its bytes follow, filled up to the next multiple of eight.
struct Head {
    std::uint32_t size;
    std::uint16_t check;
    TraceLine line;
    ByteWay way;
    std::int64_t micros;
};
static_assert(sizeof(Header) % kAlign == 0 && sizeof(Head) % kAlign == 0 && kCapacity % kAlign == 0);

// A page of an older round that a power cut left in place of a newer one is told by its place.
std::uint16_t CheckOf(std::uint64_t position, std::uint32_t size)
{
    return static_cast<std::uint16_t>((position / kAlign) * 40503 + std::uint64_t{size} * 31 + 0x5A5A);
}

std::uint64_t RoomOf(std::size_t size)
{
    return sizeof(Head) + (size + kAlign - 1) / kAlign * kAlign;
}

// The bytes of a ring, of which the end may be missing.
struct Ring {
    const char *bytes;
    std::size_t length;  // of what is there
    std::uint64_t capacity;
};

// False when not all of it is there.
bool Get(const Ring &ring, std::uint64_t position, char *out, std::size_t count)
{
    const auto place = static_cast<std::size_t>(position % ring.capacity);
    const std::size_t first = std::min<std::size_t>(count, ring.capacity - place);
    if (place + first > ring.length || count - first > ring.length)
        return false;
    std::memcpy(out, ring.bytes + place, first);
    std::memcpy(out + first, ring.bytes, count - first);
    return true;
}

// The head of the record at a position; false where none can stand.
bool GetHead(const Ring &ring, std::uint64_t position, std::uint64_t end, Head &head)
{
    return end - position >= sizeof(Head) && Get(ring, position, reinterpret_cast<char *>(&head), sizeof head) &&
           head.check == CheckOf(position, head.size) && head.size <= kLongest && RoomOf(head.size) <= end - position &&
           head.line <= TraceLine::Calibrator && head.way <= ByteWay::Mark;
}

Header *header = nullptr;
char *ring = nullptr;
int handle = -1;                         // of the file, which is locked
bool inFile = false;                     // the ring is in it
volatile std::sig_atomic_t refused = 0;  // the system refused a touch of the file: memory stands in its place

struct Follower {
    int number;
    TraceFollower follower;
};
std::vector<Follower> followers;
int lastFollower = 0;
std::function<std::int64_t()> traceClock;
std::function<void(const std::string &)> traceTrouble;

std::uint64_t Position(std::uint64_t &place)
{
    return std::atomic_ref(place).load(std::memory_order_acquire);
}

void SetPosition(std::uint64_t &place, std::uint64_t position)
{
    std::atomic_ref(place).store(position, std::memory_order_release);
}

void Put(std::uint64_t position, const char *bytes, std::size_t count)
{
    const auto place = static_cast<std::size_t>(position % kCapacity);
    const std::size_t first = std::min(count, kCapacity - place);
    std::memcpy(ring + place, bytes, first);
    std::memcpy(ring, bytes + first, count - first);
}

Ring OwnRing()
{
    return {ring, kCapacity, kCapacity};
}

void BeginRing(void *memory)
{
    header = static_cast<Header *>(memory);
    ring = static_cast<char *>(memory) + sizeof(Header);
    *header = {{}, kCapacity, 0, 0, 0};
    std::memcpy(header->magic.data(), kMagic.data(), kMagic.size());
}

void LeaveMemory()
{
    if (header)
        munmap(header, kTraceFileBytes);
    header = nullptr;
    ring = nullptr;
    inFile = false;
    refused = 0;
}

void Drop()
{
    LeaveMemory();
    if (handle >= 0)
        close(handle);
    handle = -1;
}

void BeginRingInMemory()
{
    void *memory = mmap(nullptr, kTraceFileBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory != MAP_FAILED)
        BeginRing(memory);
}

// Of a file that somebody else has cut short nothing is mapped any more: a touch would end the program.
bool FileIsWhole() noexcept
{
    struct stat found {
    };
    return !inFile || (fstat(handle, &found) == 0 && found.st_size >= static_cast<off_t>(kTraceFileBytes));
}

// Whether there is a ring to be touched. Where its file can't be, a new one begins in memory.
bool RingStands()
{
    const bool whole = FileIsWhole();
    if (!header || (whole && refused == 0))
        return header != nullptr;
    LeaveMemory();  // the file stays locked for its goodbye: it is the trace of a run that goes on
    BeginRingInMemory();
    if (traceTrouble)
        traceTrouble(whole ? "its disk takes no more of it" : "somebody else has cut it short");
    return header != nullptr;
}

// The oldest ones go until a record finds room.
void MakeRoom(std::uint64_t next, std::uint64_t room)
{
    std::uint64_t oldest = header->oldest;
    Head head{};
    while (next + room - oldest > kCapacity) {
        if (!GetHead(OwnRing(), oldest, next, head))
            oldest = next;  // somebody else has written into the file: what is in it is lost
        else
            oldest += RoomOf(head.size);
        SetPosition(header->oldest, oldest);
        if (oldest == next)
            break;
    }
}

std::int64_t TraceMicros()
{
    if (traceClock)
        return traceClock();
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(since).count();
}

void Append(const Head &head, const char *bytes)
{
    const std::uint64_t next = header->next;
    const std::uint64_t room = RoomOf(head.size);
    MakeRoom(next, room);
    Head whole = head;
    whole.check = CheckOf(next, head.size);
    Put(next, reinterpret_cast<const char *>(&whole), sizeof whole);
    Put(next + sizeof whole, bytes, head.size);
    SetPosition(header->next, next + room);
}

// ---- the file ----

// What a trace begins with; false for what is none.
bool ReadHeader(int file, Header &found)
{
    return pread(file, &found, sizeof found, 0) == sizeof found &&
           std::string_view(found.magic.data(), found.magic.size()) == kMagic;
}

// Its records are worth keeping: it ended without goodbye and holds some.
bool IsOfABrokenRun(int file)
{
    Header found{};
    return ReadHeader(file, found) && found.goodbye == 0 && found.next > found.oldest;
}

// Puts the file of the run before out of the way. False, with the system's words, when that can't be done.
bool LeaveOldFile(const std::string &path, const std::string &kept, TraceOpened &opened)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0 && errno == ENOENT)
        return true;
    // Whoever writes into it holds it.
    bool done = file >= 0 && flock(file, LOCK_EX | LOCK_NB) == 0;
    if (done && IsOfABrokenRun(file)) {
        done = rename(path.c_str(), kept.c_str()) == 0;
        opened.oldKept = done;
    } else if (done) {
        done = unlink(path.c_str()) == 0;
    }
    if (!done)
        opened.trouble = errno == EWOULDBLOCK ? "another Ombrix has it" : std::strerror(errno);
    if (file >= 0)
        close(file);
    return done;
}

// Zeros into all of it, so that a later touch finds its page there and room on the disk: on most file systems.
bool Fill(int file)
{
    static constexpr std::size_t kPiece = 1 << 16;
    const std::vector<char> zeros(kPiece);
    for (std::size_t place = 0; place < kTraceFileBytes; place += kPiece)
        if (Fails(FileCall::Write) || pwrite(file, zeros.data(), kPiece, static_cast<off_t>(place)) != kPiece)
            return false;
    return true;
}

// Into a file that the ring had to leave. Where that is refused, nothing is left that looks like a broken run.
void WriteGoodbye(std::uint64_t now)
{
    if (Fails(FileCall::Write) || pwrite(handle, &now, sizeof now, offsetof(Header, goodbye)) != sizeof now) {
        [[maybe_unused]] const int shortened = ftruncate(handle, 0);
    }
}

void *MapFile(const std::string &path, std::string &trouble)
{
    const int file = Fails(FileCall::Open) ? -1 : open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    errno = file >= 0 ? ENOSPC : errno;  // a part was taken: no room for the rest
    if (file < 0 || !Fill(file) || flock(file, LOCK_EX | LOCK_NB) != 0) {
        trouble = std::strerror(errno);
        if (file >= 0) {
            close(file);
            unlink(path.c_str());
        }
        return MAP_FAILED;
    }
    handle = file;
    return mmap(nullptr, kTraceFileBytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
}

std::vector<TraceRecord> Records(const Ring &source, std::uint64_t oldest, std::uint64_t next, std::size_t most)
{
    std::size_t skipped = 0;
    Head head{};
    for (std::uint64_t at = oldest; GetHead(source, at, next, head); at += RoomOf(head.size))
        ++skipped;
    skipped -= std::min(skipped, most);
    std::vector<TraceRecord> records;
    for (std::uint64_t at = oldest; GetHead(source, at, next, head); at += RoomOf(head.size)) {
        if (skipped > 0) {
            --skipped;
            continue;
        }
        TraceRecord record{head.micros, head.line, head.way, std::string(head.size, '\0')};
        if (Get(source, at + sizeof head, record.bytes.data(), head.size))
            records.push_back(std::move(record));
    }
    return records;
}

void TellFollowers(const Head &head, std::string_view bytes)
{
    const TraceRecord record{head.micros, head.line, head.way, std::string(bytes)};
    const std::vector<Follower> told = followers;  // they may come and go meanwhile
    for (const Follower &one : told)
        one.follower(record);
}

}  // namespace

TraceOpened OpenTrace(const std::string &folder)
{
    Drop();
    TraceOpened opened;
    const std::string path = folder + "/" + kTraceFile;
    void *memory = MAP_FAILED;
    if (LeaveOldFile(path, folder + "/" + kOldTraceFile, opened))
        memory = MapFile(path, opened.trouble);
    if (memory == MAP_FAILED) {
        if (opened.trouble.empty())
            opened.trouble = std::strerror(errno);
        BeginRingInMemory();
    } else {
        BeginRing(memory);
        inFile = true;
    }
    return opened;
}

void CloseTrace()
{
    const auto now = static_cast<std::uint64_t>(std::max<std::int64_t>(TraceMicros(), 1));
    const bool touched = inFile && FileIsWhole();
    if (touched)
        SetPosition(header->goodbye, now);
    if (handle >= 0 && (!touched || refused != 0))
        WriteGoodbye(now);
    Drop();
}

std::int64_t GoodbyeOfTrace(const std::string &folder)
{
    const int file = open((folder + "/" + kTraceFile).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    Header found{};
    const bool is = file >= 0 && ReadHeader(file, found);
    if (file >= 0)
        close(file);
    return is ? static_cast<std::int64_t>(found.goodbye) : 0;
}

void Trace(TraceLine line, ByteWay way, std::string_view bytes)
{
    if (!RingStands())
        return;
    Head head{0, 0, line, way, TraceMicros()};
    for (std::size_t from = 0; from < bytes.size(); from += kLongest) {
        const std::string_view piece = bytes.substr(from, kLongest);
        head.size = static_cast<std::uint32_t>(piece.size());
        Append(head, piece.data());
        if (refused != 0 && RingStands())
            Append(head, piece.data());
        if (!followers.empty())
            TellFollowers(head, piece);
    }
}

void MarkTrace(TraceLine line, std::string_view words)
{
    Trace(line, ByteWay::Mark, words);
}

std::vector<TraceRecord> LastTraceRecords(std::size_t most)
{
    if (!RingStands())
        return {};
    return Records(OwnRing(), Position(header->oldest), Position(header->next), most);
}

std::vector<TraceRecord> ReadTraceBytes(std::string_view file, std::size_t most)
{
    Header found{};
    if (file.size() < sizeof found)
        return {};
    std::memcpy(&found, file.data(), sizeof found);
    if (std::string_view(found.magic.data(), found.magic.size()) != kMagic || found.capacity == 0 ||
        found.capacity > kCapacity || found.next < found.oldest || found.next - found.oldest > found.capacity)
        return {};
    const Ring source{file.data() + sizeof found, file.size() - sizeof found, found.capacity};
    return Records(source, found.oldest, found.next, most);
}

int FollowTrace(TraceFollower follower)
{
    followers.push_back({++lastFollower, std::move(follower)});
    return lastFollower;
}

void StopFollowingTrace(int number)
{
    std::erase_if(followers, [number](const Follower &one) { return one.number == number; });
}

void UseTraceTrouble(std::function<void(const std::string &)> told)
{
    traceTrouble = std::move(told);
}

void UseTraceClock(std::function<std::int64_t()> clock)
{
    traceClock = std::move(clock);
}

// ---- in a crash ----

namespace {

// A text of fixed room that is written when it is full.
class TailText
{
public:
    explicit TailText(int handle) : m_handle(handle) {}
    ~TailText() { Leave(); }
    TailText(const TailText &) = delete;
    TailText &operator=(const TailText &) = delete;

    void Add(std::string_view text)
    {
        for (const char c : text)
            Add(c);
    }
    void Add(char c)
    {
        if (m_count == m_text.size())
            Leave();
        m_text[m_count++] = c;
    }
    void AddNumber(std::int64_t number, int digits)
    {
        std::int64_t unit = 1;
        for (int i = 1; i < digits; ++i)
            unit *= 10;
        for (; unit > 0; unit /= 10)
            Add(static_cast<char>('0' + number / unit % 10));
    }
    void AddShown(char c)
    {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        if (c >= ' ' && c <= '~') {
            Add(c);
        } else {
            Add(c == '\r' ? "\\r" : c == '\n' ? "\\n" : "\\x");
            if (c != '\r' && c != '\n') {
                Add(kDigits[byte >> 4]);
                Add(kDigits[byte & 15]);
            }
        }
    }

private:
    void Leave()
    {
        [[maybe_unused]] const auto written = write(m_handle, m_text.data(), m_count);
        m_count = 0;
    }

    int m_handle;
    std::array<char, 512> m_text{};
    std::size_t m_count = 0;
};

void AddMoment(TailText &text, std::int64_t micros)
{
    const std::int64_t ms = micros / 1000 % 86'400'000;
    text.AddNumber(ms / 3'600'000, 2);
    text.Add(':');
    text.AddNumber(ms / 60'000 % 60, 2);
    text.Add(':');
    text.AddNumber(ms / 1000 % 60, 2);
    text.Add('.');
    text.AddNumber(ms % 1000, 3);
}

void AddRecord(TailText &text, std::uint64_t position, const Head &head)
{
    constexpr std::array<std::string_view, 4> kWays = {"  sent      ", "  received  ", "  dropped   ", "  mark      "};
    AddMoment(text, head.micros);
    text.Add(head.line == TraceLine::Meter ? "  meter     " : "  calibrator");
    text.Add(kWays[static_cast<std::size_t>(head.way)]);
    for (std::uint32_t i = 0; i < head.size; ++i)
        text.AddShown(ring[(position + sizeof head + i) % kCapacity]);
    text.Add('\n');
}

}  // namespace

bool TakeRefusedTouch(const void *address) noexcept
{
    const auto *place = static_cast<const char *>(address);
    const auto *first = reinterpret_cast<const char *>(header);
    if (!header || refused != 0 || place < first || place >= first + kTraceFileBytes)
        return false;
    refused = 1;
    return mmap(header, kTraceFileBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) ==
           header;
}

void WriteTraceTail(int tailHandle) noexcept
{
    if (!header || !FileIsWhole())
        return;
    const std::uint64_t next = header->next;
    std::array<std::uint64_t, kTail> last{};
    std::size_t count = 0;
    Head head{};
    for (std::uint64_t at = header->oldest; GetHead(OwnRing(), at, next, head); at += RoomOf(head.size))
        last[count++ % kTail] = at;
    TailText text(tailHandle);
    for (std::size_t i = count - std::min(count, kTail); i < count; ++i)
        if (const std::uint64_t at = last[i % kTail]; GetHead(OwnRing(), at, next, head))
            AddRecord(text, at, head);
}

}  // namespace ombrix
