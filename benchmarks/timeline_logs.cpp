// SPDX-License-Identifier: MIT
#include "timeline_logs.h"

#include <QBuffer>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>
#include <array>
#include <utility>
#include <vector>

namespace benchmarks {
namespace {

using vell::TesselChatLog;
using vell::TesselServiceID;
using vell::TesselUserID;
using Event = TesselChatLog::Event;

const std::array<TesselUserID, 3>& people() {
    static const std::array<TesselUserID, 3> all{
        TesselUserID{TesselServiceID::aim, QStringLiteral("me")},
        TesselUserID{TesselServiceID::aim, QStringLiteral("alice@example.com")},
        TesselUserID{TesselServiceID::aim, QStringLiteral("bob")}};
    return all;
}

class Builder {
  public:
    void add(std::optional<TesselUserID> sender, Event::Value value) {
        const auto sequence = static_cast<qint64>(events_.size()) + 1;
        events_.push_back({sequence,
                           {2e8 + 17.0 * static_cast<double>(sequence)},
                           std::move(sender),
                           std::move(value)});
    }
    [[nodiscard]] qsizetype size() const { return static_cast<qsizetype>(events_.size()); }
    [[nodiscard]] Log log() {
        return std::make_shared<const TesselChatLog>(TesselServiceID::aim, people()[0],
                                                     QSet<TesselUserID>{people()[1], people()[2]},
                                                     std::move(events_));
    }

  private:
    std::vector<Event> events_;
};

QString words(QRandomGenerator& random, int count) {
    static const QStringList vocabulary =
        QStringLiteral(
            "the and you that was for are with his they this have from one had word but "
            "what some we can out other were all there when your how said an each she "
            "which do their time if will way about many then them write would like")
            .split(u' ');
    QString text;
    for (int i = 0; i < count; ++i) {
        if (i > 0) text += u' ';
        text += vocabulary[random.bounded(vocabulary.size())];
    }
    return text;
}

Log around(const QString& text) {
    Builder builder;
    builder.add(people()[1], TesselChatLog::PlainText{QStringLiteral("before")});
    builder.add(people()[1], TesselChatLog::PlainText{text});
    builder.add(people()[1], TesselChatLog::PlainText{QStringLiteral("after")});
    return builder.log();
}

TesselChatLog::Image photograph(int number) {
    QImage image(4000, 3000, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient gradient(0, 0, 4000, 3000);
    gradient.setColorAt(0, QColor::fromHsv(number * 20 % 360, 200, 230));
    gradient.setColorAt(1, QColor::fromHsv(number * 37 % 360, 120, 90));
    painter.fillRect(image.rect(), gradient);
    QRandomGenerator random(static_cast<quint32>(number));
    for (int i = 0; i < 4000; ++i) {
        painter.fillRect(random.bounded(4000), random.bounded(3000), 40, 40,
                         QColor::fromRgb(random.generate()));
    }
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpeg", 85);
    const foundation::Data data(bytes);
    return {{data, foundation::PictureFormat::jpeg, image.size()},
            data,
            QStringLiteral("public.jpeg"),
            std::nullopt};
}

}  // namespace

Log plainLog(qsizetype events) {
    QRandomGenerator random(42);
    // Short messages and some long ones; the texts are shared, as the log's own size doesn't
    // matter.
    std::vector<QString> texts;
    for (int i = 0; i < 5000; ++i) {
        texts.push_back(
            words(random, random.bounded(10) ? 1 + random.bounded(14) : 15 + random.bounded(60)));
    }
    Builder builder;
    size_t speaker = 0;
    while (builder.size() < events) {
        switch (random.bounded(12)) {
            case 0:
                builder.add(people()[speaker], TesselChatLog::User());
                speaker = static_cast<size_t>(random.bounded(3));
                break;
            case 1:
                builder.add({}, TesselChatLog::NewMinute());
                break;
            default:
                builder.add(
                    people()[speaker],
                    TesselChatLog::PlainText{texts[static_cast<size_t>(random.bounded(5000))]});
        }
    }
    return builder.log();
}

Log manyLines(int lines) {
    QRandomGenerator random(7);
    QString text;
    for (int i = 0; i < lines; ++i)
        text += words(random, 1 + random.bounded(18)) + u'\n';
    return around(text);
}

Log oneLine(int characters) {
    QRandomGenerator random(8);
    return around(words(random, characters / 4).left(characters));
}

Log pictureLog(qsizetype events, int distinct) {
    std::vector<TesselChatLog::Image> photographs;
    for (int i = 0; i < distinct; ++i)
        photographs.push_back(photograph(i));
    Builder builder;
    while (builder.size() < events) {
        const auto at = static_cast<size_t>(builder.size());
        builder.add(people()[at % 3], photographs[at % photographs.size()]);
    }
    return builder.log();
}

}  // namespace benchmarks
