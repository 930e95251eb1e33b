// A pseudo-terminal with a name that stays: the far end of one serial line.
#pragma once

#include <string>
#include <string_view>

namespace ombrix::bench {

class PtyLine
{
public:
    /// link: the path under which the station finds the device, whatever number the system gives it.
    explicit PtyLine(std::string link) : m_link(std::move(link)) {}
    ~PtyLine();
    PtyLine(const PtyLine &) = delete;
    PtyLine &operator=(const PtyLine &) = delete;

    /// Makes the terminal and its link. "" on success, otherwise what went wrong.
    std::string Open();
    /// Hangs up, after what was sent has been read (50 ms at most), and takes the link away.
    void Close();
    bool IsOpen() const { return m_master >= 0; }
    /// To be polled for input; -1 when closed.
    int Descriptor() const { return m_master; }
    const std::string &Link() const { return m_link; }

    std::string ReadAll() const;
    /// What finds no room, since nobody reads it, is lost.
    void Write(std::string_view bytes) const;
    /// A station that was killed leaves its lock on the terminal; this lets the next one in.
    void LetOthersIn() const;

private:
    void WaitUntilRead() const;

    std::string m_link;
    int m_master = -1;
    int m_slave = -1;  // held, so that a station may come and go
};

}  // namespace ombrix::bench
