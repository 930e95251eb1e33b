// A screen of the benchmarks' own, and the moment when a window appears on it.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>

struct xcb_connection_t;

namespace ombrix::benchmarks {

using Time = std::chrono::steady_clock::time_point;

/// An Xvfb that ends with this object. Throws std::runtime_error when it can't start.
class Screen
{
public:
    Screen();
    ~Screen();
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    /// What DISPLAY is to hold, such as ":3".
    const std::string &Name() const { return m_name; }

    /// Forgets what has appeared so far.
    void ForgetWindows();
    /// When the next window appeared; nothing when none does within 20 s. Throws std::runtime_error when the screen is
    /// gone.
    std::optional<Time> NextWindow();

private:
    void Watch();

    pid_t m_server = -1;
    xcb_connection_t *m_line = nullptr;
    std::string m_name;
};

}  // namespace ombrix::benchmarks
