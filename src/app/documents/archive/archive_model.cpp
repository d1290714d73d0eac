// SPDX-License-Identifier: MIT
#include "app/documents/archive/archive_model.h"

#include <QGuiApplication>
#include <QLocale>
#include <QPalette>
#include <algorithm>
#include <utility>

#include "foundation/printable.h"

namespace vell {

using inspector::Entry;

namespace {

constexpr quint64 rangeSize = 1000;
constexpr qsizetype longestText = 300;
constexpr qsizetype shownBytes = 16;

/// Names and values of archives are written from left to right everywhere.
QString leftToRight(const QString& text) {
    if (!QGuiApplication::isRightToLeft() || text.isEmpty()) return text;
    constexpr QChar isolate(0x2066);
    constexpr QChar end(0x2069);
    return isolate + text + end;
}

/// The letters of non-keyed archives stay as they are.
QString typeName(const QByteArray& type) {
    [[maybe_unused]] static constexpr const char* names[] = {
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "object"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "class"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "text"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "integer"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "real"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "boolean"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "date"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "data"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "reference"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "array"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "set"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "dictionary"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "struct"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "null"),
        QT_TRANSLATE_NOOP("vell::ArchiveModel", "invalid"),
    };
    return type.size() == 1 ? QString::fromLatin1(type) : ArchiveModel::tr(type.constData());
}

}  // namespace

struct ArchiveModel::Node {
    Node* parent = nullptr;
    int row = 0;
    std::unique_ptr<Entry> entry;     ///< null for a range
    const Node* whole = nullptr;      ///< whose parts a range has; null for objects
    std::optional<quint64> object{};  ///< the number of an object
    quint64 first = 0;
    quint64 count = 0;  ///< of parts
    bool isFetched = false;
    Nodes parts{};
};

ArchiveModel::ArchiveModel(std::unique_ptr<inspector::Archive> archive, QObject* parent)
    : QAbstractItemModel(parent), archive_(std::move(archive)), root_(std::make_unique<Node>()) {
    root_->entry = std::make_unique<Entry>(archive_->root());
    root_->count = root_->entry->count + archive_->objectCount();
}

ArchiveModel::~ArchiveModel() = default;

ArchiveModel::Node* ArchiveModel::node(const QModelIndex& index) const {
    return index.isValid() ? static_cast<Node*>(index.internalPointer()) : root_.get();
}

QModelIndex ArchiveModel::indexOf(const Node& node, int column) const {
    return &node == root_.get() ? QModelIndex() : createIndex(node.row, column, &node);
}

/// Appends what is of this range, or ranges of it.
void ArchiveModel::append(Nodes& nodes, const Node* whole, quint64 first, quint64 count) const {
    const auto add = [&nodes](Node node) {
        nodes.push_back(std::make_unique<Node>(std::move(node)));
    };
    if (count > rangeSize) {
        quint64 step = rangeSize;
        while (count / step > rangeSize)
            step *= rangeSize;
        for (const quint64 end = first + count; first < end; first += step)
            add({.entry = nullptr,
                 .whole = whole,
                 .first = first,
                 .count = std::min(step, end - first)});
        return;
    }
    const auto addEntry = [&add](Entry entry, std::optional<quint64> object) {
        const quint64 parts = entry.count;
        add({.entry = std::make_unique<Entry>(std::move(entry)), .object = object, .count = parts});
    };
    if (!whole) {
        for (quint64 number = first; number < first + count; ++number)
            addEntry(archive_->object(number), number);
        return;
    }
    if (count == 0) return;
    archive_->visitParts(*whole->entry, first, [&](Entry entry) {
        addEntry(std::move(entry), std::nullopt);
        return --count > 0;
    });
}

ArchiveModel::Nodes ArchiveModel::parts(const Node& node) const {
    Nodes result;
    if (&node == root_.get()) {
        append(result, &node, 0, node.entry->count);
        append(result, nullptr, 0, archive_->objectCount());
    } else if (node.entry) {
        append(result, &node, 0, node.count);
    } else {
        append(result, node.whole, node.first, node.count);
    }
    return result;
}

bool ArchiveModel::canFetchMore(const QModelIndex& parent) const {
    const Node& whole = *node(parent);
    return !whole.isFetched && whole.count > 0;
}

void ArchiveModel::fetchMore(const QModelIndex& parent) {
    if (!canFetchMore(parent)) return;
    Node& whole = *node(parent);
    whole.isFetched = true;
    Nodes found = parts(whole);
    if (found.empty()) return;
    for (size_t row = 0; row < found.size(); ++row) {
        found[row]->parent = &whole;
        found[row]->row = int(row);
    }
    beginInsertRows(parent, 0, int(found.size()) - 1);
    whole.parts = std::move(found);
    endInsertRows();
}

QModelIndex ArchiveModel::objectIndex(quint64 number) {
    if (number >= archive_->objectCount()) return {};
    const auto holds = [number](const auto& node) {
        if (node->entry) return node->object == number;
        return !node->whole && number >= node->first && number - node->first < node->count;
    };
    for (Node* node = root_.get(); node->object != number;) {
        fetchMore(indexOf(*node));
        const auto next = std::find_if(node->parts.begin(), node->parts.end(), holds);
        if (next == node->parts.end()) return {};
        node = next->get();
        if (node->object == number) return indexOf(*node);
    }
    return {};
}

