// A serial line whose far end a test writes: what it says and when, what it was told and when.
#pragma once

#include "platform/serial_port.h"
#include "support/virtual_clock.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ombrix::test {

class FakeDevice;

/// The far end of one line.
class FakeLine
{
public:
    /// Bytes that come `afterMs` from now.
    void Says(const std::string &bytes, int afterMs = 0);
    /// Each byte of `bytes` on its own, `gapMs` apart, the first after `afterMs`.
    void SaysByteByByte(const std::string &bytes, int afterMs, int gapMs);
    /// Whenever exactly `request` is written, `reply` comes `afterMs` later. Several replies to one request come in
    /// turn; the last one stays.
    void Answers(const std::string &request, const std::string &reply, int afterMs = 0);
    /// Called with each write, before the answers.
    std::function<void(const std::string &bytes)> onWrite;
    /// Bytes that the system holds: a read finds them 1 ms from now, a drop takes them at once.
    void SaysUnseen(const std::string &bytes);
    /// From now on nothing comes and what is written is lost, as on a line whose instrument was switched off.
    void Vanishes() { m_silent = true; }
    /// The device ends with an error, as one that was pulled, and can't be opened until it comes back.
    void HangsUp();
    /// Whoever has it open must open it again.
    void ComesBack();
    /// The next opens fail with this number and these words; number 0 lets them pass again.
    void RefusesToOpen(int number, const std::string &words);

    /// What was written so far, all joined.
    std::string Heard() const;
    /// Each write on its own.
    std::vector<std::string> Writes() const;
    /// Writes and line signals in order: "RTS on", "DTR on", "write *1B1\r", "read", "open", "close".
    std::vector<std::string> log;
    /// Virtual milliseconds (of VirtualClock::Elapsed) of each write, beside Writes().
    std::vector<std::int64_t> writeTimes;
    void Forget();

private:
    friend class FakeDevice;
    void Hear(std::string_view bytes);
    void Arrive(const std::string &bytes);

    std::deque<std::string> m_waiting;
    std::deque<std::string> m_unseen;
    std::map<std::string, std::deque<std::pair<std::string, int>>> m_answers;
    std::vector<std::string> m_writes;
    bool m_silent = false;
    bool m_gone = false;  // no device of this name
    FakeDevice *m_device = nullptr;
    int m_refusal = 0;
    std::string m_refusalWords;
};

/// The lines of a test by device path. While it stands, every SerialPort opens one of them; a path without a line is
/// a missing device ("No such file or directory", 2).
class FakeLines
{
public:
    explicit FakeLines(VirtualClock &clock);
    ~FakeLines();
    FakeLine &operator[](const std::string &device);
    std::shared_ptr<FakeLine> Find(const std::string &device);
    VirtualClock &Time() { return m_clock; }

private:
    VirtualClock &m_clock;
    std::map<std::string, std::shared_ptr<FakeLine>> m_lines;  // shared: a port may outlive the test's lines
};

}  // namespace ombrix::test
