// SPDX-License-Identifier: MIT
#include "library/indexer.h"

#include <QElapsedTimer>
#include <QHash>
#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "library/batch_writer.h"
#include "library/parallel_files.h"

namespace vell {
namespace {

constexpr qint64 guessAfter = 1000;  // milliseconds

using KnownFile = LibraryStore::KnownFile;

/// What the database has to learn about the folders.
class Changes {
  public:
    Changes(std::vector<KnownFile> known, std::vector<FoundFile> found,
            const std::vector<std::string>& folders);

    /// New and changed files.
    std::vector<FoundFile> toRead;
    /// Files at another path that are otherwise as they were.
    std::vector<std::pair<qint64, FoundFile>> moved;

    /// What the database has at the path; null when it has nothing.
    [[nodiscard]] const KnownFile* at(const QByteArray& path) const;
    /// Takes a file of this content that isn't at its place any longer.
    [[nodiscard]] std::optional<qint64> takeVanished(const QByteArray& hash);
    /// Those that nothing has taken.
    [[nodiscard]] std::vector<qint64> vanished() const;
    /// Of contents that needn't be read again.
    [[nodiscard]] FileReader::Hashes knownHashes() const;

  private:
    QHash<QByteArray, KnownFile> known_;
    std::multimap<QByteArray, qint64> vanished_;  // by hash

    void findMoves(std::vector<FoundFile>& newFiles, std::vector<KnownFile>& gone);
};

Changes::Changes(std::vector<KnownFile> known, std::vector<FoundFile> found,
                 const std::vector<std::string>& folders) {
    std::vector<KnownFile> gone;
    std::vector<FoundFile> newFiles;
    const auto isEarlier = [](const FoundFile& file, const QByteArray& path) {
        return file.path < path;
    };
    for (KnownFile& file : known) {
        const auto at = std::lower_bound(found.begin(), found.end(), file.file.path, isEarlier);
        const bool isThere = at != found.end() && at->path == file.file.path;
        const bool isWanted = std::any_of(folders.begin(), folders.end(), [&](const auto& folder) {
            return isWithin(file.file.path, folder);
        });
        if (!isThere && isWanted) gone.push_back(file);
        if (isThere) known_.insert(file.file.path, std::move(file));
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

const KnownFile* Changes::at(const QByteArray& path) const {
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

FileReader::Hashes Changes::knownHashes() const {
    auto result = std::make_shared<QSet<QByteArray>>();
    for (const auto& [hash, number] : vanished_)
        result->insert(hash);
    for (const FoundFile& file : toRead) {
        if (const KnownFile* before = at(file.path)) result->insert(before->hash);
    }
    result->remove({});  // what couldn't be read
    return result;
}

/// Hands what was read to the writer.
class Update {
  public:
    Update(Changes& changes, BatchWriter& writer) : changes_(changes), writer_(writer) {}

    void apply(PreparedFile file) {
        const KnownFile* before = changes_.at(file.reading.file.path);
        if (file.reading.isKnown) {
            if (before && before->hash == file.reading.hash)
                return writer_.update(before->id, file.reading.file);
            if (const auto number = changes_.takeVanished(file.reading.hash)) {
                if (before) writer_.remove(before->id);
                return writer_.update(*number, file.reading.file);
            }
            // One of several copies, of which another was taken for the one that moved.
            file = prepared(FileReader().read(file.reading.file), tokenizer_);
        }
        if (before) writer_.remove(before->id);
        writer_.add(std::move(file));
    }

  private:
    Changes& changes_;
    BatchWriter& writer_;
    TextTokenizer tokenizer_;
};

std::function<PreparedFile(const FoundFile&)> preparation(const FileReader::Hashes& hashes) {
    return [reader = std::make_shared<FileReader>(hashes),
            tokenizer = std::make_shared<TextTokenizer>()](const FoundFile& file) {
        return prepared(reader->read(file), *tokenizer);
    };
}

}  // namespace

bool isWithin(QByteArrayView path, const std::string& folder) {
    const QByteArrayView root(folder.data(), static_cast<qsizetype>(folder.size()));
    if (!path.startsWith(root)) return false;
    return path.size() == root.size() || root.endsWith('/') || path[root.size()] == '/';
}

std::vector<FoundFile> transcriptsIn(const std::vector<std::string>& folders,
                                     const std::atomic<bool>& stop) {
    std::vector<FoundFile> found;
    FolderWalk walk;
    walk.onFound = [&found](FoundFile file) { found.push_back(std::move(file)); };
    walk.onFile = [&](qint64, const std::string&) {
        if (stop) walk.cancel();
    };
    walk.run(folders);
    const auto isLess = [](const FoundFile& a, const FoundFile& b) { return a.path < b.path; };
    const auto isSame = [](const FoundFile& a, const FoundFile& b) { return a.path == b.path; };
    std::sort(found.begin(), found.end(), isLess);
    found.erase(std::unique(found.begin(), found.end(), isSame), found.end());
    return found;
}

void Indexer::update(const std::vector<std::string>& folders, const std::atomic<bool>& stop) {
    std::vector<FoundFile> found = transcriptsIn(folders, stop);
    if (stop) return;
    Changes changes(store_.files(), std::move(found), folders);
    BatchWriter writer(store_, [&stop] { return stop.load(); });
    for (const auto& [number, file] : changes.moved)
        writer.update(number, file);

    qint64 bytes = 0;
    for (const FoundFile& file : changes.toRead)
        bytes += file.size;
    Progress progress{0, std::ssize(changes.toRead), {}};
    qint64 bytesDone = 0;
    QElapsedTimer elapsed;
    elapsed.start();
    Update update(changes, writer);
    const auto hashes = changes.knownHashes();
    ParallelFiles<PreparedFile> files(changes.toRead, [hashes] { return preparation(hashes); });
    try {
        while (auto file = files.next(stop)) {
            bytesDone += file->reading.file.size;
            update.apply(*std::move(file));
            if (writer.isFull()) writer.flush();
            ++progress.done;
            if (elapsed.elapsed() > guessAfter && bytesDone > 0) {
                const double left =
                    static_cast<double>(bytes - bytesDone) / static_cast<double>(bytesDone);
                progress.secondsLeft = std::max(
                    0, static_cast<int>(static_cast<double>(elapsed.elapsed()) * left / 1000));
            }
            if (onProgress) onProgress(progress);
        }
        if (stop) return;
        for (const qint64 number : changes.vanished())
            writer.remove(number);
        writer.flush();
    } catch (const DatabaseError& error) {
        if (error.kind() != DatabaseError::Kind::interrupted) throw;
    }
}

}  // namespace vell
