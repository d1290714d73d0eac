// SPDX-License-Identifier: MIT
#include "chats.h"

#include <QDateTime>
#include <QFile>
#include <map>
#include <stdexcept>
#include <vector>

#include "writers/transcript_writer.h"

namespace screenshots {

using namespace Qt::StringLiterals;

vell::ContactsStore::Table contacts() {
    vell::ContactsStore::Table table;
    for (const auto& [address, name] :
         {std::pair(u"nora.lindqvist"_s, u"Nora Lindqvist"_s),
          std::pair(u"jonas_at_home"_s, u"Jonas Holm"_s),
          std::pair(u"ines.moreau"_s, u"Inès Moreau"_s),
          std::pair(u"oskar@chat.example.net"_s, u"Oskar Brandt"_s),
          std::pair(u"layla.h"_s, u"Layla Haddad"_s), std::pair(u"omar.k"_s, u"Omar Khalil"_s)})
        table.insert(address, {address, address, name, std::nullopt, std::nullopt});
    return table;
}

namespace {

struct Talk {
    const char* begin;
    std::vector<const char*> with;
    /// Those that begin with ">" are Nora's.
    std::vector<const char*> lines;
};

const std::vector<Talk>& talks() {
    static const std::vector<Talk> all{
        {"2009-05-03 20:04",
         {"jonas_at_home"},
         {"Are you coming on Saturday?", ">Only if somebody brings an umbrella.",
          "It is a picnic. We don't do umbrellas.",
          ">Last year we sat under the table for an hour.", "That was the best part!",
          ">Fine. I’ll bring the big umbrella and you bring the cake."}},
        {"2009-04-28 08:51",
         {"jonas_at_home"},
         {"The tram is full of ducks", ">What do you mean, full?", "Eleven. I counted twice.",
          ">Is one of them driving?", "The driver says they have tickets."}},
        {"2009-04-11 17:30",
         {"ines.moreau"},
         {"Your plant has a new leaf 🌱", ">It waited until I was away!",
          "I told it you would be jealous.", ">Tell it I’m back on Tuesday."}},
        {"2009-03-22 21:12",
         {"jonas_at_home", "ines.moreau", "oskar@chat.example.net"},
         {"Who has the key to the boat?", ">I thought Oskar had it.", "Oskar thinks Nora has it.",
          "Then the boat is safe at last."}},
        {"2009-02-14 10:05",
         {"oskar@chat.example.net"},
         {"I found your umbrella in the cellar", ">The green one?", "There are three green ones.",
          ">Then it is a family. Don’t part them."}},
        {"2008-12-24 18:20",
         {"oskar@chat.example.net"},
         {"It snows!", ">Here too. The lake is quite white.", "Come over tomorrow, there is soup.",
          ">The good one with the lemon?", "The very one."}},
        {"2008-12-02 22:41",
         {"ines.moreau"},
         {"Did you read the last chapter?", ">Twice. I didn’t see it coming.",
          "Nobody did, not even the dog.", ">The dog knew. Look at page 12."}},
        {"2008-10-19 16:00",
         {"jonas_at_home"},
         {"What rhymes with umbrella?", ">Fella. Cinderella. Why?",
          "It is for the choir. Don’t ask.", ">Now I have to ask."}},
        {"2008-08-07 19:33",
         {"layla.h"},
         {"الجو حار جدا هنا", ">How hot?", "An umbrella against the sun!",
          ">Send a picture of that."}},
        {"2008-06-30 12:15",
         {"layla.h"},
         {"The train leaves at nine", ">Platform 4?", "نعم! See you there!"}},
        {"2008-05-17 09:48",
         {"omar.k"},
         {"The bakery has moved", ">Not far, I hope?", "Next to the umbrella shop.",
          ">Of all places!"}},
        {"2008-03-01 23:02",
         {"jonas_at_home"},
         {"Still awake?", ">The neighbours rehearse their opera.", "All of it?",
          ">They are in the second act."}},
        {"2007-11-11 11:11",
         {"omar.k"},
         {"It is 11:11 on 11.11.", ">You waited for this all year, didn’t you?", "All decade."}},
        {"2007-09-09 14:26",
         {"ines.moreau"},
         {"The lighthouse is open on Sundays", ">Let’s go before the rain comes.",
          "It always comes. Bring the umbrella."}},
        {"2007-07-21 20:20",
         {"jonas_at_home"},
         {"We won! 3 to 2!", ">Against whom?", "The post office. They were very polite about it."}},
        {"2006-12-31 23:58",
         {"jonas_at_home", "oskar@chat.example.net"},
         {"Two minutes!", ">Happy new year to the early ones.",
          "My clock is right. Yours is late."}},
        {"2006-04-05 18:09",
         {"oskar@chat.example.net"},
         {"Spring cleaning. Do you want a piano?", ">Does it play?", "It hums when one walks by."}},
        {"2005-10-02 15:45",
         {"jonas_at_home"},
         {"First message from the new computer!", ">It looks exactly like the old ones.", "Shh."}},
    };
    return all;
}

/// Quiet days between those, so that there are years to scroll through.
const std::vector<const char*>& smallTalk() {
    static const std::vector<const char*> all{
        "Good morning!",
        ">Good morning. Coffee?",
        "In ten minutes at the corner?",
        ">I’ll be there.",
        "The rain has stopped.",
        ">For now!",
        "Did you see my keys?",
        ">In the blue bowl.",
        "You are a treasure.",
        ">I know.",
        "Dinner on Friday?",
        ">Yes, at eight.",
    };
    return all;
}

void write(const QString& folder, const Talk& talk) {
    writers::Transcript chat{.service = u"AIM"_s, .people = {{u"nora.lindqvist"_s}}};
    for (const char* with : talk.with) {
        chat.participants.push_back(chat.people.size());
        chat.people.push_back({QString::fromUtf8(with)});
    }
    const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime begin =
        QDateTime::fromString(QString::fromUtf8(talk.begin), u"yyyy-MM-dd hh:mm"_s);
    double date = static_cast<double>(reference.secsTo(begin));
    size_t next = 0;
    for (const char* line : talk.lines) {
        QString text = QString::fromUtf8(line);
        const bool isOwn = text.startsWith(u'>');
        if (isOwn) text.remove(0, 1);
        const size_t sender = isOwn ? 0 : 1 + next++ % talk.with.size();
        chat.messages.push_back({.sender = sender, .date = date, .body = {writers::words(text)}});
        date += 25 + static_cast<double>(text.size());
    }
    const QString with = contacts().value(chat.people[1].account).name;
    QFile file(folder + u"/%1 on %2.ichat"_s.arg(with, begin.toString(u"yyyy-MM-dd 'at' hh.mm"_s)));
    const QByteArray bytes = writers::keyedTranscript(chat);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("a chat can't be written");
}

}  // namespace

void writeChats(const QString& folder) {
    for (const Talk& talk : talks())
        write(folder, talk);
    const char* const others[] = {"jonas_at_home", "ines.moreau", "oskar@chat.example.net",
                                  "layla.h", "omar.k"};
    const QDateTime first(QDate(2005, 10, 4), QTime(8, 30));
    for (int i = 0; i < 260; ++i) {
        const QByteArray begin = first.addSecs(qint64{i} * (5 * 86'400 + 7'900))
                                     .toString(u"yyyy-MM-dd hh:mm"_s)
                                     .toUtf8();
        std::vector<const char*> lines;
        for (int line = 0; line < 2 + i * 7 % 9; ++line)
            lines.push_back(smallTalk()[static_cast<size_t>(i * 3 + line) % smallTalk().size()]);
        write(folder, {begin.constData(), {others[i * i % 7 % 5]}, std::move(lines)});
    }
}

}  // namespace screenshots
