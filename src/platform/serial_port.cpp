#include "platform/serial_port.h"

#include "platform/fault.h"

#include <QFileInfo>
#include <QMetaObject>
#include <QObject>
#include <QSerialPort>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <utility>
#include <vector>

namespace ombrix {
namespace {

// Devices that this process holds, by their real path: two names of one device must not be opened both.
std::vector<QString> heldDevices;

QString RealPath(const std::string &device)
{
    const QFileInfo info(QString::fromStdString(device));
    const QString real = info.canonicalFilePath();
    return real.isEmpty() ? info.absoluteFilePath() : real;
}

[[noreturn]] void Refuse(int number)
{
    throw RuntimeFault(number, std::strerror(number));
}

// The system's number for a refused open. QSerialPort calls a held lock and missing rights by one name.
int NumberOf(QSerialPort::SerialPortError error, const std::string &device)
{
    const QFileInfo info(QString::fromStdString(device));
    if (error == QSerialPort::DeviceNotFoundError || !info.exists())
        return ENOENT;
    if (error == QSerialPort::PermissionError)
        return info.isReadable() && info.isWritable() ? EBUSY : EACCES;
    return info.isDir() || info.isFile() ? ENOTTY : EIO;
}

constexpr int kMostPieces = 16;  // of a drop: a far end that never stops holds nobody

class SystemPort : public SerialDevice
{
public:
    ~SystemPort() override { std::erase(heldDevices, m_path); }

    void Open(const std::string &device) override
    {
        const QString path = RealPath(device);
        if (std::find(heldDevices.begin(), heldDevices.end(), path) != heldDevices.end())
            Refuse(EBUSY);
        m_port.setPortName(path);  // the toolkit looks for a bare name in /dev, not in the current folder
        if (device.empty() || !m_port.open(QIODevice::ReadWrite))
            Refuse(device.empty() ? ENOENT : NumberOf(m_port.error(), device));
        if (!m_port.setBaudRate(QSerialPort::Baud9600) || !m_port.setDataBits(QSerialPort::Data8) ||
            !m_port.setParity(QSerialPort::NoParity) || !m_port.setStopBits(QSerialPort::OneStop) ||
            !m_port.setFlowControl(QSerialPort::NoFlowControl)) {
            m_port.close();
            Refuse(ENOTTY);
        }
        m_port.clear();  // what the line said to nobody is no reply
        m_path = path;
        heldDevices.push_back(path);
        QObject::connect(&m_port, &QSerialPort::readyRead, &m_port, [this] {
            const std::string came = m_port.readAll().toStdString();
            m_waiting += came;
            onCame(came);
        });
        QObject::connect(&m_port, &QSerialPort::errorOccurred, &m_port, [this](QSerialPort::SerialPortError error) {
            // A line that can't set RTS says Unsupported and lives on. Any other error means that the far end is gone:
            // an open port would report it without end.
            if (error == QSerialPort::NoError || error == QSerialPort::UnsupportedOperationError || m_gone)
                return;
            m_gone = true;
            m_port.close();
            QMetaObject::invokeMethod(
                &m_port, [this] { onGone(); }, Qt::QueuedConnection);
        });
    }

    std::size_t BytesWaiting() override
    {
        return m_port.isOpen() ? m_waiting.size() + static_cast<std::size_t>(m_port.bytesAvailable()) : 0;
    }

    std::string ReadAll() override
    {
        if (!m_port.isOpen())
            return "";
        return std::exchange(m_waiting, "") + m_port.readAll().toStdString();
    }

    // The toolkit's buffer takes what has come only when events are delivered: until then the system holds it.
    std::string Drop() override
    {
        std::string dropped = ReadAll();
        std::array<char, kReplyLimit> piece{};
        for (int pieces = 0; pieces < kMostPieces && m_port.isOpen(); ++pieces) {
            const ssize_t count = read(Handle(), piece.data(), piece.size());
            if (count <= 0)
                return dropped;
            dropped.append(piece.data(), static_cast<std::size_t>(count));
        }
        if (m_port.isOpen())
            m_port.clear(QSerialPort::Input);
        return dropped;
    }

