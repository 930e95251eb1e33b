// Which jumpers a range needs and what the input connector carries.
#pragma once

#include <string>
#include <vector>

namespace ombrix {

/// Range names of the DC and AC boards and of the load cell board, "" outside.
std::string DcRangeName(int row);
std::string LcRangeName(int row);

/// Index of fraJumperBlock for a board: AC2 shares AC's. -1 outside 0..9.
int JumperBlockOfBoard(int board);

/// Caption of the range at a row of the board's list: "200 mV DC", "VF 4-20 mA", "J,K,E,N"; "" outside.
std::string RangeCaption(int board, int row);

/// The letters to set for each label of the board's block, "" where a label asks for no jumper: DC three ("A", "f",
/// "b"), AC and AC2 two, AC3 two, LC one, Temp three, TC one, RTD one, VF one. Analog: one, row 0 UniPolar, 1 BiPolar.
/// Empty for a row that is no range of the board: nothing is known of its jumpers then.
std::vector<std::string> JumperLetters(int board, int row);

/// Thermocouple input names and applied values, index 0..9 and 0..5; "" outside.
std::string ThermocoupleName(int index);
std::string ThermocoupleValue(int index);

/// Drawing of the input connector for a row: 0, 1 none; 2..10. Looks at SCType, CalibTab and CurrentStepId.
int DiagramKind(int row);

/// Label of place 0..5 of a connector drawing, "" for a hidden place.
std::string PinLabel(int kind, int place);

/// The cable an AC3 row needs: "2" or "4" pins and "Voltage" or "Current"; empty outside its rows.
struct Cable {
    std::string pins;
    std::string signal;
    bool operator==(const Cable &) const = default;
};
Cable Ac3Cable(int row);

}  // namespace ombrix
