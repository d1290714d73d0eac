#pragma once
// SPDX-License-Identifier: MIT
//
// What File > Export … offers: PDF, and all of the table of formats.

#include <QString>
#include <QStringList>
#include <vector>

namespace vell {

struct Format;

struct ExportChoice {
    QString filter;        ///< as a file dialog shows it: "Web page (*.html)"
    QString extension;     ///< without a dot
    const Format* format;  ///< null for PDF
};

[[nodiscard]] std::vector<ExportChoice> exportChoices();
/// The choice that a file's name asks for; where it asks for none, the one of the filter.
[[nodiscard]] ExportChoice chosenFormat(const QString& target, const QString& filter);

}  // namespace vell
