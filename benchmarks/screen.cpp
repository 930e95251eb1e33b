#include "screen.h"

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace ombrix::benchmarks {
namespace {

using namespace std::chrono_literals;

constexpr auto kWait = 20s;

using Event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;

// The next event that is there already, none when there is none.
Event EventFrom(xcb_connection_t *line)
{
    return {xcb_poll_for_event(line), &std::free};
}

// The last bit tells an event that another program sent by hand.
bool IsNewWindow(const Event &event)
{
    return (event->response_type & 0x7f) == XCB_MAP_NOTIFY;
}

std::string LineFrom(int pipe)
{
    std::string line;
    char c = 0;
    while (read(pipe, &c, 1) == 1 && c != '\n')
        line += c;
    return line;
}

}  // namespace

Screen::Screen()
{
    std::array<int, 2> numbers{};
    if (pipe(numbers.data()) != 0)
        throw std::runtime_error("no pipe");
    m_server = fork();
    if (m_server == 0) {
        close(numbers[0]);
        prctl(PR_SET_PDEATHSIG, SIGTERM);  // ends with the benchmark, also with one that is killed
        const int silence = open("/dev/null", O_WRONLY);
        dup2(silence, STDERR_FILENO);
        const std::string fd = std::to_string(numbers[1]);
        execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-ac",
               static_cast<char *>(nullptr));
        _exit(127);
    }
    close(numbers[1]);
    const std::string number = LineFrom(numbers[0]);
    close(numbers[0]);
    if (number.empty())
        throw std::runtime_error("Xvfb did not start (package xvfb)");
    m_name = ":" + number;
    Watch();
}

Screen::~Screen()
{
    xcb_disconnect(m_line);
    if (m_server > 0) {
        kill(m_server, SIGTERM);
        waitpid(m_server, nullptr, 0);
    }
}

void Screen::Watch()
{
    m_line = xcb_connect(m_name.c_str(), nullptr);
    if (xcb_connection_has_error(m_line) != 0)
        throw std::runtime_error("no way to the screen " + m_name);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_line)).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    const auto asked = xcb_change_window_attributes_checked(m_line, root, XCB_CW_EVENT_MASK, &mask);
    const std::unique_ptr<xcb_generic_error_t, decltype(&std::free)> refusal(xcb_request_check(m_line, asked),
                                                                             &std::free);
    if (refusal)
        throw std::runtime_error("the screen lets nobody watch");
}

void Screen::ForgetWindows()
{
    while (EventFrom(m_line)) {
    }
}

std::optional<Time> Screen::NextWindow()
{
    const auto end = std::chrono::steady_clock::now() + kWait;
    pollfd input{xcb_get_file_descriptor(m_line), POLLIN, 0};
    while (true) {
        while (const Event event = EventFrom(m_line))
            if (IsNewWindow(event))
                return std::chrono::steady_clock::now();
        if (xcb_connection_has_error(m_line) != 0)
            throw std::runtime_error("the screen closed its line");
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left <= 0ms)
            return std::nullopt;
        poll(&input, 1, static_cast<int>(left.count()));
    }
}

}  // namespace ombrix::benchmarks
