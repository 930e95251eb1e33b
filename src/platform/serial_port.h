// A serial line at 9600 baud, no parity, 8 data bits, 1 stop bit.
//
// SerialPort is what the links hold; a SerialDevice behind it is the operating system's port in the program and a
// virtual line in tests. Opening is the only operation that fails loudly. After it, a line that goes away is silence:
// nothing comes, what is written is lost, and the port stays "open" until it is closed, so every wait keeps its length.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace ombrix {

class SerialDevice
{
public:
    virtual ~SerialDevice() = default;
    /// Opens exclusively. Throws RuntimeFault with the system's number and words.
    virtual void Open(const std::string &device) = 0;
    virtual std::size_t BytesWaiting() = 0;
    virtual std::string ReadAll() = 0;
    virtual void Write(std::string_view bytes) = 0;
    /// A line that can't set them (a pseudo-terminal) ignores both.
    virtual void SetRts(bool on) = 0;
    virtual void SetDtr(bool on) = 0;
};

/// Makes the device of the next Open. nullptr brings back the operating system's port.
using SerialDeviceMaker = std::function<std::unique_ptr<SerialDevice>()>;
void UseSerialDevices(SerialDeviceMaker maker);

class SerialPort
{
public:
    /// Closes first if open. Throws RuntimeFault; the port is then closed.
    void Open(const std::string &device);
    void Close();
    bool IsOpen() const { return m_device != nullptr; }
    /// On a closed port: 0, "", and nothing.
    std::size_t BytesWaiting() const;
    std::string ReadAll();
    void Write(std::string_view bytes);
    void SetRts(bool on);
    void SetDtr(bool on);

private:
    std::unique_ptr<SerialDevice> m_device;
};

}  // namespace ombrix
