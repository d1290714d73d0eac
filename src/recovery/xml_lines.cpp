// SPDX-License-Identifier: MIT
#include "recovery/xml_lines.h"

#include <algorithm>

#include "recovery/names.h"

namespace vell::recovery {
namespace {

struct Form {
    QByteArrayView before;
    QByteArrayView after;
    bool isOpen = false;  ///< anything may stand between
};

constexpr Form forms[] = {
    {"<dict>", ""},
    {"</dict>", ""},
    {"<array>", ""},
    {"</array>", ""},
    {"<dict/>", ""},
    {"<array/>", ""},
    {"<true/>", ""},
    {"<false/>", ""},
    {"<string/>", ""},
    {"<string></string>", ""},
    {"<data>", ""},
    {"</data>", ""},
    {"</plist>", ""},
    {"<key>", "</key>", true},
    {"<string>", "</string>", true},
    {"<integer>", "</integer>", true},
    {"<real>", "</real>", true},
    {"<date>", "</date>", true},
};
/// Of texts with several lines.
constexpr Form partialForms[] = {{"<string>", "", true}, {"", "</string>", true}};

constexpr qsizetype mostErrors = 2;
/// A line can be two, and each of them two again.
constexpr int mostParts = 4;
constexpr QByteArrayView noNumber = "4294967295";

bool isBlank(char byte) {
    return byte == '\t' || byte == ' ';
}

/// How many bytes of the form's own are wrong in a line without its indentation.
qsizetype errors(QByteArrayView line, const Form& form) {
    const qsizetype fixed = form.before.size() + form.after.size();
    if (form.isOpen ? line.size() < fixed : line.size() != fixed) return mostErrors + 1;
    return differences(form.before, line.first(form.before.size())) +
           differences(form.after, line.last(form.after.size()));
}

QByteArrayView inside(QByteArrayView line, const Form& form) {
    return line.sliced(form.before.size(), line.size() - form.before.size() - form.after.size());
}

/// The form of a line, and with it the fewest errors.
std::pair<const Form*, qsizetype> nearestForm(QByteArrayView line) {
    const Form* nearest = nullptr;
    qsizetype fewest = mostErrors + 1;
    for (const Form& form : forms) {
        const qsizetype wrong = errors(line, form);
        if (wrong >= fewest || (form.isOpen && inside(line, form).contains('<'))) continue;
        nearest = &form;
        fewest = wrong;
    }
    return {nearest, fewest};
}

bool isNumber(QByteArrayView text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return (byte >= '0' && byte <= '9') || byte == '-'; });
}

class Lines {
  public:
    explicit Lines(QByteArrayView xml) : rest_(xml) { result_.reserve(xml.size()); }

    QByteArray corrected();

  private:
    QByteArrayView rest_;
    QByteArray result_;

    void append(QByteArrayView line, int parts);
    bool appendParts(QByteArrayView indentation, QByteArrayView line, int parts);
    void appendForm(QByteArrayView line, const Form& form);
};

QByteArray Lines::corrected() {
    while (!rest_.isEmpty()) {
        const qsizetype end = rest_.indexOf('\n');
        const QByteArrayView line = end < 0 ? rest_ : rest_.first(end);
        append(line, mostParts);
        if (end < 0) break;
        result_.append('\n');
        rest_ = rest_.sliced(end + 1);
    }
    return std::move(result_);
}

void Lines::append(QByteArrayView line, int parts) {
    qsizetype begin = 0;
    while (begin < line.size() && isBlank(line[begin]))
        ++begin;
    // One of the blanks may be something else now.
    if (begin + 1 < line.size() && line[begin] != '<') {
        qsizetype next = begin + 1;
        while (next < line.size() && isBlank(line[next]))
            ++next;
        if (next < line.size() && line[next] == '<' &&
            nearestForm(line.sliced(next)).second < nearestForm(line.sliced(begin)).second)
            begin = next;
    }
    const QByteArrayView content = line.sliced(begin);
    const QByteArrayView indentation = line.first(begin);
    const char blank = indentation.isEmpty() || indentation[0] != ' ' ? '\t' : ' ';
    if (!content.contains('<') && !content.contains('>')) {
        result_.append(line);
        return;
    }
    const auto [form, wrong] = nearestForm(content);
    if (form) {
        result_.append(begin, blank);
        appendForm(content, *form);
    } else if (parts <= 1 || !appendParts(indentation, content, parts)) {
        for (const Form& partial : partialForms)
            if (errors(content, partial) == 1 && !inside(content, partial).contains('<')) {
                result_.append(begin, blank);
                return appendForm(content, partial);
            }
        result_.append(line);
    }
}

