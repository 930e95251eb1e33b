#include "testbench/program/pty_line.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace ombrix::bench {

PtyLine::~PtyLine()
{
    Close();
}

std::string PtyLine::Open()
{
    termios settings{};
    cfmakeraw(&settings);
    cfsetspeed(&settings, B9600);
    settings.c_cflag |= CS8 | CREAD | CLOCAL;
    std::array<char, 256> name{};
    if (openpty(&m_master, &m_slave, name.data(), &settings, nullptr) != 0)
        return std::string("no pseudo-terminal: ") + std::strerror(errno);
    for (const int descriptor : {m_master, m_slave})
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    fcntl(m_master, F_SETFL, O_NONBLOCK);
    unlink(m_link.c_str());
    if (symlink(name.data(), m_link.c_str()) == 0)
        return "";
    std::string trouble = m_link + " can't be made: " + std::strerror(errno);
    Close();
    return trouble;
}

void PtyLine::Close()
{
    if (!IsOpen())
        return;
    WaitUntilRead();
    unlink(m_link.c_str());
    close(m_master);
    close(m_slave);
    m_master = m_slave = -1;
}

void PtyLine::WaitUntilRead() const
{
    constexpr useconds_t kStepMicros = 5000;
    constexpr int kSteps = 10;
    int waiting = 0;
    for (int step = 0; step < kSteps && ioctl(m_slave, FIONREAD, &waiting) == 0 && waiting > 0; ++step)
        usleep(kStepMicros);
}

std::string PtyLine::ReadAll() const
{
    std::string bytes;
    std::array<char, 1024> buffer{};
    while (IsOpen()) {
        const ssize_t count = read(m_master, buffer.data(), buffer.size());
        if (count <= 0)
            break;
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return bytes;
}

void PtyLine::Write(std::string_view bytes) const
{
    while (IsOpen() && !bytes.empty()) {
        const ssize_t count = write(m_master, bytes.data(), bytes.size());
        if (count <= 0)
            return;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void PtyLine::LetOthersIn() const
{
    if (IsOpen())
        ioctl(m_slave, TIOCNXCL);
}

}  // namespace ombrix::bench
