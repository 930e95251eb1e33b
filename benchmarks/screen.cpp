#include "screen.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace ombrix::benchmarks {
namespace {

constexpr int kWaitMs = 20000;

// The few pieces of the X11 protocol that watching a screen takes.
constexpr std::uint8_t kChangeWindowAttributes = 2;
constexpr std::uint32_t kEventMask = 1u << 11;
constexpr std::uint32_t kSubstructureNotify = 1u << 19;
constexpr std::uint8_t kMapNotify = 19;
constexpr std::size_t kEventLength = 32;

void ReadFully(int socket, void *buffer, std::size_t length)
{
    auto *at = static_cast<char *>(buffer);
    while (length > 0) {
        const ssize_t count = read(socket, at, length);
        if (count <= 0)
            throw std::runtime_error("the screen closed its line");
        at += count;
        length -= static_cast<std::size_t>(count);
    }
}

void WriteFully(int socket, const void *buffer, std::size_t length)
{
    if (write(socket, buffer, length) != static_cast<ssize_t>(length))
        throw std::runtime_error("the screen takes no requests");
}

template <class Number> Number NumberAt(const std::vector<std::uint8_t> &bytes, std::size_t place)
{
    Number number;
    std::memcpy(&number, bytes.data() + place, sizeof number);
    return number;
}

// The root window stands behind the vendor's name and the pixel formats.
std::uint32_t RootWindow(const std::vector<std::uint8_t> &setup)
{
    const std::size_t vendor = (NumberAt<std::uint16_t>(setup, 16) + 3u) / 4 * 4;
    const std::size_t formats = setup[21] * 8u;
    return NumberAt<std::uint32_t>(setup, 32 + vendor + formats);
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
    if (m_socket >= 0)
        close(m_socket);
    if (m_server > 0) {
        kill(m_server, SIGTERM);
        waitpid(m_server, nullptr, 0);
    }
}

void Screen::Watch()
{
    m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/tmp/.X11-unix/X" + m_name.substr(1);
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    if (connect(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
        throw std::runtime_error("no way to the screen at " + path);

    const std::array<std::uint8_t, 12> hello{'l', 0, 11, 0};
    WriteFully(m_socket, hello.data(), hello.size());
    std::vector<std::uint8_t> head(8);
    ReadFully(m_socket, head.data(), head.size());
    std::vector<std::uint8_t> setup(NumberAt<std::uint16_t>(head, 6) * 4u);
    ReadFully(m_socket, setup.data(), setup.size());
    if (head[0] != 1)
        throw std::runtime_error("the screen refuses");

    const std::array<std::uint32_t, 4> watch{kChangeWindowAttributes | (4u << 16), RootWindow(setup), kEventMask,
                                             kSubstructureNotify};
    WriteFully(m_socket, watch.data(), sizeof watch);
}

void Screen::ForgetWindows()
{
    pollfd input{m_socket, POLLIN, 0};
    std::array<std::uint8_t, kEventLength> event{};
    while (poll(&input, 1, 0) > 0)
        ReadFully(m_socket, event.data(), event.size());
}

std::optional<Time> Screen::NextWindow()
{
    pollfd input{m_socket, POLLIN, 0};
    std::array<std::uint8_t, kEventLength> event{};
    while (poll(&input, 1, kWaitMs) > 0) {
        ReadFully(m_socket, event.data(), event.size());
        if ((event[0] & 0x7f) == kMapNotify)
            return std::chrono::steady_clock::now();
    }
    return std::nullopt;
}

}  // namespace ombrix::benchmarks