/// Where the line break between two tags is something else now.
bool Lines::appendParts(QByteArrayView indentation, QByteArrayView line, int parts) {
    for (qsizetype at = line.indexOf('>') + 1; at > 0 && at < line.size();
         at = line.indexOf('>', at) + 1) {
        qsizetype next = at + 1;
        while (next < line.size() && isBlank(line[next]))
            ++next;
        if (line[at] == '<' || next >= line.size() || line[next] != '<') continue;
        const auto [form, wrong] = nearestForm(line.first(at));
        if (!form) continue;
        result_.append(indentation);
        appendForm(line.first(at), *form);
        result_.append('\n');
        append(line.sliced(at + 1), parts - 1);
        return true;
    }
    return false;
}

void Lines::appendForm(QByteArrayView line, const Form& form) {
    QByteArrayView text = form.isOpen ? inside(line, form) : QByteArrayView();
    if (form.before == "<key>") text = correctedKey(text);
    const bool isWrong = form.before == "<integer>" && !isNumber(text);
    result_.append(form.before).append(isWrong ? noNumber : text).append(form.after);
}

bool isIndented(QByteArrayView xml) {
    constexpr qsizetype tagsPerLine = 4;
    return xml.count("\n\t") + xml.count("\n ") > xml.count('<') / tagsPerLine;
}

bool isContainerEnd(QByteArrayView line) {
    return line.startsWith("</dict>") || line.startsWith("</array>") || line.startsWith("</plist>");
}

/// Each tag does, unless it ends a text.
bool beginsLine(QByteArrayView rest) {
    return rest.startsWith('<') && (!rest.startsWith("</") || isContainerEnd(rest));
}

QByteArray withLineBreaks(QByteArrayView xml) {
    QByteArray result;
    result.reserve(2 * xml.size());
    for (qsizetype at = 0; at < xml.size(); ++at) {
        if (beginsLine(xml.sliced(at)) && !result.endsWith('\n')) result += '\n';
        result += xml[at];
    }
    return result;
}

/// Dictionaries in an array are the archive's objects, unless they are references. So the depth is
/// known at each of them, whatever has become of the tags before.
QByteArray withIndentation(QByteArrayView lines) {
    constexpr qsizetype deepest = 16;
    QByteArray result;
    result.reserve(2 * lines.size());
    qsizetype depth = 0;
    qsizetype objectDepth = -1;
    QByteArrayView previous;
    for (qsizetype at = 0; at < lines.size();) {
        const qsizetype end = lines.indexOf('\n', at);
        const QByteArrayView line = lines.sliced(at, (end < 0 ? lines.size() : end) - at);
        at += line.size() + 1;
        const bool isReference =
            lines.sliced(std::min(at, lines.size())).startsWith("<key>CF$UID<");
        const bool isObject = line == "<dict>" && !isReference && !previous.startsWith("<key>");
        if (isContainerEnd(line)) depth = std::max<qsizetype>(depth - 1, 0);
        if (isObject && objectDepth >= 0) depth = objectDepth;
        if (beginsLine(line)) result.append(std::min(depth, deepest), '\t');
        result.append(line).append(end < 0 ? "" : "\n");
        if (line == "<dict>" || line == "<array>") ++depth;
        if (line == "<array>" && previous == "<key>$objects</key>") objectDepth = depth;
        previous = line;
    }
    return result;
}

}  // namespace

QByteArray withCorrectedLines(QByteArrayView xml) {
    if (isIndented(xml)) return Lines(xml).corrected();
    return withIndentation(Lines(withLineBreaks(xml)).corrected());
}

}  // namespace vell::recovery
