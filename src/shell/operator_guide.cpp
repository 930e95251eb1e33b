#include "shell/operator_guide.h"

#include "session/outlets.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace ombrix {
namespace {

constexpr const char *kPlaces[] = {"/guide/operator.html", "/../share/ombrix/guide/operator.html", "/operator.md",
                                   "/docs/operator.md", "/../docs/operator.md"};
constexpr const char *kTitle = "Operator's Guide";

}  // namespace

void OpenGuide(const QString &programFolder)
{
    for (const char *place : kPlaces) {
        const QFileInfo guide(programFolder + place);
        if (!guide.isFile())
            continue;
        const QString path = guide.canonicalFilePath();
        if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
            outlets.warnOperator("Nothing on this desktop opens " + path.toStdString(), kTitle);
        return;
    }
    outlets.warnOperator("The operator's guide is not beside the program", kTitle);
}

}  // namespace ombrix
