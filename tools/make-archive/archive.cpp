// SPDX-License-Identifier: MIT
#include "archive.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <array>
#include <random>
#include <stdexcept>

#include "phrases.h"
#include "writers/transcript_writer.h"

namespace archive {

using namespace Qt::StringLiterals;

namespace {

constexpr int days = 3652;  // from the start of 2003 on
constexpr int firstDay = 730;
constexpr double secondsPerDay = 86400;
constexpr int filesPerCopy = 50;     // every 50th is there twice
constexpr int filesPerBroken = 400;  // every 400th is cut short
constexpr int filesPerOverlap = 7;
constexpr int messagesAfterOverlap = 5;
constexpr int messagesPerLink = 20;  // on average
constexpr int filesPerMove = 100;

struct Someone {
    const char* account;
    Language language;
};
constexpr std::array people{
    Someone{"ann@example.org", Language::english},
    Someone{"ben", Language::english},
    Someone{"carla99", Language::english},
    Someone{"dora.the.second", Language::english},
    Someone{"emil@example.org", Language::english},
    Someone{"fritz", Language::english},
    Someone{"grace", Language::english},
    Someone{"haruka", Language::japanese},
    Someone{"ichiro@example.org", Language::japanese},
    Someone{"jun", Language::japanese},
    Someone{"karim", Language::arabic},
    Someone{"layla@example.org", Language::arabic},
};

/// A bitmap of 40 x 30 pixels in one colour, and noise.
QByteArray picture(std::mt19937& random) {
    constexpr int width = 40;
    constexpr int height = 30;
    QByteArray pixels(width * height * 3, Qt::Uninitialized);
    for (char& c : pixels)
        c = static_cast<char>(random());
    const auto number = [](quint32 value) {
        QByteArray bytes(4, '\0');
        for (qsizetype i = 0; i < 4; ++i)
            bytes[i] = static_cast<char>(value >> (8 * i));
        return bytes;
    };
    const auto size = static_cast<quint32>(pixels.size());
    return "BM" + number(54 + size) + number(0) + number(54) + number(40) + number(width) +
           number(height) + QByteArray("\1\0\30\0", 4) + number(0) + number(size) +
           QByteArray(16, '\0') + pixels;
}

class Archive {
  public:
    Archive(QDir folder, const Sizes& sizes) : folder_(std::move(folder)), sizes_(sizes) {}

    void write() {
        int messages = 0;
        int pictures = 0;
        for (int file = 0; file < sizes_.files; ++file) {
            const auto share = [&](int all) {
                return static_cast<int>(qint64{all} * (file + 1) / sizes_.files);
            };
            writeFile(file, share(sizes_.messages) - messages, share(sizes_.pictures) - pictures);
            messages = share(sizes_.messages);
            pictures = share(sizes_.pictures);
        }
    }

  private:
    const QDir folder_;
    const Sizes sizes_;
    std::mt19937 random_{20030101};
    const std::array<Phrases, 3> phrases_{Phrases(Language::english), Phrases(Language::japanese),
                                          Phrases(Language::arabic)};

    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    void writeFile(int file, int messages, int pictures) {
        const int day = static_cast<int>(qint64{days} * file / sizes_.files);
        const int first = below(static_cast<int>(people.size()));
        const int second = (first + 1 + below(static_cast<int>(people.size()) - 1)) %
                           static_cast<int>(people.size());
        const std::array who{first, second};
        const bool isKeyed = file % 2 == 0;
        writers::Transcript chat = conversation(day, who, messages, pictures);
        QByteArray bytes = transcript(chat, isKeyed);
        if (file % filesPerBroken == filesPerBroken - 1) bytes.truncate(bytes.size() / 2);

        const QString date = QDate(2003, 1, 1).addDays(day).toString(Qt::ISODate);
        const QString name =
            u"%1 on %2 at %3.ichat"_s.arg(QString::fromLatin1(people[size_t(second)].account), date)
                .arg(file, 5, 10, '0'_L1);
        save(date, name, bytes);
        if (file % filesPerCopy == filesPerCopy - 1) save(u"Copies"_s, name, bytes);
        if (sizes_.hasOverlaps && file % filesPerOverlap == 0) {
            // Begun in the middle, by a program that writes the other form, and longer.
            chat.messages.erase(chat.messages.begin(),
                                chat.messages.begin() + std::ssize(chat.messages) / 2);
            converse(chat, who, chat.messages.back().date.value(), messagesAfterOverlap, 0);
            save(u"Overlaps"_s, name, transcript(chat, !isKeyed));
        }
    }

    static QByteArray transcript(const writers::Transcript& chat, bool isKeyed) {
        return isKeyed ? writers::keyedTranscript(chat) : writers::nonKeyedTranscript(chat);
    }

    writers::Transcript conversation(int day, std::array<int, 2> who, int messages, int pictures) {
        writers::Transcript chat{.service = u"AIM"_s};
        for (const int one : who)
            chat.people.push_back({QString::fromLatin1(people[size_t(one)].account)});
        chat.participants = {1};
        converse(chat, who, secondsPerDay * (firstDay + day) + below(70'000), messages, pictures);
        return chat;
    }

    void converse(writers::Transcript& chat, std::array<int, 2> who, double date, int messages,
                  int pictures) {
        size_t sender = 0;
        for (int i = 0; i < messages; ++i) {
            if (below(2) == 0) sender = 1 - sender;
            date += 1 + below(60) + below(1000) / 1000.0;
            chat.messages.push_back(
                {.sender = sender,
                 .date = date,
                 .body = body(people[size_t(who[sender])].language, i < pictures)});
        }
    }

    std::vector<writers::Piece> body(Language language, bool hasPicture) {
        using namespace writers;
        std::vector<Piece> pieces{words(phrases_[size_t(language)].sentence(random_))};
        if (below(messagesPerLink) == 0) {
            const QString url = u"http://www.example.org/%1"_s.arg(below(1000));
            pieces.push_back(words(u" "_s));
            pieces.push_back(linked(url, url));
        }
        if (hasPicture)
            pieces.push_back(attached(u"picture-%1.bmp"_s.arg(below(10'000)), picture(random_)));
        return pieces;
    }

    void save(const QString& folder, const QString& name, const QByteArray& bytes) const {
        folder_.mkpath(folder);
        QFile file(folder_.filePath(folder + u'/' + name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
            throw std::runtime_error(
                (file.fileName() + u": "_s + file.errorString()).toStdString());
    }
};

}  // namespace

void write(const QString& folder, const Sizes& sizes) {
    Archive(QDir(folder), sizes).write();
}

void moveSome(const QString& folder) {
    const QDir top(folder);
    top.mkpath(u"Moved"_s);
    int number = 0;
    for (const QString& day : top.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        if (day == u"Moved" || day == u"Copies") continue;
        const QDir from(top.filePath(day));
        for (const QString& name : from.entryList(QDir::Files, QDir::Name)) {
            if (++number % filesPerMove == 0)
                QFile::rename(from.filePath(name), top.filePath(u"Moved/"_s + name));
        }
    }
}

}  // namespace archive
