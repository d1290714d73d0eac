// SPDX-License-Identifier: MIT
//
// What a page looks like: where things stand on it, in which colours, and that its PDF and its
// print look as its picture does.
#include <gtest/gtest.h>

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextLayout>
#include <cstdlib>

#include "export/log_builder.h"
#include "paper/glyph_clusters.h"
#include "paper/page_painter.h"
#include "paper/page_printing.h"
#include "paper/painter_canvas.h"
#include "paper/pdf_canvas.h"
#include "paper/pdf_document.h"
#include "timeline/text/laid_out_text.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using test::LogBuilder;
using Direction = ChatBubbleShape::Direction;

constexpr double day = 86'400;

struct Shown {
    enum Kind { field, bubble, icon, words, link } kind;
    QRect area;
    QColor color{};
    QString text{};
    Direction direction = Direction::left;
};

/// Notes what is painted, in order.
class Painted final : public PaperCanvas {
  public:
    void fill(const QRect& area, const QColor& color, qreal) override {
        all.push_back({Shown::field, area, color});
    }
    void bubble(const QRect& frame, Style::Aqua, Direction direction) override {
        all.push_back({Shown::bubble, frame, {}, {}, direction});
    }
    void drawing(const QRect& area, const QImage& image) override {
        all.push_back({Shown::icon, area, image.pixelColor(image.rect().center())});
    }
    void photo(const QRect&, const QImage&, qreal) override {}
    void text(const LaidOutText& text, QPoint origin, int from, int to,
              const QColor& color) override {
        const int end = std::min(to, text.height());
        const QRect area(origin.x(), origin.y() + from, text.width(), end - from);
        all.push_back({Shown::words, area, color, text.text()});
    }
    void link(const QRect& area, const QString&) override { all.push_back({Shown::link, area}); }

    std::vector<Shown> all;
};

PaperFormat a4() {
    return PaperFormat::of(QPageSize(QPageSize::A4));
}

ContactsStore bobInRed() {
    QImage red(76, 76, QImage::Format_RGB32);
    red.fill(Qt::red);
    return ContactsStore({{u"bob"_s, {u"1"_s, u"bob"_s, u"Bob"_s, std::nullopt, red}}});
}

/// Everything that a page shows, over several days.
TesselChatLog chat() {
    LogBuilder builder;
    for (int i = 0; i < 40; ++i) {
        if (i % 5 == 0) builder.newDay();
        builder.text(u"bob"_s, u"message %1"_s.arg(i)).user(u"bob"_s).newMinute();
        builder.text(u"me"_s, u"own "_s.repeated(i)).joined();
        builder.link(u"me"_s, u"https://example.org/"_s, u"a link"_s).user(u"me"_s);
        builder.system(u"bob is away"_s).wait(day / 5);
    }
    return builder.text(u"bob"_s, u"cut \n"_s.repeated(200)).log();
}