std::optional<quint64> ArchiveModel::objectAt(const QModelIndex& index) const {
    for (const Node* at = node(index); at; at = at->parent)
        if (at->object) return at->object;
    return std::nullopt;
}

const Entry* ArchiveModel::entryAt(const QModelIndex& index) const {
    return index.isValid() ? node(index)->entry.get() : nullptr;
}

QString ArchiveModel::path(const QModelIndex& index) const {
    QString result;
    for (const Node* at = node(index); at; at = at->parent)
        if (at->entry) result.prepend(at->entry->step);
    return result;
}

QModelIndex ArchiveModel::index(int row, int column, const QModelIndex& parent) const {
    const Node& whole = *node(parent);
    if (row < 0 || row >= std::ssize(whole.parts) || column < 0 || column >= columns) return {};
    return createIndex(row, column, whole.parts[size_t(row)].get());
}

QModelIndex ArchiveModel::parent(const QModelIndex& index) const {
    return index.isValid() ? indexOf(*node(index)->parent) : QModelIndex();
}

int ArchiveModel::rowCount(const QModelIndex& parent) const {
    return parent.column() > 0 ? 0 : int(node(parent)->parts.size());
}

bool ArchiveModel::hasChildren(const QModelIndex& parent) const {
    return parent.column() <= 0 && node(parent)->count > 0;
}

QString ArchiveModel::nameOf(const Node& node) const {
    if (node.entry)
        return node.entry->step.startsWith(u'.') ? node.entry->step.mid(1) : node.entry->step;
    const quint64 last = node.first + node.count - 1;
    return (node.whole ? QStringLiteral("[%1] – [%2]") : QStringLiteral("#%1 – #%2"))
        .arg(node.first)
        .arg(last);
}

/// A text between quotes, the first bytes of data.
QString ArchiveModel::shown(const Entry& entry) const {
    switch (entry.kind) {
        case Entry::Kind::text:
            return u'"' + foundation::printable(entry.value, longestText) + u'"';
        case Entry::Kind::bytes: {
            const QByteArrayView bytes = entry.bytes.view();
            QString size = QLocale().formattedDataSize(bytes.size());
            if (bytes.isEmpty()) return size;
            const QByteArrayView start = bytes.first(std::min(bytes.size(), shownBytes));
            const QString hex = QString::fromLatin1(start.toByteArray().toHex(' '));
            return size + QStringLiteral(": ") + hex +
                   QStringLiteral(" …").left(start.size() < bytes.size() ? 2 : 0);
        }
        case Entry::Kind::container:
            return tr("Values: %1").arg(QLocale().toString(entry.count));
        default:
            return foundation::printable(entry.value, longestText);
    }
}

/// Of a reference also what it leads to.
QString ArchiveModel::valueOf(const Node& node) const {
    if (!node.entry) return {};
    const Entry& entry = *node.entry;
    if (!entry.target || *entry.target >= archive_->objectCount()) return shown(entry);
    return entry.value + u' ' + shown(archive_->object(*entry.target));
}

QVariant ArchiveModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Node& at = *node(index);
    const auto column = [&](int which) -> QString {
        if (which == name) return nameOf(at);
        if (which == value) return valueOf(at);
        if (!at.entry) return {};
        if (which == type) return typeName(at.entry->type);
        return at.entry->offset < 0 ? QString() : QLocale().toString(at.entry->offset);
    };
    switch (role) {
        case Qt::DisplayRole:
            return index.column() == offset ? column(offset) : leftToRight(column(index.column()));
        case Qt::AccessibleTextRole: {
            if (index.column() != name) return column(index.column());
            QStringList parts{column(name), column(value), column(type)};
            if (const QString place = column(offset); !place.isEmpty())
                parts += tr("at byte %1").arg(place);
            parts.removeAll(QString());
            return parts.join(QStringLiteral(", "));
        }
        case Qt::ToolTipRole:
            return index.column() == value
                       ? QStringLiteral("<qt>%1</qt>").arg(column(value).toHtmlEscaped())
                       : QVariant();
        case Qt::TextAlignmentRole:
            return index.column() == offset ? QVariant(Qt::AlignTrailing | Qt::AlignVCenter)
                                            : QVariant();
        case Qt::ForegroundRole:
            return index.column() >= type || !at.entry
                       ? QVariant(QGuiApplication::palette().brush(QPalette::PlaceholderText))
                       : QVariant();
        default:
            return {};
    }
}

QVariant ArchiveModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole && section == offset)
        return QVariant(Qt::AlignTrailing | Qt::AlignVCenter);
    if (role != Qt::DisplayRole) return {};
    switch (section) {
        case name:
            return tr("Name");
        case value:
            return tr("Value");
        case type:
            return tr("Type");
        default:
            return tr("Byte");
    }
}

}  // namespace vell
