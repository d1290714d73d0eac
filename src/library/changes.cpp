// SPDX-License-Identifier: MIT
#include "library/changes.h"

#include <algorithm>
#include <tuple>

namespace vell {

bool isWithin(QByteArrayView path, const std::string& folder) {
    const QByteArrayView root(folder.data(), static_cast<qsizetype>(folder.size()));
    if (!path.startsWith(root)) return false;
    return path.size() == root.size() || root.endsWith('/') || path[root.size()] == '/';
}

Changes::Changes(const std::vector<KnownFile>& known, std::vector<FoundFile> found,
                 const std::vector<std::string>& folders) {
    std::vector<KnownFile> gone;
    std::vector<FoundFile> newFiles;
    const auto isEarlier = [](const FoundFile& file, const QByteArray& path) {
        return file.path < path;
    };
    for (const KnownFile& file : known) {
        const auto at = std::lower_bound(found.begin(), found.end(), file.file.path, isEarlier);
        const bool isThere = at != found.end() && at->path == file.file.path;
        const bool isWanted = std::any_of(folders.begin(), folders.end(), [&](const auto& folder) {
            return isWithin(file.file.path, folder);
        });
        if (!isThere && isWanted) gone.push_back(file);
        if (isThere) known_.insert(file.file.path, file);
    }
    for (FoundFile& file : found) {
        const auto at = known_.constFind(file.path);
        if (at == known_.cend())
            newFiles.push_back(std::move(file));
        else if (at->file != file)
            toRead.push_back(std::move(file));
    }
    findMoves(newFiles, gone);
    toRead.insert(toRead.end(), newFiles.begin(), newFiles.end());
    std::sort(toRead.begin(), toRead.end(),
              [](const FoundFile& a, const FoundFile& b) { return a.path < b.path; });
    for (const KnownFile& file : gone)
        vanished_.emplace(file.hash, file.id);
}

/// A file that was renamed is the same one, changed at the same time.
void Changes::findMoves(std::vector<FoundFile>& newFiles, std::vector<KnownFile>& gone) {
    const auto key = [](const FoundFile& f) { return std::tuple(f.inode, f.modified, f.size); };
    std::map<decltype(key(FoundFile())), const KnownFile*> byIdentity;
    for (const KnownFile& file : gone)
        byIdentity.emplace(key(file.file), &file);
    std::vector<qint64> numbers;
    std::erase_if(newFiles, [&](const FoundFile& file) {
        const auto at = byIdentity.find(key(file));
        if (at == byIdentity.end()) return false;
        moved.emplace_back(at->second->id, file);
        numbers.push_back(at->second->id);
        byIdentity.erase(at);
        return true;
    });
    std::sort(numbers.begin(), numbers.end());
    std::erase_if(gone, [&](const KnownFile& file) {
        return std::binary_search(numbers.begin(), numbers.end(), file.id);
    });
}

const Changes::KnownFile* Changes::at(const QByteArray& path) const {
    const auto at = known_.constFind(path);
    return at == known_.cend() ? nullptr : &*at;
}

std::optional<qint64> Changes::takeVanished(const QByteArray& hash) {
    const auto at = vanished_.find(hash);
    if (hash.isEmpty() || at == vanished_.end()) return std::nullopt;
    const qint64 number = at->second;
    vanished_.erase(at);
    return number;
}

std::vector<qint64> Changes::vanished() const {
    std::vector<qint64> result;
    for (const auto& [hash, number] : vanished_)
        result.push_back(number);
    return result;
}

TranscriptReader::Hashes Changes::knownHashes() const {
    auto result = std::make_shared<QSet<QByteArray>>();
    for (const auto& [hash, number] : vanished_)
        result->insert(hash);
    for (const FoundFile& file : toRead) {
        if (const KnownFile* before = at(file.path)) result->insert(before->hash);
    }
    return result;
}

}  // namespace vell
