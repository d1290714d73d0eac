// SPDX-License-Identifier: MIT
//
// Pages as a canvas gets them.
#include "paper/paginator.h"

#include <gmock/gmock.h>

#include <QBuffer>
#include <QLocale>
#include <QPainter>
#include <QPdfWriter>
#include <QRandomGenerator>
#include <QTextLayout>
#include <QTransform>

#include "export/log_builder.h"
#include "paper/canvas.h"
#include "paper/light_emoji.h"
#include "paper/page_painter.h"
#include "paper/page_printing.h"
#include "paper/painter_canvas.h"
#include "paper/pdf_document.h"
#include "timeline/text/laid_out_text.h"
#include "toolkit/emoji.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using test::LogBuilder;

/// Notes the lines and frames of the pages that are painted on it.
class Notes final : public PaperCanvas {
  public:
    void fill(const QRect&, const QColor& color, qreal) override { EXPECT_EQ(color.alpha(), 255); }
    void bubble(const QRect& frame, Style::Aqua, ChatBubbleShape::Direction) override {
        bubbles.append(frame);
    }
    void drawing(const QRect&, const QImage&) override {}
    void photo(const QRect&, const QImage&, qreal) override {}
    void text(const LaidOutText& text, QPoint, int from, int to, const QColor& color) override {
        EXPECT_EQ(color.alpha(), 255);
        text.forEachLine(from, to, [this](const QTextLine& line, QStringView content, int) {
            lines.append(content.sliced(line.textStart(), line.textLength()).toString());
        });
    }
    void link(const QRect&, const QString& address) override { links.append(address); }

    QStringList lines;
    QStringList links;
    QList<QRect> bubbles;
};

class Paper {
  public:
    explicit Paper(TesselChatLog log)
        : log_(std::move(log)),
          setup_(currentPaperSetup(log_, ContactsStore(), u"Title"_s,
                                   PaperFormat::of(QPageSize(QPageSize::A4)))),
          context_(setup_),
          painter_(log_, context_, setup_),
          paginator_(log_, context_, painter_.rowsSize()) {}

    std::vector<PaperPage> pages(Notes& notes) {
        std::vector<PaperPage> all;
        while (auto page = paginator_.next()) {
            painter_.paint(notes, *page);
            const PaperRow& last = page->rows.back();
            EXPECT_LE(last.top + last.layout.height, painter_.rowsSize().height());
            EXPECT_GE(page->rows.front().layout.icon.top(), 0);
            for (const PaperRow& row : page->rows) {
                EXPECT_TRUE(row.isLast || row.textTop > 0 ||
                            row.top <= painter_.rowsSize().height() * 3 / 4)
                    << "a long text begins where there is hardly room";
                const QRect& frame = row.layout.frame;
                EXPECT_TRUE(frame.isEmpty() || frame.contains(row.layout.content));
            }
            all.push_back(std::move(*page));
        }
        return all;
    }

  private:
    TesselChatLog log_;
    PaperSetup setup_;
    PaperContext context_;
    PagePainter painter_;
    Paginator paginator_;
};

TEST(Paginator, BubblesAreWholeAndMarksAndCaptionsStayWithThem) {
    LogBuilder builder;
    QRandomGenerator random(1);
    for (int i = 0; i < 3000; ++i) {
        builder.newMinute().text(u"bob"_s,
                                 u"message %1 \n"_s.arg(i).repeated(1 + random.bounded(13)));
        builder.user(u"bob"_s);
    }
    Notes notes;
    const auto pages = Paper(builder.log()).pages(notes);
    EXPECT_GT(pages.size(), 100u);
    EXPECT_EQ(notes.bubbles.size(), 3000);
    EXPECT_TRUE(notes.lines.contains(QString::number(pages.size())) &&
                !notes.lines.contains(u"0"_s));
    for (const PaperPage& page : pages) {
        EXPECT_EQ(page.rows.front().event % 3, 0) << "a mark begins page " << page.number;
        EXPECT_EQ(page.rows.back().event % 3, 2) << "a caption ends page " << page.number;
    }
}

