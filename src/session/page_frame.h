// What a page gets from the window around it, and what it gives: its builder and its steps.
//
// A page registers itself once at start, so nobody needs its header. What it gets are procedures that go through hooks,
// which the window fills at start: without a window they do nothing.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

class QFrame;

namespace ombrix {

constexpr int kPages = 19;  ///< fraCalib(0..18); 0 is empty, 1 is Setup, 4 is the range page

// ---- what a page gets ----

/// Lets a page fill its frame, fraCalib(index), if it hasn't yet: pages that nobody opens cost nothing. Whoever opens a
/// step does so for its page, and ShowPage; needed only where a page's widgets are touched otherwise before.
void FillPage(int index);
/// Shows fraCalib(index) and hides the others, the diagrams and the values panel. Navigation is free until the page
/// says otherwise, and nothing is unsaved.
void ShowPage(int index);
/// Opens the next allowed calibration step, wrapping to position 0. Nothing behind the last calibration position. In a
/// procedure a wish, carried out when it has ended.
void NextStep();
/// Opens the step at a position, as a click on its button does, if it is allowed; in a procedure a wish likewise.
void OpenStep(int position);
/// Marks a step button, -1 none.
void HighlightStep(int index);
/// Shows or hides the output panel's controls.
void ShowCalPanel(bool on);

/// What the operator has changed on the page in front and not saved, as a sentence; "" nothing. Quit asks once about it.
void SetUnsaved(const std::string &sentence);
std::string Unsaved();

// ---- the words of the meter's memory, shown and edited ----

/// What the word boxes of fraCalib(15) show: words 49 to 0 of a counter.
struct WordBoxes {
    std::string image;       ///< 200 digits, word 49 first; of another length the boxes stay empty
    std::string meant = {};  ///< what was written; a box that holds something else is red. "" nothing was written
    std::string says = {};   ///< lblVFNVM
    bool trouble = false;    ///< in red
    /// What "Save" does, as the page's procedure. The boxes that it returns are shown then. Empty: no "Save".
    std::function<WordBoxes()> save = {};
};
/// Brings the word boxes to the front, for reading only.
void ShowWordBoxes(const WordBoxes &boxes);

/// Who opens the page of raw words from a page of his own.
struct RawWordsFrom {
    /// Told what the meter holds after each "Save": words from `address` downward.
    std::function<void(int address, const std::string &hex)> written = {};
    /// "Back": shows the page again.
    std::function<void()> back = {};
};
/// The page of raw words, fraCalib(18). Steps, tabs and Setup stay off on it. Call it from a handler.
void EnterRawWords(const RawWordsFrom &from);

// ---- drawn by the diagrams ----

/// Shows input connector and jumper block for a row of the board's range list; nothing for a row below 0.
void ShowConnectionDiagram(int row);
/// Shows the block of the analog output alone: row 0 UniPolar, 1 BiPolar; with a dual converter also its two output
/// connectors.
void ShowAnalogDiagram(int row, bool dual);
/// Hides whatever of them shows.
void HideConnectionDiagram();

/// What the operator handles on the board.
struct BoardPart {
    enum class Kind { Trimmer, Resistor, TestPoint, Jumper } kind;
    std::string name;
    bool inWork = false;  ///< it is to be turned, changed or connected; a jumper is in
};
/// Shows them in a row below the diagrams; whatever shows or hides a diagram takes them away.
void ShowBoardParts(const std::vector<BoardPart> &parts);

/// What a page that has a place for it asks the operator to check before a row of an AC3 board: the cable, when it
/// isn't the one connected last; otherwise "". Only a look.
std::string CableMessage(int row);
/// The range of that row was opened, so its cable is the one connected now.
void CableConnected(int row);

// ---- drawn by the value panel ----

/// Moves the value panel, fraNVMemVals, into a frame of the page that has nothing else in it, each label cut back to its
/// name. ShowPage hides it.
void PrepareFileValues(QFrame *place);
/// Shows in it what the image of a meter's setup says: a .dpm file's, or 120 digits of the same places.
void ShowFileValues(const std::string &image);
/// Moves it away.
void HideFileValues();

// ---- what stands behind it: filled by the window ----

struct FrameHooks {
    std::function<void(int index)> fillPage = [](int) {};
    std::function<void(int index)> showPage = [](int) {};
    std::function<void(int position)> openStep = [](int) {};
    std::function<void()> openNextStep = [] {};
    std::function<void(int index)> highlightStep = [](int) {};
    std::function<void(bool on)> showCalPanel = [](bool) {};
    std::function<void(const WordBoxes &)> showWordBoxes = [](const WordBoxes &) {};
    std::function<void(const RawWordsFrom &)> enterRawWords = [](const RawWordsFrom &) {};
    /// Step buttons, tabs and Setup on or off; session/procedure.h works out which.
    std::function<void(bool on)> enableSteps = [](bool) {};
    /// A procedure has begun, or has ended.
    std::function<void(bool stands)> procedureStands = [](bool) {};
    std::function<void(int)> showConnectionDiagram = [](int) {};
    std::function<void(int, bool)> showAnalogDiagram = [](int, bool) {};
    std::function<void()> hideConnectionDiagram = [] {};
    std::function<void(const std::vector<BoardPart> &)> showBoardParts = [](const std::vector<BoardPart> &) {};
    std::function<std::string(int)> cableMessage = [](int) { return std::string(); };
    std::function<void(int)> cableConnected = [](int) {};
    std::function<void(QFrame *)> prepareFileValues = [](QFrame *) {};
    std::function<void(const std::string &)> showFileValues = [](const std::string &) {};
    std::function<void()> hideFileValues = [] {};
};
extern FrameHooks frameHooks;

// ---- the tables that pages fill ----

/// One step: how its page is opened, and what holds as long as it can't be.
struct StepRecord {
    std::function<void()> enter = {};  ///< empty: this version has no page for it
    int page = -1;                     ///< the page that is filled before; -1: `enter` sees to it itself
    /// Asked whenever the step's button may go on, and before the step opens by another way. Empty: always.
    std::function<bool(int position)> allowed = {};
    bool takesInput = false;  ///< its page takes over the input that stands: on the TC tab it isn't removed before
};

/// Several files may tell of one step, each another field; std::logic_error when two of them tell the same one.
void RegisterSteps(std::initializer_list<int> stepIds, const StepRecord &record);
/// The record of a step id, an empty one when nobody has registered it.
StepRecord RecordOfStep(int stepId);
/// Whether a step at a position may open now.
bool StepIsAllowed(int stepId, int position);

/// `build` fills fraCalib(index), once in the window's life: see FillPage. std::logic_error for a page that has one.
void RegisterPage(int index, const std::function<void(QFrame *page)> &build);
std::function<void(QFrame *page)> BuilderOfPage(int index);

/// A tab that has the meter in its hands between its steps.
struct TabRecord {
    /// When it is opened, after its step buttons are filled; not for a meter that did not tell its identity.
    std::function<void()> prepare = {};
    /// Before another tab or Setup opens, also before it opens again: the meter may be another one from then on.
    std::function<void()> leave = {};
    /// At Quit: what the instruments must still hear. Waits for no answer.
    std::function<void()> lastWords = {};
};
void RegisterTab(int tab, const TabRecord &record);
TabRecord RecordOfTab(int tab);

/// What was registered: filled once in the life of the program.
struct PageTables {
    std::map<int, StepRecord> steps;
    std::map<int, std::function<void(QFrame *page)>> pages;
    std::map<int, TabRecord> tabs;
};
extern PageTables pageTables;

}  // namespace ombrix
