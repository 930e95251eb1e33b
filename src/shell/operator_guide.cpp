#include "shell/operator_guide.h"

#include "session/outlets.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace ombrix {

void OpenGuide(const QString &programFolder)
{
    for (const char *place : {"/operator.md", "/docs/operator.md", "/../docs/operator.md"}) {
        const QFileInfo guide(programFolder + place);
        if (!guide.isFile())
            continue;
        if (!QDesktopServices::openUrl(QUrl::fromLocalFile(guide.canonicalFilePath())))
            outlets.showRemark("Nothing on this desktop opens " + guide.canonicalFilePath().toStdString());
        return;
    }
    outlets.showRemark("The operator's guide, operator.md, is not beside the program");
}

}  // namespace ombrix
