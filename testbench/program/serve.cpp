#include "testbench/program/serve.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "testbench/console.h"
#include "testbench/program/pty_line.h"
#include "testbench/program/station_folder.h"

namespace ombrix::bench {
namespace {

constexpr Micros kStatusMicros = 1'000'000;

volatile std::sig_atomic_t ended = 0;

void End(int)
{
    ended = 1;
}

Micros Now()
{
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(since).count();
}

void Say(const std::string &line)
{
    std::fputs((line + "\n").c_str(), stdout);
    std::fflush(stdout);
}

// The two signals arrive only while the program sleeps, so none is missed between a look at the flag and the sleep.
class EndSignals
{
public:
    EndSignals()
    {
        struct sigaction action {
        };
        action.sa_handler = End;
        sigaction(SIGINT, &action, nullptr);
        sigaction(SIGTERM, &action, nullptr);
        std::signal(SIGPIPE, SIG_IGN);
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGINT);
        sigaddset(&blocked, SIGTERM);
        sigprocmask(SIG_BLOCK, &blocked, &m_awake);
        sigdelset(&m_awake, SIGINT);
        sigdelset(&m_awake, SIGTERM);
    }
    const sigset_t &WhileAsleep() const { return m_awake; }

private:
    sigset_t m_awake{};
};

// Where the links to the terminals lie: in the station's folder, or in one of their own that goes with the program.
class LinkFolder
{
public:
    explicit LinkFolder(const std::string &station)
    {
        std::array<char, PATH_MAX> path{};
        if (!station.empty()) {
            if (realpath(station.c_str(), path.data()))
                m_path = path.data();
            return;
        }
        char name[] = "/tmp/ombrix-testbench-XXXXXX";
        if (mkdtemp(name)) {
            m_path = name;
            m_own = true;
        }
    }
    ~LinkFolder()
    {
        if (m_own)
            rmdir(m_path.c_str());
    }
    LinkFolder(const LinkFolder &) = delete;
    LinkFolder &operator=(const LinkFolder &) = delete;
    const std::string &Path() const { return m_path; }

private:
    std::string m_path;
    bool m_own = false;
};

class Server
{
public:
    Server(const Options &options, const std::string &folder)
        : m_options(options), m_bench(options.setup), m_meter(folder + "/COM1"), m_calibrator(folder + "/COM2")
    {}

    /// "" or what is wrong.
    std::string Start()
    {
        std::string trouble = m_meter.Open();
        if (trouble.empty() && m_options.setup.calibrator)
            trouble = m_calibrator.Open();
        const DevicePaths paths{m_meter.Link(), m_options.setup.calibrator ? m_calibrator.Link() : ""};
        if (trouble.empty() && !m_options.station.empty())
            trouble = TellStation(m_options.station, paths, m_options.setup);
        if (!trouble.empty())
            return trouble;
        Say("COM1 (meter): " + paths.meter);
        if (m_options.setup.calibrator)
            Say("COM2 (calibrator): " + paths.calibrator);
        m_bench.NextDue(Now());  // the faults begin now
        for (const std::string &fault : m_options.faults)
            m_bench.SwitchFault(fault, true);
        return "";
    }

    void Run(const sigset_t &asleep)
    {
        while (ended == 0 && !m_quit) {
            Sleep(asleep);
            ReadConsole();
            Carry(Line::Meter, m_meter);
            if (m_options.setup.calibrator)
                Carry(Line::Calibrator, m_calibrator);
            ShowStatus();
        }
        Say("ended");
    }

private:
    void Sleep(const sigset_t &asleep)
    {
        std::array<pollfd, 3> inputs{{{m_meter.Descriptor(), POLLIN, 0},
                                      {m_calibrator.Descriptor(), POLLIN, 0},
                                      {m_consoleOpen ? STDIN_FILENO : -1, POLLIN, 0}}};
        const Micros now = Now();
        const Micros until = std::min(m_bench.NextDue(now).value_or(m_nextStatus), m_nextStatus);
        const Micros left = std::max<Micros>(until - now, 0);
        const timespec limit{static_cast<time_t>(left / 1'000'000), static_cast<long>(left % 1'000'000) * 1000};
        const int ready = ppoll(inputs.data(), inputs.size(), &limit, &asleep);
        m_typed = ready > 0 && inputs[2].revents != 0;
    }

    // Both directions of a line, and its end and return.
    void Carry(Line line, PtyLine &pty)
    {
        if (m_bench.PortGone(line) && pty.IsOpen()) {
            pty.Close();
            Say(pty.Link() + " is gone");
        } else if (!m_bench.PortGone(line) && !pty.IsOpen()) {
            const std::string trouble = pty.Open();
            Say(trouble.empty() ? pty.Link() + " is back" : trouble);
            m_quit = !trouble.empty();
        }
        const std::string heard = pty.ReadAll();
        if (!heard.empty())
            m_bench.Receive(line, heard, Now());
        pty.Write(m_bench.Collect(line, Now()));
    }

    void ReadConsole()
    {
        if (!m_typed)
            return;
        m_typed = false;
        std::array<char, 512> buffer{};
        const ssize_t count = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count <= 0) {
            m_consoleOpen = false;
            return;
        }
        m_console.append(buffer.data(), static_cast<std::size_t>(count));
        for (std::size_t end = m_console.find('\n'); end != std::string::npos; end = m_console.find('\n')) {
            const ConsoleAnswer answer = RunConsoleLine(m_bench, m_console.substr(0, end), Now());
            m_console.erase(0, end + 1);
            if (!answer.text.empty())
                Say(answer.text);
            m_quit = m_quit || answer.quit;
        }
    }

    void ShowStatus()
    {
        const Micros now = Now();
        if (now < m_nextStatus)
            return;
        m_nextStatus = now + kStatusMicros;
        m_meter.LetOthersIn();
        m_calibrator.LetOthersIn();
        const std::string status = StatusText(m_bench, now);
        if (status != m_status)
            Say(status);
        m_status = status;
    }

    const Options &m_options;
    Bench m_bench;
    PtyLine m_meter;
    PtyLine m_calibrator;
    std::string m_console;
    bool m_consoleOpen = true;
    bool m_typed = false;
    bool m_quit = false;
    Micros m_nextStatus = 0;
    std::string m_status;
};

}  // namespace

std::string Serve(const Options &options)
{
    const EndSignals signals;
    const LinkFolder folder(options.station);
    if (folder.Path().empty())
        return (options.station.empty() ? "/tmp" : options.station) + ": " + std::strerror(errno);
    Server server(options, folder.Path());
    std::string trouble = server.Start();
    if (trouble.empty())
        server.Run(signals.WhileAsleep());
    return trouble;
}

}  // namespace ombrix::bench
