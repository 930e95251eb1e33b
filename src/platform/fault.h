// Run-time faults: what the operating system refuses in the middle of something, and where it is told.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace ombrix {

/// A fault with the system's number (never 0 or 99) and its own words. Link operations catch it and turn it into
/// their result; what nobody catches ends at the handler's edge.
class RuntimeFault : public std::runtime_error
{
public:
    RuntimeFault(int number, const std::string &description) : std::runtime_error(description), m_number(number) {}
    int Number() const { return m_number; }

private:
    int m_number;
};

/// Told each fault that reached a handler's edge, with its words. The shell shows it; the default does nothing.
extern std::function<void(const std::string &)> FaultOutlet;

/// The edge of every handler: runs `body`, ends quietly on Shutdown, gives a fault to FaultOutlet. Nothing gets
/// through to the toolkit, and nothing starts while the program ends.
void RunHandler(const std::function<void()> &body);

/// From now on RunHandler starts nothing: the last words to the instruments are spoken, and they pump. Back with
/// `false`.
void CloseHandlers(bool on = true);

}  // namespace ombrix
