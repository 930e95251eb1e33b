#include "shell/folder_note.h"

#include "model/ini_store.h"
#include "session/outlets.h"
#include "shell/port_notes.h"
#include "widgets/widgets.h"

#include <QLabel>

namespace ombrix {
namespace {

StationFolder stationFolder;

// What is wrong with it comes first: then the settings of this session are lost.
std::string Trouble()
{
    if (!stationFolder.trouble.empty())
        return "There is no folder for the station's files: " + stationFolder.trouble +
               ". Start with --station and a folder.";
    const std::string obstacle = IniObstacle();
    return obstacle.empty() ? "" : obstacle + kNothingKept;
}

std::string NoteText(const std::string &trouble)
{
    const std::string where =
        stationFolder.ofProgram ? "" : "Settings and files of this station: " + stationFolder.path;
    return where + (where.empty() || trouble.empty() ? "" : "\r\n") + trouble;
}

}  // namespace

void TellStationFolder(const StationFolder &folder)
{
    stationFolder = folder;
}

QLabel *BuildFolderNote(QWidget *parent)
{
    const std::string trouble = Trouble();
    const std::string text = NoteText(trouble);
    QLabel *note = Label(parent, "lblStationFolder", text);
    note->setWordWrap(true);
    note->setTextFormat(Qt::PlainText);
    note->setTextInteractionFlags(Qt::TextSelectableByMouse);
    note->setFocusPolicy(Qt::NoFocus);
    if (!trouble.empty()) {
        QPalette palette;
        palette.setColor(QPalette::Active, QPalette::WindowText, TroubleColour());
        note->setPalette(palette);
    }
    note->setVisible(!text.empty());
    return note;
}

void RemarkOnFolder(bool firstStart)
{
    if (firstStart && !stationFolder.ofProgram)
        outlets.showRemark("Settings and files of this station are in " + stationFolder.path);
}

}  // namespace ombrix
