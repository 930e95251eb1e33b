#include "tour/toolkit_noise.h"

#include <QString>

namespace ombrix::tour {
namespace {

QtMessageHandler sayAsBefore = nullptr;

void SayAllButNoise(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (text != "This plugin does not support propagateSizeHints()" && text != "This plugin does not support raise()" &&
        !text.startsWith("QStandardPaths: XDG_RUNTIME_DIR not set, defaulting to "))
        sayAsBefore(type, context, text);
}

}  // namespace

void DropToolkitNoise()
{
    sayAsBefore = qInstallMessageHandler(SayAllButNoise);
}

}  // namespace ombrix::tour
