// SPDX-License-Identifier: MIT
#include "export/html_head.h"

#include <QCryptographicHash>

#include "export/html_page.h"

namespace vell {

QLocale pageLocale(const QByteArray& dateLocale) {
    const QLocale locale(QString::fromLatin1(dateLocale));
    return locale.language() == QLocale::C ? QLocale(QLocale::English) : locale;
}

void appendHtmlHead(ByteBuffer& out, const QLocale& locale, QStringView title,
                    const QByteArray& css, QByteArrayView pictureSources) {
    const QByteArray hash = QCryptographicHash::hash(css, QCryptographicHash::Sha256).toBase64();
    out.append("<!DOCTYPE html>\n<html lang=\"");
    appendHtml(out, locale.bcp47Name(), HtmlPlace::attribute);
    out.append("\" dir=\"");
    locale.textDirection() == Qt::RightToLeft ? out.append("rtl") : out.append("ltr");
    out.append(
        "\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
        "style-src 'sha256-");
    out.append(QByteArrayView(hash));
    out.append("'; img-src ");
    out.append(pictureSources);
    out.append(
        "; base-uri 'none'; form-action 'none'\">\n"
        "<meta name=\"referrer\" content=\"no-referrer\">\n"
        "<meta name=\"color-scheme\" content=\"light dark\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>");
    appendHtml(out, title);
    out.append("</title>\n<style>");
    out.append(QByteArrayView(css));
    out.append("</style>\n</head>\n");
}

}  // namespace vell
