// SPDX-License-Identifier: MIT
#include "app/desktop/recently_used.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>
#include <functional>

#include "foundation/local_path.h"
#include "transcript/content_types.h"

namespace vell::recentlyUsed {
namespace {

const QString ownName = QStringLiteral("Vell");
constexpr qint64 largestList = 32 << 20;  // bytes; beyond it something is wrong with the list

QString listPath() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .filePath(QStringLiteral("recently-used.xbel"));
}

const char emptyList[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<xbel version=\"1.0\"\n"
    "      xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\"\n"
    "      xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\"/>\n";

std::optional<QDomDocument> parse(const QByteArray& bytes) {
    QDomDocument document;
    if (!document.setContent(bytes.isEmpty() ? QByteArray(emptyList) : bytes)) return std::nullopt;
    if (document.documentElement().tagName() != QLatin1String("xbel")) return std::nullopt;
    return document;
}

QDomElement child(QDomElement parent, const QString& tag) {
    QDomElement element = parent.firstChildElement(tag);
    if (element.isNull()) {
        element = parent.ownerDocument().createElement(tag);
        parent.appendChild(element);
    }
    return element;
}

QDomElement findBookmark(const QDomElement& list, const QString& address) {
    const QString tag = QStringLiteral("bookmark");
    for (QDomElement bookmark = list.firstChildElement(tag); !bookmark.isNull();
         bookmark = bookmark.nextSiblingElement(tag)) {
        if (bookmark.attribute(QStringLiteral("href")) == address) return bookmark;
    }
    return {};
}

QDomElement applicationsOf(const QDomElement& bookmark) {
    QDomElement metadata =
        child(child(bookmark, QStringLiteral("info")), QStringLiteral("metadata"));
    metadata.setAttribute(QStringLiteral("owner"), QStringLiteral("http://freedesktop.org"));
    return child(metadata, QStringLiteral("bookmark:applications"));
}

QDomElement ownRegistration(const QDomElement& applications) {
    const QString tag = QStringLiteral("bookmark:application");
    for (QDomElement application = applications.firstChildElement(tag); !application.isNull();
         application = application.nextSiblingElement(tag)) {
        if (application.attribute(QStringLiteral("name")) == ownName) return application;
    }
    return {};
}

QDomElement addBookmark(QDomElement list, const QString& address, const QString& time) {
    QDomElement bookmark = list.ownerDocument().createElement(QStringLiteral("bookmark"));
    bookmark.setAttribute(QStringLiteral("href"), address);
    bookmark.setAttribute(QStringLiteral("added"), time);
    list.appendChild(bookmark);
    QDomElement metadata = applicationsOf(bookmark).parentNode().toElement();
    QDomElement type = list.ownerDocument().createElement(QStringLiteral("mime:mime-type"));
    type.setAttribute(QStringLiteral("type"), iChatTranscriptType.mimeName.toString());
    metadata.insertBefore(type, metadata.firstChild());
    return bookmark;
}

/// Other programs change the list too: it is locked, read, edited and replaced as a whole.
void edit(const std::function<std::optional<QByteArray>(const QByteArray&)>& change) {
    const QString path = listPath();
    QLockFile lock(path + QStringLiteral(".vell-lock"));
    if (!lock.tryLock(200)) return;
    QFile file(path);
    QByteArray bytes;
    if (file.exists()) {
        if (file.size() > largestList || !file.open(QIODevice::ReadOnly)) return;
        bytes = file.readAll();
        file.close();
    }
    const auto changed = change(bytes);
    QSaveFile target(path);
    if (!changed || !target.open(QIODevice::WriteOnly)) return;
    target.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    target.write(*changed);
    target.commit();
}

}  // namespace

std::optional<QByteArray> withEntry(const QByteArray& document, const QString& address,
                                    const QDateTime& when) {
    auto list = parse(document);
    if (!list) return std::nullopt;
    const QString time = when.toUTC().toString(Qt::ISODate);
    QDomElement bookmark = findBookmark(list->documentElement(), address);
    if (bookmark.isNull()) bookmark = addBookmark(list->documentElement(), address, time);
    bookmark.setAttribute(QStringLiteral("modified"), time);
    bookmark.setAttribute(QStringLiteral("visited"), time);

    QDomElement applications = applicationsOf(bookmark);
    QDomElement own = ownRegistration(applications);
    if (own.isNull()) {
        own = list->createElement(QStringLiteral("bookmark:application"));
        applications.appendChild(own);
    }
    const int count = own.attribute(QStringLiteral("count")).toInt();
    own.setAttribute(QStringLiteral("name"), ownName);
    own.setAttribute(QStringLiteral("exec"), QStringLiteral("'vell %u'"));
    own.setAttribute(QStringLiteral("modified"), time);
    own.setAttribute(QStringLiteral("count"), QString::number(count + 1));
    return list->toByteArray(2);
}

std::optional<QByteArray> withoutOwnEntries(const QByteArray& document) {
    auto list = parse(document);
    if (!list) return std::nullopt;
    const QString tag = QStringLiteral("bookmark");
    QDomElement next;
    for (QDomElement bookmark = list->documentElement().firstChildElement(tag); !bookmark.isNull();
         bookmark = next) {
        next = bookmark.nextSiblingElement(tag);
        const QDomElement applications =
            bookmark.firstChildElement(QStringLiteral("info"))
                .firstChildElement(QStringLiteral("metadata"))
                .firstChildElement(QStringLiteral("bookmark:applications"));
        QDomElement own = ownRegistration(applications);
        if (own.isNull()) continue;
        own.parentNode().removeChild(own);
        if (applications.firstChildElement().isNull()) bookmark.parentNode().removeChild(bookmark);
    }
    return list->toByteArray(2);
}

void add(const QString& path) {
    QString address = foundation::storedPath(path);
    if (address == path)
        address = QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded(QUrl::FullyEncoded));
    edit([&](const QByteArray& document) {
        return withEntry(document, address, QDateTime::currentDateTimeUtc());
    });
}

void removeOwn() {
    edit([](const QByteArray& document) { return withoutOwnEntries(document); });
}

}  // namespace vell::recentlyUsed