TEST(Paginator, TextsLongerThanAPageAreCutBetweenLines) {
    for (const bool isSystem : {false, true}) {
        QStringList lines;
        QString text;
        for (int i = 0; i < 2000; ++i) {
            lines.append(u"line %1."_s.arg(i));
            text += lines.back() + u" word"_s.repeated(i % 40) + u'\n';
        }
        Notes notes;
        const auto log = isSystem
                             ? LogBuilder().text(u"bob"_s, u"first"_s).system(text).log()
                             : LogBuilder().text(u"bob"_s, u"first"_s).text(u"bob"_s, text).log();
        const auto pages = Paper(log).pages(notes);
        EXPECT_GT(pages.size(), 20u);
        EXPECT_EQ(pages.front().rows.size(), 2u) << "a long text begins where there is room";
        QStringList shown = notes.lines.filter(u"line "_s);
        for (QString& line : shown)
            line.truncate(line.indexOf(u'.') + 1);
        EXPECT_EQ(shown, lines);
        EXPECT_EQ(isSystem ? 1 : qsizetype(pages.size()) + 1, notes.bubbles.size());
    }
    for (int lines = 40; lines < 90; ++lines) {  // one of them leaves a single line
        Notes notes;
        LogBuilder builder;
        builder.text(u"bob"_s, u"line\n"_s.repeated(lines));
        Paper(builder.text(u"bob"_s, u"line\n"_s.repeated(100)).log()).pages(notes);
    }
}

TEST(Paginator, EveryPageCanBeMadeAlone) {
    LogBuilder builder;
    for (int i = 0; i < 200; ++i) {
        builder.newMinute().text(u"bob"_s,
                                 u"message %1 \n"_s.arg(i).repeated(i % 50 == 9 ? 120 : 3));
        builder.user(u"bob"_s);
    }
    const TesselChatLog log = builder.log();
    const PaperSetup setup =
        currentPaperSetup(log, ContactsStore(), {}, PaperFormat::of(QPageSize(QPageSize::Letter)));
    PaperContext context(setup);
    const PagePainter painter(log, context, setup);
    Paginator all(log, context, painter.rowsSize());
    for (;;) {
        const PageStart start = all.start();
        const auto page = all.next();
        if (!page) break;
        const auto alone = Paginator(log, context, painter.rowsSize(), start, page->number).next();
        ASSERT_TRUE(alone);
        Notes expected;
        Notes notes;
        painter.paint(expected, *page);
        painter.paint(notes, *alone);
        EXPECT_EQ(notes.lines, expected.lines);
        EXPECT_EQ(notes.bubbles, expected.bubbles);
    }
    EXPECT_GT(all.done(), 0);
}

TEST(Paginator, OneLetterHigherThanAPageEndsToo) {
    Notes notes;
    const auto pages =
        Paper(LogBuilder().text(u"bob"_s, u"a"_s + QString(9000, QChar(0x0301))).log())
            .pages(notes);
    EXPECT_FALSE(pages.empty());
    EXPECT_TRUE(Paper(LogBuilder().log()).pages(notes).empty());
}

/// Takes this many bytes.
class FullDevice final : public QIODevice {
  public:
    explicit FullDevice(qint64 room) : room_(room) { open(WriteOnly); }

  protected:
    qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }
    qint64 writeData(const char* /*data*/, qint64 size) override {
        if (size > room_) return -1;
        room_ -= size;
        return size;
    }

  private:
    qint64 room_;
};

struct ManyMessages {
    ManyMessages() : log(make()), setup(currentPaperSetup(log, ContactsStore(), {}, a4())) {}
    static PaperFormat a4() { return PaperFormat::of(QPageSize(QPageSize::A4)); }
    static TesselChatLog make() {
        LogBuilder builder;
        for (int i = 0; i < 200; ++i)
            builder.text(u"bob"_s, u"message %1"_s.arg(i));
        return builder.log();
    }
    TesselChatLog log;
    PaperSetup setup;
};

TEST(PdfDocument, FullDevicesAndCancellingAreReported) {
    const ManyMessages many;
    QBuffer whole;
    whole.open(QIODevice::WriteOnly);
    const PdfResult result = writePdf(many.log, many.setup, whole);
    EXPECT_TRUE(result.isComplete && result.messages == 200 && result.pages > 3);
    for (qint64 room = 0; room < whole.size(); room += 1 + whole.size() / 20) {
        FullDevice device(room);
        EXPECT_THROW(writePdf(many.log, many.setup, device), PdfFile::WriteFailed) << room;
    }
    int pages = 0;
    const auto untilThird = [&pages](auto, auto) { return ++pages < 3; };
    EXPECT_FALSE(writePdf(many.log, many.setup, whole, untilThird).isComplete);
    EXPECT_EQ(pages, 3);
}

