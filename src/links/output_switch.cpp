#include "links/output_switch.h"

#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "platform/text.h"
#include "session/outlets.h"
#include "session/state.h"

namespace ombrix {

std::string SwitchState = "V";

namespace {

constexpr int kCurrentDisplay = 11111;  // what the second meter shows when it switches to current

class SecondMeterScope
{
public:
    SecondMeterScope() { SetMeterAddress("2"); }
    ~SecondMeterScope() { SetMeterAddress("1"); }
    SecondMeterScope(const SecondMeterScope &) = delete;
    SecondMeterScope &operator=(const SecondMeterScope &) = delete;
};

// Sending waits for nothing, so nobody else ever speaks while the address is the second meter's. It restarts as a
// plain meter does, whatever kind stands under calibration.
void WriteSwitchWords(std::string_view hex)
{
    {
        const SecondMeterScope second;
        MeterSend('W', 5, static_cast<int>(hex.size() / 4), hex);
    }
    WaitPlainRestart();
}

}  // namespace

void InitOutputSwitch()
{
    SwitchState = "V";
}

void OpenOutputSwitch()
{
    if (!HardwareMode)
        outlets.showSwitch(true);
    SwitchState.clear();
    WriteSwitchWords("000000100000001000001000");
    if (!MeterLineIsGone())
        SwitchState = "V";
}

void SetOutputSwitch(const std::string &position)
{
    if (position == SwitchState)
        return;
    SwitchState.clear();
    WriteSwitchWords(HexText(position == "V" ? 0 : kCurrentDisplay, 6) + "100000");
    if (!MeterLineIsGone())
        SwitchState = position;
}

void ApplySwitched(std::string_view value)
{
    if (!UseSwitch)
        return;
    if (Holds(value, "V"))
        SetOutputSwitch("V");
    else if (Holds(value, "A") && !Holds(value, "FAR"))
        SetOutputSwitch("A");
}

}  // namespace ombrix
