// SPDX-License-Identifier: MIT
#include "timeline/links.h"

#include <QDesktopServices>
#include <QList>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <algorithm>
#include <array>

namespace vell {
namespace {

constexpr std::array plainSchemes{"http", "https", "mailto",   "ftp",
                                  "aim",  "xmpp",  "facetime", "tel"};
constexpr qsizetype longestShown = 1000;

bool isUnseen(char32_t c) {
    const QChar::Category category = QChar::category(c);
    return category == QChar::Other_Format || category == QChar::Other_Control ||
           category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
}

/// The words of a text as a reader takes them: letters that look like others because they are only
/// wider, and the full stops of other scripts, are their plain forms.
QStringList seenWords(const QString& text) {
    QString seen;
    for (const char32_t c : text.normalized(QString::NormalizationForm_KC).toUcs4()) {
        const char32_t plain = QChar::isSpace(c) ? U' ' : c == U'。' ? U'.' : c;
        if (!isUnseen(plain)) seen += QString::fromUcs4(&plain, 1);
    }
    return seen.simplified().split(u' ', Qt::SkipEmptyParts);
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
                       "(?:[\\w-]+\\.)+(?:\\p{L}{2,}|xn--[\\w-]+))"
                       "\\.?(?::\\d*)?(?:[/?#].*)?$"),
        QRegularExpression::UseUnicodePropertiesOption);
    if (withScheme.match(word).hasMatch()) {
        const QString host = hostOf(QUrl(word));
        if (!host.isEmpty()) return host;
    }
    const QRegularExpressionMatch match = domain.match(word);
    return match.hasMatch() ? comparable(match.captured(1)) : QString();
}

}  // namespace

bool isPlainLink(const QString& address, const QString& text) {
    const QUrl url(address);
    const QByteArray scheme = url.scheme().toLatin1().toLower();
    if (!url.isValid() ||
        std::find(plainSchemes.begin(), plainSchemes.end(), scheme) == plainSchemes.end()) {
        return false;
    }
    if (text == address) return true;
    static const QRegularExpression brackets(QStringLiteral("^[\\p{P}\\p{S}]+|[\\p{P}\\p{S}]+$"));
    const QString host = hostOf(url);
    const QStringList words = seenWords(text);
    return std::all_of(words.begin(), words.end(), [&](QString word) {
        const QString apparent = apparentHost(word.remove(brackets));
        return apparent.isEmpty() || apparent == host;
    });
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
