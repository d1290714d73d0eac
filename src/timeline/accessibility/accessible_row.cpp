// SPDX-License-Identifier: MIT
#include "timeline/accessibility/accessible_row.h"

#include <QCoreApplication>
#include <QWindow>

#include "identity/contacts/sender_name.h"
#include "timeline/accessibility/accessible_timeline.h"
#include "timeline/input/links.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/rows/row_text.h"
#include "timeline/timeline_view.h"
#include "toolkit/date_formatters.h"
#include "toolkit/shown_text.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;

QString tr(const char* text) {
    return QCoreApplication::translate("Timeline", text);
}

/// The content of a row, without sender and time.
struct Spoken {
    PictureCache& pictures;

    QString operator()(const PlainMessageBubbleView& view) const { return view.content; }
    QString operator()(const SystemMessageView& view) const { return view.message; }
    QString operator()(const FileView& view) const { return view.text(); }
    QString operator()(const ImageBubbleView& view) const {
        QStringList parts{tr("Picture %1").arg(view.name()).trimmed()};
        const QString problem = pictures.problem(view.image.image());
        if (!problem.isEmpty()) parts << problem;
        return parts.join(QStringLiteral(", "));
    }
    // Rows that are no messages have names of their own.
    QString operator()(const SessionHeadingView&) const { return {}; }
    QString operator()(const DaySeparatorView&) const { return {}; }
    QString operator()(const TimeSeparatorView&) const { return {}; }
    QString operator()(const SenderInfoView&) const { return {}; }
    QString operator()(std::monostate) const { return {}; }
};

}  // namespace

QString accessibleRowName(TimelineView& view, qsizetype row) {
    const Event& event = view.chatlog().event(row);
    if (std::holds_alternative<TesselChatLog::NewDay>(event.value))
        return daySeparatorFormatter().string(event.timestamp);
    if (std::holds_alternative<TesselChatLog::Session>(event.value))
        //: A heading above the messages of one file; %1 is the file's name.
        return QCoreApplication::translate("Timeline", "Chat “%1”").arg(rowText(event));
    QString time = timeSeparatorFormatter().string(event.timestamp);
    if (std::holds_alternative<TesselChatLog::NewMinute>(event.value)) return time;

    const QString sender =
        event.sender ? shownText(senderName(*event.sender, view.context().contacts)) : QString();
    QString text =
        std::visit(Spoken{view.context().pictures}, TimelineRowView(event, false).content());
    // The bus that carries names ends a text at its first null character.
    text.replace(QChar(), QChar(QChar::ReplacementCharacter));
    return event.sender ? tr("%1: %2, %3").arg(sender, text, time) : tr("%1, %2").arg(text, time);
}

const Event& AccessibleRow::event() const {
    return timeline_.view().chatlog().event(row_);
}

QWindow* AccessibleRow::window() const {
    return timeline_.window();
}

QAccessibleInterface* AccessibleRow::parent() const {
    return QAccessible::queryAccessibleInterface(&timeline_.view());
}

QString AccessibleRow::text(QAccessible::Text kind) const {
    if (kind == QAccessible::Name) return accessibleRowName(timeline_.view(), row_);
    const auto* link = std::get_if<TesselChatLog::Link>(&event().value);
    if (kind == QAccessible::Description && link) return shownAddress(link->url->absoluteString());
    return {};
}

QRect AccessibleRow::rect() const {
    return timeline_.rowRect(row_);
}

QAccessible::Role AccessibleRow::role() const {
    struct Visitor {
        QAccessible::Role operator()(const TesselChatLog::Session&) const {
            return QAccessible::Heading;
        }
        QAccessible::Role operator()(const TesselChatLog::NewDay&) const {
            return QAccessible::Heading;
        }
        QAccessible::Role operator()(const TesselChatLog::NewMinute&) const {
            return QAccessible::Heading;
        }
        QAccessible::Role operator()(const TesselChatLog::User&) const {
            return QAccessible::StaticText;
        }
        QAccessible::Role operator()(const TesselChatLog::Link&) const { return QAccessible::Link; }
        QAccessible::Role operator()(const TesselChatLog::PlainText&) const {
            return QAccessible::ListItem;
        }
        QAccessible::Role operator()(const TesselChatLog::Image&) const {
            return QAccessible::ListItem;
        }
        QAccessible::Role operator()(const TesselChatLog::File&) const {
            return QAccessible::ListItem;
        }
    };
    return std::visit(Visitor(), event().value);
}

QAccessible::State AccessibleRow::state() const {
    QAccessible::State state = timeline_.state();
    QAccessible::State own;
    own.disabled = state.disabled;
    own.invisible = state.invisible;
    own.offscreen = !timeline_.rect().intersects(rect());
    own.focusable = true;
    own.focused = timeline_.view().hasFocus() && timeline_.view().currentRow() == row_;
    own.readOnly = true;
    own.linked = role() == QAccessible::Link;
    return own;
}

void* AccessibleRow::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::ActionInterface) return static_cast<QAccessibleActionInterface*>(this);
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return nullptr;
}

bool AccessibleRow::canBePressed() const {
    return role() == QAccessible::Link ||
           std::holds_alternative<TesselChatLog::Session>(event().value) ||
           std::holds_alternative<TesselChatLog::Image>(event().value);
}

QStringList AccessibleRow::actionNames() const {
    QStringList names;
    if (canBePressed()) names << pressAction();
    names << setFocusAction();
    return names;
}

void AccessibleRow::doAction(const QString& name) {
    TimelineView& view = timeline_.view();
    if (name == pressAction()) {
        if (canBePressed()) view.activateRow(row_);
    } else if (name == setFocusAction()) {
        view.setFocus(Qt::OtherFocusReason);
        view.setCurrentRow(row_);
    }
}

}  // namespace vell
