// The diagrams in a column of their own, and what every range shows there.
#pragma once

#include "model/step_ids.h"
#include "records/diagrams.h"
#include "session/page_frame.h"
#include "session/state.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QImage>
#include <QLabel>
#include <QWidget>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ombrix {

// One range as the operator sees it: caption, and the letters of each label of the block.
struct Range {
    int board;
    int row;
    const char *caption;
    std::vector<std::string> letters;
    int kind;
};

inline const Range kRanges[] = {
    {kDc, 0, "200 mV DC", {"(A)", "(f)", "(b)"}, 2},
    {kDc, 1, "2 V DC", {"(A)", "(f)", "(a)"}, 2},
    {kDc, 2, "20 V DC", {"(B)", "(h)", "(b)"}, 2},
    {kDc, 3, "200 V DC", {"(B)", "(h)", "(a)"}, 2},
    {kDc, 4, "660 V DC", {"(B)", "(g)", "(a)"}, 2},
    {kDc, 5, "2 mA DC", {"(A)", "(e,g)", "(b)"}, 3},
    {kDc, 6, "20 mA DC", {"(A)", "(d,g)", "(b)"}, 3},
    {kDc, 7, "200 mA DC", {"(A)", "(c,g)", "(b)"}, 3},
    {kDc, 8, "5 A DC", {"(A)", "(a,b,g)", "(b)"}, 3},
    {kAc, 0, "200 mV AC", {"(g)", "(k)"}, 6},
    {kAc, 1, "2 V AC", {"(g)", "(j)"}, 6},
    {kAc, 2, "20 V AC", {"(h)", "(k)"}, 5},
    {kAc, 3, "200 V AC", {"(h)", "(j)"}, 5},
    {kAc, 4, "660 V AC", {"(f)", "(j)"}, 5},
    {kAc, 5, "2 mA AC", {"(e,f)", "(k)"}, 7},
    {kAc, 6, "20 mA AC", {"(d,f)", "(k)"}, 7},
    {kAc, 7, "200 mA AC", {"(c,f)", "(k)"}, 7},
    {kAc, 8, "5 A AC", {"(a,b,f)", "(m)"}, 7},
    {kAc, 9, "600 V AC", {"(f)", "(j)"}, 5},
    {kAc2, 0, "200 mV AC", {"(g)", "(k)"}, 6},
    {kAc2, 1, "2 V AC", {"(g)", "(j)"}, 6},
    {kAc2, 5, "2 mA AC", {"(e,f)", "(k)"}, 7},
    {kAc2, 8, "5 A AC", {"(a,b,f)", "(m)"}, 7},
    {kAc2, 9, "600 V AC", {"(f)", "(j)"}, 5},
    {kAc2, 10, "200 mV AC", {"", ""}, 6},
    {kAc3, 0, "200 mV AC", {"(j)", ""}, 6},
    {kAc3, 1, "2 V AC", {"(g,h)", "(c)"}, 5},
    {kAc3, 2, "20 V AC", {"(i)", "(c)"}, 5},
    {kAc3, 3, "200 V AC", {"(k)", "(c)"}, 5},
    {kAc3, 4, "660 V AC", {"", ""}, 5},
    {kAc3, 5, "2 mA AC", {"(l,k)", ""}, 7},
    {kAc3, 6, "20 mA AC", {"(m)", "(b)"}, 7},
    {kAc3, 7, "200 mA AC", {"(m)", "(a)"}, 7},
    {kAc3, 8, "5 A AC", {"(m)", "(c,d,e)"}, 7},
    {kAc3, 9, "600 V AC", {"(m)", "(c)"}, 5},
    {kAc3, 10, "200 mV AC", {"(j)", "(f)"}, 6},
    {kLc, 0, "20 mV", {"(e)"}, 8},
    {kLc, 1, "50 mV", {"(a)"}, 8},
    {kLc, 2, "100 mV", {"(b)"}, 8},
    {kLc, 3, "250 mV", {"(c)"}, 8},
    {kLc, 4, "500 mV", {"(d)"}, 8},
    {kTc, 0, "J,K,E,N", {""}, 2},
    {kTc, 1, "T,R,S", {"(j)"}, 2},
    {kTc, 2, "J,K,E,N °F", {""}, 2},
    {kTc, 3, "J,K,E,N °C", {""}, 2},
    {kTc, 4, "T,R,S °F", {"(j)"}, 2},
    {kTc, 5, "T,R,S °C", {"(j)"}, 2},
    {kTemp, 0, "J,K,E,N", {"(e)", "", ""}, 2},
    {kTemp, 1, "T,R,S", {"(f)", "", ""}, 2},
    {kTemp, 2, "J,K,E,N °F", {"(e)", "", ""}, 2},
    {kTemp, 3, "J,K,E,N °C", {"(e)", "", ""}, 2},
    {kTemp, 4, "T,R,S °F", {"(f)", "", ""}, 2},
    {kTemp, 5, "T,R,S °C", {"(f)", "", ""}, 2},
    {kTemp, 6, "Upscale", {"", "(c)", ""}, 2},
    {kTemp, 7, "Downscale", {"", "(d)", ""}, 2},
    {kTemp, 8, "4-wire", {"", "", "(b,e)"}, 2},
    {kTemp, 9, "3-wire", {"", "", "(a,e)"}, 2},
    {kRtd, 0, "4-Wire", {""}, 10},
    {kRtd, 1, "DIN385 °F", {"(a)"}, 10},
    {kRtd, 2, "DIN385 °C", {"(a)"}, 10},
    {kRtd, 3, "ANSI3902 °F", {"(a)"}, 10},
    {kRtd, 4, "ANSI3902 °C", {"(a)"}, 10},
    {kRtd, 5, "Ni120 °F", {"(a)"}, 10},
    {kRtd, 6, "Ni120 °C", {"(a)"}, 10},
    {kRtd, 7, "Cu10 °F", {"(b)"}, 10},
    {kRtd, 8, "Cu10 °C", {"(b)"}, 10},
    {kRtd, 9, "20 Ohms", {"(b)"}, 10},
    {kRtd, 10, "200 Ohms", {"(c)"}, 10},
    {kRtd, 11, "2 kOhms", {"(d)"}, 10},
    {kRtd, 12, "20 kOhms", {"(e)"}, 10},
    {kRtd, 13, "200 kOhms", {"(f)"}, 10},
    {kVf, 0, "VF 4-20 mA", {"(b)"}, 3},
    {kVf, 1, "VF 0-1 mA", {"(a)"}, 3},
    {kVf, 2, "VF 0-10 V", {""}, 2},
};

