// SPDX-License-Identifier: MIT
#include "timeline/input/links.h"

#include <QDesktopServices>
#include <QList>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QUrlQuery>
#include <algorithm>

#include "toolkit/link_schemes.h"
#include "toolkit/look_alikes.h"

namespace vell {
namespace {

constexpr qsizetype longestShown = 1000;
constexpr qsizetype longestRead = 10'000;  // longer texts aren't checked and count as suspicious

bool isUnseen(char32_t c) {
    const QChar::Category category = QChar::category(c);
    return category == QChar::Other_Format || category == QChar::Other_Control ||
           category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
}

/// Marks, overrides and isolates turn around what stands beside them.
bool changesDirection(char32_t c) {
    switch (QChar::direction(c)) {
        case QChar::DirLRE:
        case QChar::DirLRO:
        case QChar::DirRLE:
        case QChar::DirRLO:
        case QChar::DirPDF:
        case QChar::DirLRI:
        case QChar::DirRLI:
        case QChar::DirFSI:
        case QChar::DirPDI:
            return true;
        default:
            return c == 0x200e || c == 0x200f || c == 0x061c;
    }
}

bool anyOf(const QString& text, bool (*is)(char32_t)) {
    const auto characters = text.toUcs4();
    return std::any_of(characters.begin(), characters.end(), is);
}

/// The text as a reader takes it: letters that look like others because they are only wider, and
/// the full stops of other scripts, are their plain forms; a backslash is a slash.
QString seenText(const QString& text) {
    QString seen;
    for (const char32_t c : text.normalized(QString::NormalizationForm_KC).toUcs4()) {
        const char32_t plain = QChar::isSpace(c) ? U' ' : c == U'。' ? U'.' : c == U'\\' ? U'/' : c;
        if (!isUnseen(plain)) seen += QString::fromUcs4(&plain, 1);
    }
    return seen;
}

QStringList words(const QString& text) {
    return text.simplified().split(u' ', Qt::SkipEmptyParts);
}

/// The host as the network knows it; "www." in front of it makes no difference.
QString comparable(const QString& host) {
    QString ascii = QString::fromLatin1(QUrl::toAce(host)).toLower();
    if (ascii.isEmpty()) ascii = host.toLower();
    while (ascii.endsWith(u'.'))
        ascii.chop(1);
    return ascii.startsWith(QLatin1String("www.")) ? ascii.sliced(4) : ascii;
}

/// Where an address leads: its host, or that of the mailbox in it.
QString hostOf(const QUrl& url) {
    if (!url.host().isEmpty()) return comparable(url.host());
    const QString path = url.path();
    const qsizetype at = path.lastIndexOf(u'@');
    if (at < 0) return {};
    static const QRegularExpression end(QStringLiteral("[/?;,]"));
    return comparable(path.sliced(at + 1).section(end, 0, 0));
}

/// The host that a reader takes one word for; empty when it is no address.
QString apparentHost(const QString& word) {
    static const QRegularExpression withScheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]*:"));
    static const QRegularExpression domain(
        QStringLiteral("^(?:[^@/\\s]*@)?((?:\\d{1,3}\\.){3}\\d{1,3}|"
                       "(?:[\\w-]+\\.)+(?:xn--[\\w-]+|\\p{L}{2,}))(?![\\w@-])"),
        QRegularExpression::UseUnicodePropertiesOption);
    if (withScheme.match(word).hasMatch()) {
        QString host = hostOf(QUrl(word));
        if (!host.isEmpty()) return host;
    }
    const QRegularExpressionMatch match = domain.match(word);
    return match.hasMatch() ? comparable(match.captured(1)) : QString();
}

/// A host that is written with other letters than it seems to be, to the eye or by its code.
bool isDisguised(const QString& host) {
    const QString shown = QUrl::fromAce(host.toLatin1());
    const QString name = shown.isEmpty() ? host : shown;
    const auto isAscii = [](QChar c) { return c.unicode() < 0x80; };
    if (std::all_of(name.begin(), name.end(), isAscii)) return false;
    const QString seen = withPlainLookAlikes(name);
    return std::all_of(seen.begin(), seen.end(), isAscii);
}

/// Whether programs agree on where the address leads: those that aren't written out, with a name
/// before the host or with a backslash, lead elsewhere than they seem to.
bool isWrittenOut(const QUrl& url, const QString& address) {
    static const QRegularExpression pattern(QStringLiteral("^[a-z]+://[^/\\\\?#@|]+([/?#]|$)"),
                                            QRegularExpression::CaseInsensitiveOption);
    return pattern.match(address).hasMatch() && url.userInfo().isEmpty() && !url.host().isEmpty();
}

/// A mail that is only begun: a file of the reader's, or a hidden recipient, must not go with it.
bool isPlainMail(const QUrl& url) {
    static const QStringList plainFields{QStringLiteral("subject"), QStringLiteral("body"),
                                         QStringLiteral("to"), QStringLiteral("cc")};
    QString query = url.query(QUrl::FullyEncoded);
    const auto fields = QUrlQuery(query.replace(u';', u'&')).queryItems(QUrl::FullyDecoded);
    return std::all_of(fields.begin(), fields.end(), [](const auto& field) {
        return plainFields.contains(field.first.toLower());
    });
}

/// Whether no word of the text, as it is or as it looks, names another host.
bool namesNoOtherHost(const QString& text, const QString& host, bool isMail) {
    static const QRegularExpression brackets(QStringLiteral("^[\\p{P}\\p{S}]+|[\\p{P}\\p{S}]+$"));
    const auto isOther = [&](const QString& word) {
        const QString apparent = apparentHost(word);
        // What stands before "@" is read first.
        const QString name = isMail ? QString() : apparentHost(word.section(u'@', 0, 0));
        return (!apparent.isEmpty() && apparent != host) || (!name.isEmpty() && name != host);
    };
    const QString seen = seenText(text);
    for (const QString& read : {seen, withPlainLookAlikes(seen)})
        for (QString word : words(read))
            if (isOther(word.remove(brackets))) return false;
    return true;
}

}  // namespace

