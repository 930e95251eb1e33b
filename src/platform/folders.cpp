#include "platform/folders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace ombrix {
namespace {

std::string sampleFolder;

QString InstalledData(const std::string &programFolder)
{
    return QDir::cleanPath(QString::fromStdString(programFolder) + "/../share/ombrix");
}

std::string MadeFolderTrouble(const std::string &path)
{
    errno = 0;
    if (!QDir().mkpath(QString::fromStdString(path)))
        return errno != 0 ? std::strerror(errno) : "it can't be made";
    return FolderTrouble(path);
}

}  // namespace

std::string FolderTrouble(const std::string &path)
{
    const QFileInfo info(QString::fromStdString(path));
    if (!info.exists())
        return "there is no such folder";
    if (!info.isDir())
        return "it is no folder";
    if (faccessat(AT_FDCWD, QFile::encodeName(info.filePath()).constData(), W_OK | X_OK, AT_EACCESS) != 0)
        return std::string("it can't be written: ") + std::strerror(errno);
    return "";
}

std::string UserDataFolder()
{
    const QString told = qEnvironmentVariable("XDG_DATA_HOME");
    if (QDir::isAbsolutePath(told))  // any other is to be ignored
        return told.toStdString();
    const QString home = QDir::homePath();  // "/" when there is none
    return home == QDir::rootPath() ? "" : (home + "/.local/share").toStdString();
}

StationFolder FindStationFolder(const std::string &programFolder, const std::string &userData)
{
    const bool installed = QFileInfo(InstalledData(programFolder)).isDir();
    if (!installed && FolderTrouble(programFolder).empty())
        return {programFolder, true, ""};
    if (userData.empty())
        return {programFolder, true, "the user has no home"};
    const std::string path = userData + "/ombrix";
    const std::string trouble = MadeFolderTrouble(path);
    if (trouble.empty())
        return {path, false, ""};
    return {programFolder, true, path + ": " + trouble};
}

std::string InstalledSamples(const std::string &programFolder)
{
    const QString folder = InstalledData(programFolder) + "/samples";
    return QFileInfo(folder).isDir() ? folder.toStdString() : "";
}

void LookForSamplesIn(const std::string &folder)
{
    sampleFolder = folder;
}

const std::string &SampleFolder()
{
    return sampleFolder;
}

std::string FindFile(const std::string &name)
{
    const QString own = QString::fromStdString(name);
    if (name.empty() || sampleFolder.empty() || own.contains('/') || QFileInfo(own).isSymLink() ||
        QFileInfo::exists(own))
        return name;
    const QString installed = QString::fromStdString(sampleFolder) + "/" + own;
    return QFileInfo(installed).isFile() ? installed.toStdString() : name;
}

}  // namespace ombrix
