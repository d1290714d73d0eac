// SPDX-License-Identifier: MIT
#include "export/archive_index.h"

#include <QLocale>
#include <QSet>
#include <QStringList>
#include <algorithm>

#include "export/attachment_paths.h"
#include "export/byte_buffer.h"
#include "export/format.h"
#include "export/html_head.h"
#include "export/html_page.h"
#include "export/message.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

constexpr int monthsInYear = 12;
constexpr char css[] = R"(
:root{color-scheme:light dark;--ground:#fff;--text:#000;--faint:#666;--line:#d4d4d4;--link:#0a58ca}
@media (prefers-color-scheme:dark){:root{--ground:#1e1e20;--text:#fff;--faint:#a3a3a3;--line:#454547;--link:#7ab7ff}}
*{box-sizing:border-box}
body{margin:0 auto;padding:0 16px 48px;max-width:960px;background:var(--ground);color:var(--text);font:16px/1.5 "Helvetica Neue",Helvetica,"Noto Sans",Arial,sans-serif;overflow-wrap:anywhere}
header{margin:24px 0;text-align:center}
h1{margin:0;font-size:24px;line-height:1.3}
p{margin:2px 0;color:var(--faint);font-size:14px}
a,summary{color:var(--link);text-decoration:none}
a:hover,a:focus-visible,summary:hover{text-decoration:underline}
nav ul{display:grid;grid-template-columns:repeat(auto-fill,minmax(220px,1fr));gap:2px 24px;margin:0;padding:0;list-style:none}
nav li{display:flex;gap:8px;justify-content:space-between}
nav span{color:var(--faint);font-variant-numeric:tabular-nums}
section{margin-top:32px;padding-top:16px;border-top:1px solid var(--line);scroll-margin-top:8px}
h2{margin:0;font-size:18px;line-height:1.3}
.scroll{overflow-x:auto}
table{width:100%;min-width:640px;margin-top:8px;border-collapse:collapse;table-layout:fixed;font-size:14px;font-variant-numeric:tabular-nums}
th,td{padding:3px 4px;text-align:end;vertical-align:top;font-weight:normal}
th{color:var(--faint)}
tbody th{text-align:start;font-weight:bold}
tbody tr{border-top:1px solid var(--line)}
summary{cursor:pointer;list-style-position:inside}
details a{display:block}
details small{color:var(--faint)}
@media print{details:not([open])>*{display:block}}
)";

/// One person's pages of a month.
struct Link {
    const IndexEntry* entry;
    const IndexEntry::Month* month;
};

struct Partner {
    QString names;
    qint64 messages = 0;
    qsizetype chats = 0;
    std::map<IndexEntry::YearAndMonth, std::vector<Link>> months;
};

class IndexWriter {
  public:
    IndexWriter(const std::vector<IndexEntry>& entries, const FormatContext& context,
                const ByteSink& output)
        : locale_(pageLocale(context.dateLocale())), out_(output) {
        std::map<QString, Partner> byKey;
        for (const IndexEntry& entry : entries) {
            Partner& partner = byKey[entry.partners.key];
            partner.names = entry.partners.names;
            ++partner.chats;
            ++chats_;
            for (const auto& [month, contents] : entry.months) {
                partner.messages += contents.messages;
                partner.months[month].push_back({&entry, &contents});
            }
        }
        for (auto& [key, partner] : byKey) {
            messages_ += partner.messages;
            partners_.push_back(std::move(partner));
        }
        std::stable_sort(
            partners_.begin(), partners_.end(),
            [](const Partner& a, const Partner& b) { return a.messages > b.messages; });
    }

    void write() {
        appendHtmlHead(out_, locale_, title(), css, "'none'");
        out_.append("<body>\n<header>\n<h1>");
        text(title());
        out_.append("</h1>\n<p>");
        text(counted(std::ssize(partners_), "person", "people") + QStringLiteral(", ") +
             counts(chats_, messages_));
        out_.append("</p>\n</header>\n<nav>\n<ul>\n");
        for (std::size_t i = 0; i < partners_.size(); ++i)
            contentsLine(i);
        out_.append("</ul>\n</nav>\n<main>\n");
        for (std::size_t i = 0; i < partners_.size(); ++i)
            section(i);
        out_.append("</main>\n</body>\n</html>\n");
        out_.flush();
    }

  private:
    const QLocale locale_;
    ByteBuffer out_;
    std::vector<Partner> partners_;
    qsizetype chats_ = 0;
    qint64 messages_ = 0;

    static QString title() { return QStringLiteral("Chats"); }
    void text(const QString& words) { appendHtml(out_, words); }
    [[nodiscard]] QString counted(qint64 count, const char* one, const char* many) const {
        return locale_.toString(count) + u' ' + QLatin1StringView(count == 1 ? one : many);
    }
    [[nodiscard]] QString counts(qsizetype chats, qint64 messages) const {
        return counted(chats, "page", "pages") + QStringLiteral(", ") +
               counted(messages, "message", "messages");
    }

    void contentsLine(std::size_t index) {
        out_.append("<li><a dir=\"auto\" href=\"#p");
        out_.appendNumber(index);
        out_.append("\">");
        text(partners_[index].names);
        out_.append("</a> <span>");
        text(locale_.toString(partners_[index].messages));
        out_.append("</span></li>\n");
    }

    void section(std::size_t index) {
        const Partner& partner = partners_[index];
        out_.append("<section id=\"p");
        out_.appendNumber(index);
        out_.append("\">\n<h2 dir=\"auto\">");
        text(partner.names);
        out_.append("</h2>\n<p>");
        text(counts(partner.chats, partner.messages));
        out_.append("</p>\n<div class=\"scroll\" tabindex=\"0\">\n<table>\n<thead><tr><td></td>");
        for (int month = 1; month <= monthsInYear; ++month) {
            out_.append("<th scope=\"col\">");
            text(locale_.standaloneMonthName(month, QLocale::ShortFormat));
            out_.append("</th>");
        }
        out_.append("</tr></thead>\n<tbody>\n");
        for (auto month = partner.months.begin(); month != partner.months.end();)
            month = year(partner, month->first.first);
        out_.append("</tbody>\n</table>\n</div>\n</section>\n");
    }

    /// Returns what comes after it.
    auto year(const Partner& partner, int year) -> decltype(partner.months.begin()) {
        out_.append("<tr><th scope=\"row\">");
        year == 0 ? text(QStringLiteral("no date")) : text(QString::number(year));
        out_.append("</th>");
        for (int month = 1; month <= monthsInYear; ++month) {
            // Without a date everything is in the first column.
            const auto found = partner.months.find({year, year == 0 && month == 1 ? 0 : month});
            out_.append("<td>");
            if (found != partner.months.end()) cell(found->second);
            out_.append("</td>");
        }
        out_.append("</tr>\n");
        return partner.months.upper_bound({year, monthsInYear});
    }

    void cell(const std::vector<Link>& links) {
        if (links.size() == 1)
            return link(links.front(), locale_.toString(links[0].month->messages));
        qint64 messages = 0;
        for (const Link& each : links)
            messages += each.month->messages;
        out_.append("<details><summary>");
        text(locale_.toString(messages));
        out_.append("</summary>");
        for (const Link& each : links) {
            link(each, QString::number(each.month->day) + u'.');
            out_.append("<small>");
            text(locale_.toString(each.month->messages));
            out_.append("</small>");
        }
        out_.append("</details>");
    }

    void link(const Link& link, const QString& words) {
        out_.append("<a href=\"");
        appendHtml(out_, attachmentAddress(link.entry->page), HtmlPlace::attribute);
        out_.append('#');
        appendHtml(out_, link.month->anchor, HtmlPlace::attribute);
        out_.append("\">");
        text(words);
        out_.append("</a>");
    }
};

}  // namespace

ChatPartners partnersIn(const TesselChatLog& log, const ContactsStore& contacts) {
    QSet<TesselUserID> people = log.otherUserIDs();
    for (const TesselChatLog::Event& event : log.events()) {
        if (event.sender) people.insert(*event.sender);
    }
    people.remove(log.ownUserID());
    people -= log.furtherOwnUserIDs();
    if (people.isEmpty()) people.insert(log.ownUserID());
    std::map<QString, QString> names;  // by key
    for (const TesselUserID& person : sorted(people)) {
        const auto contact = contacts.addressToContact().constFind(person.userID);
        const bool isKnown = contact != contacts.addressToContact().cend();
        const QString key = isKnown ? u'c' + contact->id
                                    : u'a' + person.serviceID.rawValue + QChar() + person.userID;
        names.insert({key, senderName(person, contacts)});
    }
    QStringList keys;
    QStringList shown;
    for (const auto& [key, name] : names) {
        keys.append(key);
        shown.append(name.simplified());
    }
    return {keys.join(QChar(1)), shown.join(QStringLiteral(", "))};
}

IndexEntry indexEntry(const TesselChatLog& log, const FormatContext& context, const QString& page) {
    IndexEntry entry{page, partnersIn(log, context.contacts()), {}};
    QSet<QString> anchors;
    for (std::size_t i = 0; i < log.events().size(); ++i) {
        const TesselChatLog::Event& event = log.events()[i];
        const auto day = localDay(event.timestamp, context.calendar());
        if (std::holds_alternative<TesselChatLog::NewDay>(event.value))
            anchors.insert(dayAnchor(day));
        if (!beginsMessage(log, i)) continue;
        IndexEntry::Month& month =
            entry.months[day ? std::pair(int(day->year()), int(unsigned(day->month())))
                             : std::pair(0, 0)];
        if (month.messages++ > 0) continue;
        // What has no date may have no day's heading above it.
        const QString anchor = dayAnchor(day);
        month.anchor = anchors.contains(anchor) ? anchor : u'm' + QString::number(event.sequence);
        month.day = day ? int(unsigned(day->day())) : 0;
    }
    return entry;
}

void writeArchiveIndex(std::vector<IndexEntry> entries, const FormatContext& context,
                       const ByteSink& output) {
    std::sort(entries.begin(), entries.end(),
              [](const IndexEntry& a, const IndexEntry& b) { return a.page < b.page; });
    IndexWriter(entries, context, output).write();
}

}  // namespace vell