// fraJumperBlock's index and its labels, by board.
struct BlockOf {
    int index;
    std::vector<std::string> labels;
};
inline const std::map<int, BlockOf> kBlockOf = {
    {kDc, {0, {"lblJmprE(0)", "lblJmprE(1)", "lblJmprE(2)"}}},
    {kAc, {1, {"lblJmprA(0)", "lblJmprA(1)"}}},
    {kAc2, {1, {"lblJmprA(0)", "lblJmprA(1)"}}},
    {kAc3, {6, {"lblAC3E(0)", "lblAC3E(1)"}}},
    {kLc, {2, {"lblJmprLC"}}},
    {kTc, {3, {"lblJmprE(3)"}}},
    {kTemp, {7, {"lblJmprTemp(0)", "lblJmprTemp(1)", "lblJmprTemp(2)"}}},
    {kRtd, {8, {"lblJmprRTD"}}},
    {kVf, {4, {"lblJmprVF"}}},
};

struct Connector {
    const char *input;
    int units;
    std::vector<std::string> pins;
};
inline const std::map<int, Connector> kConnectors = {
    {2, {"DC Voltage", 1400, {"", "", "3 - SIG", "4 + SIG", "", ""}}},
    {3, {"DC Current", 1400, {"", "", "3 - SIG", "4 + SIG", "", ""}}},
    {4, {"DC Voltage", 2000, {"1 - EXC", "", "3 - SIG", "4 + SIG", "", ""}}},
    {5, {"AC Voltage", 1400, {"1 SIG HI", "", "3 SIG LO", "", "", ""}}},
    {6, {"AC Voltage", 1400, {"", "", "3 SIG LO", "4 SIG HI", "", ""}}},
    {7, {"AC Current", 1400, {"", "", "3 SIG LO", "4 SIG HI", "", ""}}},
    {8, {"DC Voltage", 1400, {"", "", "3 - SIG", "4 + SIG", "", ""}}},
    {9, {"DC Voltage", 2000, {"1 - EXC", "2 -SENS", "3 - SIG", "4 + SIG", "5 + EXC", "6 +SENS"}}},
    {10, {"DC Voltage", 1700, {"1 - EXC", "2 + EXC", "3 - SIG", "4 + SIG", "", ""}}},
};

class Diagrams : public testing::Test
{
protected:
    void SetUp() override
    {
        InitSessionState();
        FillDiagramHooks();
        MakeColumn();
        CurrentStepId = Step::Range2V;
    }

    void TearDown() override
    {
        frameHooks = FrameHooks();
        InitSessionState();
    }

    void MakeColumn()
    {
        column = std::make_unique<QWidget>();
        BuildDiagrams(column.get());
    }

    template <class Widget = QWidget> Widget *Find(const std::string &name)
    {
        auto *widget = column->findChild<Widget *>(QString::fromStdString(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    std::string Text(const std::string &label) { return Find<QLabel>(label)->text().toStdString(); }
    bool Shown(const std::string &name) { return Find(name)->isVisibleTo(column.get()); }

    // Index of the one block in sight, -1 when there is none.
    int BlockInSight()
    {
        int found = -1;
        for (int index = 0; index < kJumperBlocks; index++) {
            if (!Shown("fraJumperBlock(" + std::to_string(index) + ")"))
                continue;
            EXPECT_EQ(found, -1) << "two blocks at once";
            found = index;
        }
        return found;
    }

    void Show(int board, int row, int step = Step::Range2V)
    {
        SCType = board;
        CurrentStepId = step;
        ShowConnectionDiagram(row);
    }

    // Everything at its place in a column of that size, as on the screen.
    void LayOut(int width, int height)
    {
        column->resize(width, height);
        column->show();
        for (int round = 0; round < 3; round++)
            QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }

    QImage Picture(double scale = 1)
    {
        QImage image(column->size() * scale, QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        column->render(&image);
        return image;
    }

    void ExpectConnector(int kind)
    {
        const Connector &connector = kConnectors.at(kind);
        EXPECT_TRUE(Shown("fraInputs"));
        EXPECT_EQ(Text("lblInput"), connector.input);
        for (int place = 0; place < 6; place++) {
            const std::string label = "lblInp(" + std::to_string(place) + ")";
            EXPECT_EQ(Shown(label), !connector.pins[place].empty()) << label;
            EXPECT_EQ(Text(label), connector.pins[place]) << label;
        }
    }

    std::unique_ptr<QWidget> column;
};

}  // namespace ombrix
