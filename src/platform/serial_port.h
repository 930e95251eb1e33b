// A serial line at 9600 baud, no parity, 8 data bits, 1 stop bit.
//
// SerialPort is what the links hold; a SerialDevice behind it is the operating system's port in the program and a
// virtual line in tests. Opening is the only operation that fails loudly. After it, a line that goes away is silence:
// nothing comes, what is written is lost, and the port stays "open" until it is closed. IsGone tells that silence from
// the silence of an instrument: waiting has no meaning on such a line, and OpenAgain is the way back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace ombrix {

/// More than this without an end of line is no reply, on either link.
constexpr std::size_t kReplyLimit = 4096;

class SerialDevice
{
public:
    virtual ~SerialDevice() = default;
    /// Opens exclusively. Throws RuntimeFault with the system's number and words.
    virtual void Open(const std::string &device) = 0;
    virtual std::size_t BytesWaiting() = 0;
    virtual std::string ReadAll() = 0;
    /// Drops what waits, and returns it: what ReadAll would give, and what the system still holds.
    virtual std::string Drop() = 0;
    virtual void Write(std::string_view bytes) = 0;
    /// A line that can't set them (a pseudo-terminal) ignores both.
    virtual void SetRts(bool on) = 0;
    virtual void SetDtr(bool on) = 0;
    /// The device ended with an error: hang-up, unplugged.
    virtual bool IsGone() const = 0;
    /// As the system numbers it; -1 for a line that is none of the system's.
    virtual int Handle() const { return -1; }

    /// Told what has come, when it comes and before it is given. What no event brought is given without.
    std::function<void(std::string_view bytes)> onCame = [](std::string_view) {};
    /// Told once when it has gone, from a later event: never out of the device's own error handler.
    std::function<void()> onGone = [] {};
};

/// What became of bytes. Mark: there are none, only words about the line.
enum class ByteWay : std::uint8_t { Sent, Received, Dropped, Mark };

/// Makes the device of the next Open. nullptr brings back the operating system's port.
using SerialDeviceMaker = std::function<std::unique_ptr<SerialDevice>()>;
void UseSerialDevices(SerialDeviceMaker maker);

class SerialPort
{
public:
    SerialPort() = default;
    SerialPort(const SerialPort &) = delete;
    SerialPort &operator=(const SerialPort &) = delete;

    /// Closes first if open. Throws RuntimeFault; the port is then closed.
    void Open(const std::string &device);
    /// Opens the same device once more. False when that can't be done: the line is then still gone.
    bool OpenAgain();
    void Close();
    bool IsOpen() const { return m_device || m_lost; }
    /// The line of an open port has gone. Nobody needs to wait for it.
    bool IsGone() const { return m_lost || (m_device && m_device->IsGone()); }
    /// On a closed port: 0, "", and nothing.
    std::size_t BytesWaiting() const;
    std::string ReadAll();
    std::string Drop();
    void Write(std::string_view bytes);
    void SetRts(bool on);
    void SetDtr(bool on);

    /// Told, from an event, when the line has gone.
    std::function<void()> onGone;
    /// Told the handle of each line that was opened, and -1 before it closes and when it has gone.
    std::function<void(int handle)> onLine;
    /// Told all bytes that are given to the line or come from it, each once: when they come, before whoever asks for
    /// them has them. Dropped are those that nobody had heard of before a drop.
    std::function<void(ByteWay way, std::string_view bytes)> onBytes;

private:
    void Take(const std::string &device);
    void Leave();
    void TellLine(int handle) const;
    void TellBytes(ByteWay way, std::string_view bytes) const;
    void TellRest(ByteWay way, std::string_view bytes);

    std::unique_ptr<SerialDevice> m_device;
    std::string m_name;
    std::size_t m_told = 0;  // bytes of those that wait
    bool m_lost = false;     // gone, and it could not be opened again
};

}  // namespace ombrix
