// SPDX-License-Identifier: MIT
#include "app/documents/export/export_formats.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <algorithm>
#include <iterator>

#include "export/format.h"

namespace vell {
namespace {

struct Title {
    const char* format;
    const char* text;
};

// A format that isn't among them is called as on the command line.
constexpr Title titles[] = {
    {"markdown", QT_TRANSLATE_NOOP("Export", "Markdown")},
    {"text", QT_TRANSLATE_NOOP("Export", "Plain text")},
    {"html", QT_TRANSLATE_NOOP("Export", "Web page")},
    {"json", QT_TRANSLATE_NOOP("Export", "JSON, everything")},
    {"jsonl", QT_TRANSLATE_NOOP("Export", "JSON Lines, for databases")},
    {"csv", QT_TRANSLATE_NOOP("Export", "Table for spreadsheets")},
};

QString title(const Format& format) {
    const auto* found = std::find_if(std::begin(titles), std::end(titles), [&](const Title& title) {
        return QLatin1StringView(title.format) == QLatin1StringView(format.name);
    });
    if (found == std::end(titles)) return QString::fromLatin1(format.name);
    return QCoreApplication::translate("Export", found->text);
}

QString filter(const QString& title, const QString& extension) {
    return QStringLiteral("%1 (*.%2)").arg(title, extension);
}

}  // namespace

std::vector<ExportChoice> exportChoices() {
    const QString pdf = QStringLiteral("pdf");
    std::vector<ExportChoice> choices{
        {filter(QCoreApplication::translate("Export", "PDF, as on screen"), pdf), pdf, nullptr}};
    for (const Format& format : formats()) {
        const QString extension = QString::fromLatin1(format.extension);
        choices.push_back({filter(title(format), extension), extension, &format});
    }
    return choices;
}

ExportChoice chosenFormat(const QString& target, const QString& filter) {
    const QString suffix = QFileInfo(target).suffix();
    ExportChoice chosen{{}, {}, nullptr};
    for (ExportChoice& choice : exportChoices()) {
        if (choice.extension.compare(suffix, Qt::CaseInsensitive) == 0) return std::move(choice);
        if (choice.filter == filter) chosen = std::move(choice);
    }
    return chosen;
}

}  // namespace vell