    void Write(std::string_view bytes) override
    {
        if (!m_port.isOpen())
            return;
        m_port.write(bytes.data(), static_cast<qint64>(bytes.size()));
        if (m_port.isOpen())
            m_port.flush();  // leaves now, not at the next pump
    }

    void SetRts(bool on) override
    {
        if (m_port.isOpen())
            m_port.setRequestToSend(on);
    }

    void SetDtr(bool on) override
    {
        if (m_port.isOpen())
            m_port.setDataTerminalReady(on);
    }

    bool IsGone() const override { return m_gone; }
    int Handle() const override { return m_port.isOpen() ? static_cast<int>(m_port.handle()) : -1; }

private:
    QString m_path;
    std::string m_waiting;  // has come, not yet asked for
    bool m_gone = false;
    QSerialPort m_port;
};

SerialDeviceMaker SystemPortMaker()
{
    return [] { return std::make_unique<SystemPort>(); };
}

SerialDeviceMaker makeDevice = SystemPortMaker();

}  // namespace

void UseSerialDevices(SerialDeviceMaker maker)
{
    makeDevice = maker ? std::move(maker) : SystemPortMaker();
}

void SerialPort::Open(const std::string &device)
{
    Close();
    Take(device);
}

bool SerialPort::OpenAgain()
{
    Leave();  // it holds the name
    try {
        Take(m_name);
    } catch (const RuntimeFault &) {
        m_lost = true;
    }
    return !m_lost;
}

void SerialPort::Take(const std::string &device)
{
    auto opened = makeDevice();
    opened->Open(device);
    opened->onCame = [this](std::string_view bytes) {
        m_told += bytes.size();
        TellBytes(ByteWay::Received, bytes);
    };
    opened->onGone = [this] {
        TellLine(-1);
        if (onGone)
            onGone();
    };
    m_device = std::move(opened);
    m_name = device;
    m_lost = false;
    TellLine(m_device->Handle());
}

void SerialPort::Leave()
{
    if (m_device)
        TellLine(-1);
    m_device.reset();
    m_told = 0;
}

void SerialPort::TellLine(int handle) const
{
    if (onLine)
        onLine(handle);
}

void SerialPort::TellBytes(ByteWay way, std::string_view bytes) const
{
    if (onBytes && !bytes.empty())
        onBytes(way, bytes);
}

// Of what was fetched, behind what was told when it came.
void SerialPort::TellRest(ByteWay way, std::string_view bytes)
{
    TellBytes(way, bytes.substr(std::min(m_told, bytes.size())));
    m_told = 0;
}

void SerialPort::Close()
{
    Leave();
    m_lost = false;
}

std::size_t SerialPort::BytesWaiting() const
{
    return m_device ? m_device->BytesWaiting() : 0;
}

std::string SerialPort::ReadAll()
{
    std::string bytes = m_device ? m_device->ReadAll() : std::string();
    TellRest(ByteWay::Received, bytes);
    return bytes;
}

std::string SerialPort::Drop()
{
    std::string bytes = m_device ? m_device->Drop() : std::string();
    TellRest(ByteWay::Dropped, bytes);
    return bytes;
}

// Told first: when a write ends the line, what was sent stands before that.
void SerialPort::Write(std::string_view bytes)
{
    if (!m_device)
        return;
    if (!m_device->IsGone())
        TellBytes(ByteWay::Sent, bytes);
    m_device->Write(bytes);
}

void SerialPort::SetRts(bool on)
{
    if (m_device)
        m_device->SetRts(on);
}

void SerialPort::SetDtr(bool on)
{
    if (m_device)
        m_device->SetDtr(on);
}

}  // namespace ombrix