TEST(PdfDocument, EmojiKeepTheirWidth) {
    const TesselChatLog log = LogBuilder().text(u"bob"_s, u"a cat \U0001F408 on the roof"_s).log();
    const auto width = [&log] {
        PaperContext context(currentPaperSetup(log, ContactsStore(), {}, ManyMessages::a4()));
        return context.measure(TimelineRowView(log.events().front(), false), 1600).frame.width();
    };
    const int before = width();
    const PaperSetup setup = currentPaperSetup(log, ContactsStore(), {}, ManyMessages::a4());
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(writePdf(log, setup, buffer).isComplete);
    EXPECT_EQ(width(), before);
}

TEST(PainterCanvas, EmojiAreInColors) {
    if (emojiFamily().isEmpty()) GTEST_SKIP() << "no font in colours";
    const TesselChatLog log = LogBuilder().system(u"a cat \U0001F408"_s).log();
    const PaperSetup setup = currentPaperSetup(log, ContactsStore(), {}, ManyMessages::a4());
    PaperContext context(setup);
    const PagePainter pagePainter(log, context, setup);
    QImage image(setup.format.sheet.toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    PainterCanvas canvas(painter);
    const auto page = Paginator(log, context, pagePainter.rowsSize()).next();
    pagePainter.paint(canvas, *page);
    painter.end();
    QRect colored;
    for (int i = 0; i < image.width() * image.height(); ++i) {
        const QPoint place(i % image.width(), i / image.width());
        if (image.pixelColor(place).saturation() > 100) colored |= QRect(place, QSize(1, 1));
    }
    const PaperRow& row = page->rows.front();
    const QRectF line = QRectF(row.layout.content.translated(0, pagePainter.paperTop(row)));
    EXPECT_GT(colored.width() * colored.height(), 50);
    EXPECT_TRUE(QTransform::fromTranslate(PaperFormat::margin, PaperFormat::margin)
                    .scale(PaperFormat::scale, PaperFormat::scale)
                    .mapRect(line)
                    .toAlignedRect()
                    .contains(colored));
}

TEST(LightEmoji, AreAsWideAsTheOthers) {
    TextFormat format;
    format.font.setPixelSize(32);
    const QString emoji = u"\U0001F408\U0001F44D\U0001F3FD\U0001F1E9\U0001F1EA"_s;
    const LaidOutText heavy(emoji, format, 4000);
    format.emojiFamily = lightEmojiFamily();
    const LaidOutText light(emoji, format, 4000);
    EXPECT_NEAR(light.width(), heavy.width(), 2);
    EXPECT_EQ(light.height(), heavy.height());
}

TEST(PagePrinting, OnlyTheChosenPagesArePainted) {
    const ManyMessages many;
    const auto always = [](auto, auto) { return true; };
    for (const auto& [first, last, count] :
         {std::tuple(2, 3, 2), std::tuple(5, 5, 1), std::tuple(90, 99, 0)}) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QPdfWriter device(&buffer);
        EXPECT_EQ(printPages(many.log, many.setup, device, {first, last}, always), count);
        EXPECT_EQ(buffer.data().count("/Type /Page\n"), std::max(count, 1));
        EXPECT_EQ(writePdf(many.log, many.setup, buffer, always, {first, last}).pages, count);
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter device(&buffer);
    int asked = 0;
    const auto twice = [&asked](auto, auto) { return ++asked < 3; };
    EXPECT_EQ(printPages(many.log, many.setup, device, {}, twice), 2);
    EXPECT_EQ(asked, 3);
}

TEST(PagePainter, OnlyPlainAddressesAreLive) {
    Notes notes;
    Paper(LogBuilder()
              .link(u"bob"_s, u"https://example.org/a"_s, u"one"_s)
              .link(u"bob"_s, u"javascript:alert(1)"_s, u"two"_s)
              .link(u"bob"_s, u"file:///etc/passwd"_s, u"three"_s)
              .log())
        .pages(notes);
    EXPECT_EQ(notes.links, QStringList(u"https://example.org/a"_s));
}

TEST(PaperFormat, LetterIsUsedWhereItIsUsual) {
    for (const char* name : {"en_US", "en_CA", "fr_CA", "es_MX", "es_CL"})
        EXPECT_EQ(usualPaper(QLocale(QLatin1StringView(name))).id(), QPageSize::Letter) << name;
    for (const char* name : {"C", "de_DE", "en_GB", "he_IL", "ja_JP", "pt_BR"})
        EXPECT_EQ(usualPaper(QLocale(QLatin1StringView(name))).id(), QPageSize::A4) << name;
}

}  // namespace
}  // namespace vell