TEST(Page, EverythingStandsWhereReadersLookForIt) {
    const TesselChatLog log = chat();
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        PaperSetup setup =
            currentPaperSetup(log, bobInRed(), u"A very long title "_s.repeated(20), a4());
        setup.direction = direction;
        EXPECT_TRUE(BubbleColors::shared().colorMap().contains({TesselServiceID::aim, u"bob"_s}));
        PaperContext context(setup);
        const PagePainter painter(log, context, setup);
        Paginator paginator(log, context, painter.rowsSize());
        const QRect paper(QPoint(), a4().area());
        int icons = 0;
        while (const auto page = paginator.next()) {
            Painted painted;
            painter.paint(painted, *page);
            const auto& all = painted.all;
            // The day at the side where lines begin, the title at the other, the number below.
            ASSERT_GT(all.size(), 3u);
            EXPECT_EQ(all[0].text,
                      dayFormatter().string(log.event(page->rows.front().event).timestamp));
            EXPECT_EQ(all[0].area.x() < all[1].area.x(), direction == Qt::LeftToRight);
            EXPECT_EQ(all[2].text, QString::number(page->number));
            QRect frame;
            QRect ground;
            for (const Shown& shown : all) {
                EXPECT_TRUE(paper.contains(shown.area)) << shown.text.toStdString();
                if (shown.kind == Shown::bubble) {
                    frame = shown.area;
                    const bool isOwn = shown.direction == Direction::right;
                    EXPECT_EQ(isOwn, paper.right() - frame.right() < frame.left());
                } else if (shown.kind == Shown::icon) {
                    EXPECT_EQ(shown.area.bottom(), frame.bottom());
                    EXPECT_FALSE(shown.area.intersects(frame));
                    if (shown.area.left() == 0) icons += shown.color == QColor(Qt::red);
                } else if (shown.kind == Shown::link) {
                    EXPECT_TRUE(frame.contains(shown.area));
                } else if (shown.kind == Shown::field) {
                    ground = shown.color == QColor(Qt::white) ? shown.area : QRect();
                } else if (!frame.contains(shown.area)) {
                    EXPECT_LT(shown.color.lightness(), 180) << shown.text.toStdString();
                    const auto isDay = [&](const PaperRow& row) {
                        return painter.paperTop(row) <= shown.area.top() &&
                               std::holds_alternative<TesselChatLog::NewDay>(
                                   log.event(row.event).value) &&
                               painter.paperTop(row) + row.layout.height >= shown.area.bottom();
                    };
                    const bool isLabel = std::any_of(page->rows.begin(), page->rows.end(), isDay);
                    EXPECT_TRUE(!isLabel || ground.contains(shown.area))
                        << "a divider crosses its day";
                }
                for (const Shown* other = all.data(); other != &shown; ++other) {
                    EXPECT_FALSE(shown.kind == Shown::words && other->kind == Shown::words &&
                                 shown.area.intersects(other->area))
                        << shown.text.toStdString() << " over " << other->text.toStdString();
                }
            }
        }
        EXPECT_GE(icons, 40);
    }
}

TEST(Page, BubblesOfBothSidesMirrorEachOtherAndTheirShadowsAreGrey) {
    const QRect frame(40, 40, 300, 90);
    const auto bubble = [&](Direction direction) {
        QImage image(380, 170, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        PainterCanvas canvas(painter);
        painter.resetTransform();
        canvas.bubble(frame, Style::Aqua::blueberry, direction);
        return image;
    };
    const QImage left = bubble(Direction::left);
    const QImage right = bubble(Direction::right).mirrored(true, false);
    int differing = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QColor color = left.pixelColor(x, y);
            differing += std::abs(color.lightness() - right.pixelColor(x, y).lightness()) > 40;
            const bool isGrey = std::abs(color.red() - color.blue()) < 16;
            EXPECT_TRUE(isGrey || y <= frame.bottom() + 1);
        }
    }
    EXPECT_LT(differing, 200);
    EXPECT_NE(left, right.mirrored(true, false)) << "both have their tails at the same side";
}

TEST(GlyphClusters, HoldEveryCharacterOfALine) {
    for (const QString& text :
         {u"plain words"_s, u"office waffle fjord"_s, u"می\u200cخواهم لا"_s, u"שָׁלוֹם עולם"_s,
          u"שלום, \"עולם\", 12!"_s,
          u"\U0001F468\u200d\U0001F469\u200d\U0001F467 \U0001F1E9\U0001F1EA"_s,
          u"e\u0301 हिन्दी ไทย a\u00adb"_s}) {
        QTextLayout layout(text, QFont());
        layout.beginLayout();
        QTextLine line = layout.createLine();
        layout.endLayout();
        std::vector<QStringView> parts;
        const LineGlyphs glyphs = lineGlyphs(line, text);
        for (const GlyphCluster& cluster : glyphs.clusters) {
            parts.push_back(cluster.text);
            const bool isUnshaped =
                cluster.text.size() == 1 && (cluster.text[0].script() == QChar::Script_Hebrew ||
                                             cluster.text[0].unicode() < 0x40);
            if (!isUnshaped) continue;
            const GlyphCluster::Glyph& glyph = cluster.glyphs.front();
            EXPECT_EQ(glyphs.fonts[static_cast<size_t>(glyph.font)].glyphIndexesForString(
                          cluster.text.toString()),
                      QList<quint32>{glyph.index});
        }
        std::sort(parts.begin(), parts.end(),
                  [](QStringView a, QStringView b) { return a.data() < b.data(); });
        QString all;
        for (const QStringView part : parts)
            all += part;
        EXPECT_EQ(all.toStdString(), text.toStdString());
    }
}