bool isPlainLink(const QString& address, const QString& text) {
    const QUrl url(address);
    const QByteArray scheme = url.scheme().toLatin1().toLower();
    if (!url.isValid() || text.size() > longestRead || address.contains(u'\\') ||
        std::find(plainSchemes.begin(), plainSchemes.end(), scheme) == plainSchemes.end()) {
        return false;
    }
    if (anyOf(address, isUnseen) || anyOf(text, changesDirection)) return false;
    const bool isOfTheWeb = scheme == "http" || scheme == "https" || scheme == "ftp";
    if (isOfTheWeb && !isWrittenOut(url, address)) return false;
    if (scheme == "mailto" && !isPlainMail(url)) return false;
    const QString host = hostOf(url);
    if (isDisguised(host)) return false;
    return text == address || namesNoOtherHost(text, host, !isOfTheWeb);
}

QString shownAddress(const QString& address) {
    QString whole = address;
    if (whole.size() > longestShown) {
        whole = whole.left(longestShown / 2) + u'…' + whole.right(longestShown / 2);
    }
    QString shown;
    for (const char32_t c : whole.toUcs4()) {
        const QString character = QString::fromUcs4(&c, 1);
        const bool isBlank = QChar::isSpace(c) && c != U' ';
        shown += isBlank || isUnseen(c)
                     ? QString::fromLatin1(character.toUtf8().toPercentEncoding())
                     : character;
    }
    return shown;
}

Links::Links(QWidget& window)
    : QObject(&window), window_(window), opener_(&QDesktopServices::openUrl) {}

void Links::open(const QString& address, const QString& text) {
    if (isPlainLink(address, text)) {
        openNow(address);
        return;
    }
    auto* box =
        new QMessageBox(QMessageBox::Question, tr("Open Link"), {}, QMessageBox::Cancel, &window_);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setText(tr("Do you want to open this address?\n\n%1").arg(shownAddress(address)));
    QPushButton* open = box->addButton(tr("&Open"), QMessageBox::AcceptRole);
    box->setDefaultButton(QMessageBox::Cancel);
    connect(open, &QPushButton::clicked, this, [this, address] { openNow(address); });
    box->open();
}

void Links::openNow(const QString& address) {
    if (opener_(QUrl(address))) return;
    auto* box =
        new QMessageBox(QMessageBox::Warning, tr("Open Link"), {}, QMessageBox::Ok, &window_);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setText(tr("No program here opens this address.\n\n%1").arg(shownAddress(address)));
    box->open();
}

}  // namespace vell
