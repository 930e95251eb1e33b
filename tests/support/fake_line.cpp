#include "support/fake_line.h"

#include "platform/clock.h"
#include "platform/fault.h"

#include <utility>

namespace ombrix::test {
namespace {

FakeLines *linesInForce = nullptr;

}  // namespace

class FakeDevice : public SerialDevice
{
public:
    ~FakeDevice() override
    {
        if (m_line) {
            m_line->log.push_back("close");
            m_line->m_device = nullptr;
            m_line->m_waiting.clear();
            m_line->m_unseen.clear();
        }
    }

    void Open(const std::string &device) override
    {
        const std::shared_ptr<FakeLine> line = linesInForce ? linesInForce->Find(device) : nullptr;
        if (!line || line->m_gone)
            throw RuntimeFault(2, "No such file or directory");
        if (line->m_refusal != 0)
            throw RuntimeFault(line->m_refusal, line->m_refusalWords);
        if (line->m_device)
            throw RuntimeFault(16, "Device or resource busy");
        line->log.push_back("open");
        line->m_device = this;
        m_line = line;
    }

    std::size_t BytesWaiting() override
    {
        std::size_t count = 0;
        for (const std::string &chunk : m_line->m_waiting)
            count += chunk.size();
        return count;
    }

    std::string ReadAll() override
    {
        std::string all;
        for (const std::string &chunk : m_line->m_waiting)
            all += chunk;
        m_line->m_waiting.clear();
        m_line->log.push_back("read");
        return all;
    }

    std::string Drop() override
    {
        std::string all = ReadAll();
        for (const std::string &unseen : std::exchange(m_line->m_unseen, {}))
            all += unseen;
        return all;
    }

    void Write(std::string_view bytes) override
    {
        if (!m_gone)
            m_line->Hear(bytes);
    }
    void SetRts(bool on) override { m_line->log.push_back(on ? "RTS on" : "RTS off"); }
    void SetDtr(bool on) override { m_line->log.push_back(on ? "DTR on" : "DTR off"); }
    bool IsGone() const override { return m_gone; }

    void Ends()
    {
        if (std::exchange(m_gone, true))
            return;
        m_line->m_waiting.clear();
        onGone();
    }

private:
    bool m_gone = false;
    std::shared_ptr<FakeLine> m_line;
};

void FakeLine::Says(const std::string &bytes, int afterMs)
{
    const auto arrive = [this, bytes] {
        if (m_device && !m_device->IsGone() && !m_silent)
            Arrive(bytes);
    };
    if (afterMs == 0)
        arrive();
    else
        CallAfter(afterMs, arrive);
}

void FakeLine::SaysUnseen(const std::string &bytes)
{
    m_unseen.push_back(bytes);
    CallAfter(1, [this] {
        for (const std::string &seen : std::exchange(m_unseen, {}))
            Arrive(seen);
    });
}

void FakeLine::Arrive(const std::string &bytes)
{
    m_waiting.push_back(bytes);
    if (m_device)
        m_device->onCame(bytes);
}

void FakeLine::HangsUp()
{
    m_gone = true;
    if (m_device)
        m_device->Ends();
}

void FakeLine::ComesBack()
{
    m_gone = m_silent = false;
}

void FakeLine::SaysByteByByte(const std::string &bytes, int afterMs, int gapMs)
{
    for (char byte : bytes) {
        Says(std::string(1, byte), afterMs);
        afterMs += gapMs;
    }
}

void FakeLine::Answers(const std::string &request, const std::string &reply, int afterMs)
{
    m_answers[request].emplace_back(reply, afterMs);
}

void FakeLine::RefusesToOpen(int number, const std::string &words)
{
    m_refusal = number;
    m_refusalWords = words;
}

void FakeLine::Hear(std::string_view bytes)
{
    const std::string text(bytes);
    log.push_back("write " + text);
    m_writes.push_back(text);
    writeTimes.push_back(linesInForce ? linesInForce->Time().Elapsed() : 0);
    if (m_silent)
        return;
    if (onWrite)
        onWrite(text);
    const auto found = m_answers.find(text);
    if (found == m_answers.end())
        return;
    const auto [reply, afterMs] = found->second.front();
    if (found->second.size() > 1)
        found->second.pop_front();
    if (!reply.empty())
        Says(reply, afterMs);
}

std::string FakeLine::Heard() const
{
    std::string all;
    for (const std::string &write : m_writes)
        all += write;
    return all;
}

std::vector<std::string> FakeLine::Writes() const
{
    return m_writes;
}

void FakeLine::Forget()
{
    m_writes.clear();
    writeTimes.clear();
    log.clear();
}

FakeLines::FakeLines(VirtualClock &clock) : m_clock(clock)
{
    linesInForce = this;
    UseSerialDevices([] { return std::make_unique<FakeDevice>(); });
}

FakeLines::~FakeLines()
{
    linesInForce = nullptr;
    UseSerialDevices(nullptr);
}

FakeLine &FakeLines::operator[](const std::string &device)
{
    auto &line = m_lines[device];
    if (!line)
        line = std::make_shared<FakeLine>();
    return *line;
}

std::shared_ptr<FakeLine> FakeLines::Find(const std::string &device)
{
    const auto found = m_lines.find(device);
    return found == m_lines.end() ? nullptr : found->second;
}

}  // namespace ombrix::test