/// A page of a document, with two pixels a point.
QImage pageOf(const QByteArray& pdf, int page = 1) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a.pdf"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size()) return {};
    file.close();
    QProcess::execute(u"pdftoppm"_s,
                      {u"-f"_s, QString::number(page), u"-r"_s, u"144"_s, u"-png"_s,
                       u"-singlefile"_s, file.fileName(), folder.filePath(u"page"_s)});
    return QImage(folder.filePath(u"page.png"_s)).convertToFormat(QImage::Format_RGB32);
}

QImage picture(const std::function<void(PaperCanvas&)>& paint) {
    QImage image((a4().sheet * 2).toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(2, 2);
    PainterCanvas canvas(painter);
    paint(canvas);
    return image;
}

/// The share of the squares of eight pixels that have another colour on average.
double difference(const QImage& one, const QImage& other) {
    const QSize size = one.size() / 8;
    const auto coarse = [&](const QImage& image) {
        return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
    };
    const QImage a = coarse(one);
    const QImage b = coarse(other);
    int differing = 0;
    int used = 1;
    for (int i = 0; i < size.width() * size.height(); ++i) {
        const QColor x = a.pixelColor(i % size.width(), i / size.width());
        const QColor y = b.pixelColor(i % size.width(), i / size.width());
        used += x != QColor(Qt::white);
        differing += std::max({std::abs(x.red() - y.red()), std::abs(x.green() - y.green()),
                               std::abs(x.blue() - y.blue())}) > 30;
    }
    return double(differing) / used;
}

TEST(Page, DocumentsAndPrintsLookLikeThePicture) {
    if (QStandardPaths::findExecutable(u"pdftoppm"_s).isEmpty()) GTEST_SKIP() << "no pdftoppm";
    const TesselChatLog log =
        LogBuilder()
            .newDay()
            .text(u"bob"_s, u"Jan 1, 2001, 12:00 AM, עברית, العربية. "_s.repeated(12))
            .text(u"me"_s, u"\U0001F408\U0001F44D emoji "_s.repeated(30))
            .newMinute()
            .link(u"me"_s, u"https://example.org/"_s, u"A long link "_s.repeated(12))
            .system(u"Many letters in grey. "_s.repeated(12))
            .log();
    const PaperSetup setup = currentPaperSetup(log, bobInRed(), u"Title"_s, a4());
    PaperContext context(setup);
    const PagePainter painter(log, context, setup);
    const auto page = Paginator(log, context, painter.rowsSize()).next();
    const QImage expected = picture([&](PaperCanvas& canvas) { painter.paint(canvas, *page); });
    const int border = static_cast<int>(PaperFormat::margin * 2 - 8);
    QImage inside(expected);
    QPainter(&inside).fillRect(expected.rect().marginsRemoved({border, border, border, border}),
                               Qt::white);
    QImage white(inside);
    white.fill(Qt::white);
    EXPECT_EQ(inside, white) << "something stands in the margins";

    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    EXPECT_TRUE(writePdf(log, setup, pdf).isComplete);
    EXPECT_LT(difference(expected, pageOf(pdf.data())), 0.002);

    QBuffer print;
    print.open(QIODevice::WriteOnly);
    QPdfWriter writer(&print);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF());
    EXPECT_EQ(printPages(log, setup, writer, {}, [](auto, auto) { return true; }), 1);
    EXPECT_LT(difference(expected, pageOf(print.data())), 0.002);

    // What no log of a test has: pictures that are seen through, and two pages of one colour.
    QImage glass(200, 100, QImage::Format_ARGB32);
    glass.fill(QColor(255, 0, 0, 60));
    const auto paint = [&](PaperCanvas& canvas) {
        canvas.photo({0, 0, 400, 200}, glass, 8);
        canvas.drawing({0, 300, 400, 200}, glass);
        canvas.fill({0, 600, 400, 200}, Qt::blue);
    };
    QBuffer second;
    second.open(QIODevice::WriteOnly);
    PdfCanvas canvas(second, a4());
    canvas.beginPage();
    paint(canvas);
    canvas.endPage();
    canvas.beginPage();
    paint(canvas);
    canvas.endPage();
    canvas.finish({}, {});
    for (const int page : {1, 2})
        EXPECT_EQ(difference(picture(paint), pageOf(second.data(), page)), 0);
}

}  // namespace
}  // namespace vell
