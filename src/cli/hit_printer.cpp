// SPDX-License-Identifier: MIT
#include "cli/hit_printer.h"

#include <unistd.h>

#include <QDateTime>
#include <algorithm>
#include <map>
#include <utility>

#include "export/json_writer.h"
#include "foundation/local_path.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

// As grep has them.
constexpr const char* pathColor = "35";
constexpr const char* timeColor = "32";
constexpr const char* separatorColor = "36";
constexpr const char* matchColor = "01;31";

QByteArray shownTime(foundation::Date date) {
    const auto milliseconds = date.millisecondsSinceEpoch();
    if (!milliseconds) return "?";
    return QDateTime::fromMSecsSinceEpoch(*milliseconds).toString(u"yyyy-MM-dd HH:mm"_s).toUtf8();
}

QStringView kindName(quint8 kinds) {
    if (kinds & ContentKinds::picture) return u"image";
    if (kinds & ContentKinds::file) return u"file";
    if (kinds & ContentKinds::link) return u"link";
    return u"plainText";
}

}  // namespace

HitPrinter::HitPrinter(const FindOptions& options,
                       std::function<QString(const TesselUserID&)> nameOf)
    : options_(options),
      nameOf_(std::move(nameOf)),
      sink_(STDOUT_FILENO),
      isTerminal_(isatty(STDOUT_FILENO) != 0) {}

void HitPrinter::print(const SearchHit& hit) {
    if (options_.writesJson)
        printJson(hit);
    else if (options_.context > 0)
        addBlock(hit);
    else
        printLine(shownPath(hit.path), hit.message, true);
    flushOnTerminal();
}

void HitPrinter::printCount(qint64 count) {
    sink_.write(QByteArray::number(count) + '\n');
}

void HitPrinter::finish() {
    printBlocks();
    sink_.flush();
}

void HitPrinter::flushOnTerminal() {
    if (isTerminal_) sink_.flush();
}

/// Begins like the folder as it was given.
QByteArray HitPrinter::shownPath(const QByteArray& path) const {
    for (const SearchedFolder& folder : options_.folders) {
        const auto size = static_cast<qsizetype>(folder.canonical.size());
        const QByteArrayView canonical(folder.canonical.data(), size);
        if (path == canonical) return folder.given;
        if (!path.startsWith(canonical) || (!canonical.endsWith('/') && path[size] != '/'))
            continue;
        const QByteArray rest = path.sliced(canonical.endsWith('/') ? size : size + 1);
        if (folder.given.isEmpty() || folder.given.endsWith('/')) return folder.given + rest;
        return folder.given + '/' + rest;
    }
    return path;
}

QString HitPrinter::senderOf(const FoundMessage& message) const {
    return message.sender ? nameOf_(*message.sender) : QString();
}

QByteArray HitPrinter::colored(const char* color, const QByteArray& text) const {
    if (!isTerminal_ || text.isEmpty()) return text;
    return QByteArray("\033[") + color + 'm' + text + "\033[m";
}

/// The text with its matches marked.
QByteArray HitPrinter::marked(const FoundMessage& message) {
    const QString text = oneLine(message.text);
    if (!isTerminal_) return text.toUtf8();
    tokenizer_.read(message.text);
    QByteArray result;
    qsizetype end = 0;
    for (const TextStretch& stretch : stretchesOf(options_.query, tokenizer_)) {
        result += QStringView(text).sliced(end, stretch.position - end).toUtf8();
        end = stretch.position + stretch.length;
        result += colored(matchColor, text.sliced(stretch.position, stretch.length).toUtf8());
    }
    return result + QStringView(text).sliced(end).toUtf8();
}

void HitPrinter::printJson(const SearchHit& hit) {
    const FoundMessage& message = hit.message;
    JsonWriter writer;
    writer.beginObject();
    writer.key("path");
    writer.string(QString::fromUtf8(shownPath(hit.path)));
    writer.key("sequence");
    writer.number(message.sequence);
    writer.key("timestamp");
    const auto timestamp = message.date.iso8601();
    timestamp ? writer.string(*timestamp) : writer.null();
    writer.key("sender");
    if (message.sender) {
        writer.beginObject();
        writer.key("serviceID");
        writer.string(message.sender->serviceID.rawValue);
        writer.key("userID");
        writer.string(message.sender->userID);
        writer.endObject();
    } else {
        writer.null();
    }
    writer.key("kind");
    writer.string(kindName(message.kinds));
    writer.key("text");
    writer.string(message.text);
    writer.endObject();
    sink_.write(writer.take() + '\n');
}

/// "PATH:2009-07-04 20:15 anna: TEXT"; neighbours of a hit have "-" for ":", as grep prints them.
void HitPrinter::printLine(const QByteArray& path, const FoundMessage& message, bool isHit) {
    const QByteArray separator = colored(separatorColor, isHit ? ":" : "-");
    const QByteArray sender = oneLine(senderOf(message)).toUtf8();
    QByteArray line =
        colored(pathColor, path) + separator + colored(timeColor, shownTime(message.date)) + ' ';
    if (!sender.isEmpty()) line += sender + separator + ' ';
    line += message.text.isEmpty() ? placeholderFor(message.kinds).toUtf8()
            : isHit                ? marked(message)
                                   : oneLine(message.text).toUtf8();
    sink_.write(line + '\n');
}

void HitPrinter::addBlock(const SearchHit& hit) {
    if (hit.path != path_) printBlocks();
    path_ = hit.path;
    std::vector<Line> block;
    for (const FoundMessage& message : hit.before)
        block.push_back({message, false});
    block.push_back({hit.message, true});
    for (const FoundMessage& message : hit.after)
        block.push_back({message, false});
    blocks_.push_back(std::move(block));
}

/// Prints those of the file in its order, joined where they overlap.
void HitPrinter::printBlocks() {
    std::vector<std::vector<Line>> blocks = std::exchange(blocks_, {});
    const auto sequenceOf = [](const Line& line) { return line.message.sequence; };
    std::sort(blocks.begin(), blocks.end(), [&](const auto& a, const auto& b) {
        return sequenceOf(a.front()) < sequenceOf(b.front());
    });
    std::map<qint64, Line> joined;
    const auto printJoined = [&] {
        if (joined.empty()) return;
        if (std::exchange(hasPrintedBlock_, true))
            sink_.write(colored(separatorColor, "--") + '\n');
        for (const auto& [sequence, line] : std::exchange(joined, {}))
            printLine(shownPath(path_), line.message, line.isHit);
    };
    for (const std::vector<Line>& block : blocks) {
        if (!joined.empty() && sequenceOf(block.front()) > joined.rbegin()->first) printJoined();
        for (const Line& line : block) {
            if (Line& known = joined[sequenceOf(line)]; !known.isHit) known = line;
        }
    }
    printJoined();
}

}  // namespace vell
