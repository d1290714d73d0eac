// SPDX-License-Identifier: MIT
#include "cli/export_plan.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>

#include "foundation/local_path.h"
#include "library/folder_walk.h"

namespace vell {

using foundation::pathBytes;

namespace {

namespace fs = std::filesystem;

std::string canonicalPath(const QString& path) {
    std::error_code error;
    return fs::canonical(pathBytes(path).toStdString(), error).native();
}

QString withoutLastSlashes(QString path) {
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

QString lastPart(const QString& path) {
    return path.mid(path.lastIndexOf(u'/') + 1);
}

/// What a folder is called in the tree that mirrors it: "Chats" for "../Chats/", nothing for ".".
QString mirroredName(const QString& folder) {
    QString name = lastPart(folder);
    if (name == u".") return {};
    if (!name.isEmpty() && name != u"..") return name;
    return lastPart(foundation::pathFromArgument(canonicalPath(folder).c_str()));
}

/// The path with another beginning; "/" is the only one that ends with a slash.
QString below(const QString& folder, const QString& rest) {
    return folder.endsWith(u'/') ? folder.chopped(1) + rest : folder + rest;
}

class Planner {
  public:
    explicit Planner(const std::function<void(qsizetype)>& onFound) : onFound_(onFound) {}

    ExportPlan plan(const QStringList& names) {
        for (const QString& name : names) {
            struct stat status {};
            const bool isStandardInput = name == u"-";
            const int failed = isStandardInput ? ::fstat(STDIN_FILENO, &status)
                                               : ::stat(pathBytes(name).constData(), &status);
            if (failed == 0 && S_ISDIR(status.st_mode) && !isStandardInput)
                addFolder(withoutLastSlashes(name));
            else
                add(name, {}, failed == 0 ? std::optional(status) : std::nullopt);
        }
        return std::move(plan_);
    }

  private:
    const std::function<void(qsizetype)>& onFound_;
    ExportPlan plan_;

    void add(const QString& file, const QString& folder, const std::optional<struct stat>& status) {
        const bool isFile = status && S_ISREG(status->st_mode);
        if (isFile) {
            plan_.transcripts.insert({status->st_dev, status->st_ino});
            plan_.permissions &= status->st_mode;
        }
        plan_.jobs.push_back({.number = plan_.jobs.size(),
                              .file = file,
                              .folder = folder,
                              .size = isFile ? status->st_size : 0});
    }

    void addFolder(const QString& given) {
        plan_.hasFolders = true;
        const std::string root = canonicalPath(given);
        const auto rest = [&root](const std::string& path) {
            const std::size_t length = root == "/" ? 0 : root.size();
            return foundation::pathFromArgument(path.c_str() + std::min(length, path.size()));
        };
        FolderWalk walk;
        walk.reportsForbidden = true;
        std::vector<QByteArray> found;
        walk.onFound = [&](FoundFile file) {
            found.push_back(std::move(file.path));
            onFound_(std::ssize(plan_.jobs) + std::ssize(found));
        };
        walk.onUnreadable = [&](const std::string& folder, const std::string& reason) {
            plan_.unreadable.push_back(
                {below(given, rest(folder)), QString::fromStdString(reason)});
        };
        walk.run({root});
        std::sort(found.begin(), found.end());
        const QString name = mirroredName(given);
        for (const QByteArray& path : found) {
            struct stat status {};
            const bool isThere = ::stat(path.constData(), &status) == 0;
            const QString inside = rest(path.toStdString());
            QString folder = name + inside.left(inside.lastIndexOf(u'/'));
            if (folder.startsWith(u'/')) folder.remove(0, 1);
            add(below(given, inside), folder, isThere ? std::optional(status) : std::nullopt);
        }
    }
};

}  // namespace

ExportPlan makePlan(const Options& options, const std::function<void(qsizetype count)>& onFound) {
    return Planner(onFound).plan(options.files);
}

}  // namespace vell
