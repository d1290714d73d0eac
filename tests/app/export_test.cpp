// SPDX-License-Identifier: MIT
//
// Exporting and printing as a user does it: formats, progress, cancelling, the preview.
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>
#include <atomic>
#include <thread>

#include "app/documents/export/background_job.h"
#include "app/documents/export/chat_export.h"
#include "app/documents/export/export_formats.h"
#include "app/documents/print/chat_printing.h"
#include "app/documents/print/print_window.h"
#include "app/documents/print/sheet_view.h"
#include "export/format.h"
#include "export/log_builder.h"
#include "paper/page_painter.h"
#include "paper/painter_canvas.h"
#include "windows.h"

namespace vell::test {
namespace {

using namespace Qt::StringLiterals;

TEST(ExportFormats, TheNameDecidesAndThenTheFilter) {
    const auto filterOf = [](const QString& extension) {
        return chosenFormat(u"a."_s + extension, {}).filter;
    };
    const struct {
        QString target;
        QString filter;
        QString extension;
    } rows[] = {{u"a.PDF"_s, u"html"_s, u"pdf"_s},
                {u"a.Html"_s, u"pdf"_s, u"html"_s},
                {u"a"_s, u"csv"_s, u"csv"_s},
                {u"a.b"_s, u"jsonl"_s, u"jsonl"_s},
                {u"a.html.md"_s, u"pdf"_s, u"md"_s}};
    for (const auto& row : rows) {
        const ExportChoice choice = chosenFormat(row.target, filterOf(row.filter));
        EXPECT_EQ(choice.extension, row.extension) << row.target.toStdString();
        EXPECT_EQ(choice.format == nullptr, row.extension == u"pdf"_s);
    }
}

class Jobs : public testing::Test {
  protected:
    Jobs() : window_(std::make_unique<QWidget>()) { window_->show(); }
    ~Jobs() override { isReleased_ = true; }

    /// One that ends when it is released, or cleans up when it finds itself cancelled.
    void start(bool asks) {
        startJob(
            *window_, {u"Title"_s, u"Label"_s},
            [this, asks](const JobControl& control) {
                control_ = &control;
                while (!isReleased_ && (control.progress(300, 1000) || !asks))
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                isClean_ = true;
                return JobResult();
            },
            [this](const JobResult&) { ++done_; });
        EXPECT_TRUE(waitUntil([this] { return dialog() && dialog()->isVisible(); }));
    }
    [[nodiscard]] QProgressDialog* dialog() const { return window_->findChild<QProgressDialog*>(); }

    std::unique_ptr<QWidget> window_;
    std::atomic<const JobControl*> control_ = nullptr;
    std::atomic<bool> isReleased_ = false;
    std::atomic<bool> isClean_ = false;
    int done_ = 0;
};

TEST_F(Jobs, ShowHowFarTheyAreAndVanishWhenCancelled) {
    start(false);
    EXPECT_TRUE(waitUntil([this] { return dialog()->value() == 300; }));
    const QPointer<QProgressDialog> shown = dialog();
    QTest::mouseClick(shown->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_FALSE(shown && shown->isVisible());
    EXPECT_TRUE(control_.load()->isCancelled());
    deleteDeferred();
    EXPECT_FALSE(shown || isClean_) << "the window waited for the work";
    isReleased_ = true;
    EXPECT_TRUE(waitUntil([this] { return isClean_.load(); }));
    deleteDeferred();
    EXPECT_EQ(done_, 0);
}

TEST_F(Jobs, EndWithTheirWindowAndSaySoOtherwise) {
    start(true);
    window_.reset();
    EXPECT_TRUE(isClean_);
    EXPECT_EQ(done_, 0);
    window_ = std::make_unique<QWidget>();
    window_->show();
    isClean_ = false;
    start(true);
    isReleased_ = true;
    EXPECT_TRUE(waitUntil([this] { return done_ == 1; }));
    deleteDeferred();
    EXPECT_FALSE(dialog());
}

class Printing : public testing::Test {
  protected:
    static std::shared_ptr<const TesselChatLog> log(int messages) {
        LogBuilder builder;
        for (int i = 0; i < messages; ++i)
            builder.text(i % 3 > 0 ? u"bob"_s : u"me"_s,
                         u"message %1 "_s.arg(i).repeated(1 + i % 9));
        return std::make_shared<const TesselChatLog>(builder.log());
    }
    static PaperSetup setupOf(const TesselChatLog& chatlog) {
        return currentPaperSetup(chatlog, ContactsStore(), u"Title"_s,
                                 PaperFormat::of(QPageSize(QPageSize::A4)));
    }
    static qsizetype pagesOf(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().count("/Type /Page ");
    }
    QTemporaryDir folder_;
};

TEST_F(Printing, PagesOfARangeAreADocumentAndACancelledOneLeavesNothing) {
    const auto chatlog = log(200);
    const QString target = folder_.filePath(u"a.pdf"_s);
    const ChatExport order{chatlog, setupOf(*chatlog), {}, target, {2, 3}};
    JobControl control;
    EXPECT_EQ(writeChat(order, control).error, QString());
    EXPECT_EQ(pagesOf(target), 2);
    control.cancel();
    for (const char* name : {"b.pdf", "b.html"}) {
        const QString other = folder_.filePath(QLatin1StringView(name));
        const JobResult result =
            writeChat({chatlog, setupOf(*chatlog), chosenFormat(other, {}), other}, control);
        EXPECT_TRUE(result.error.isEmpty() && result.notice.isEmpty());
    }
    EXPECT_EQ(QDir(folder_.path()).entryList(QDir::Files), QStringList(u"a.pdf"_s));
}

/// How much of one picture is as in another: 1 is all.
double likeness(const QImage& one, const QImage& other) {
    const QImage scaled = other.scaled(one.size()).convertToFormat(QImage::Format_RGB32);
    double difference = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            difference += std::abs(qGray(one.pixel(x, y)) - qGray(scaled.pixel(x, y)));
    return 1 - difference / 255 / one.width() / one.height();
}

TEST_F(Printing, ThePreviewShowsThePageThatIsChosenAndSharply) {
    const auto chatlog = log(200);
    const PaperSetup setup = setupOf(*chatlog);
    PrintWindow window(
        chatlog, setup, std::make_shared<QPrinter>(), [] {}, nullptr);
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.resize(1300, 1500);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    auto* sheet = window.findChild<SheetView*>();
    auto* number = window.findChild<QSpinBox*>();
    PaperContext context(setup);
    const PagePainter painter(*chatlog, context, setup);
    Paginator paginator(*chatlog, context, painter.rowsSize());
    std::vector<QImage> pages;
    while (const auto page = paginator.next()) {
        QImage image((setup.format.sheet * sheet->scale()).toSize(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter on(&image);
        on.scale(sheet->scale(), sheet->scale());
        PainterCanvas canvas(on);
        painter.paint(canvas, *page);
        pages.push_back(image);
    }
    const int count = static_cast<int>(pages.size());
    ASSERT_GT(count, 3);
    EXPECT_TRUE(waitUntil([&] { return number->maximum() == count; }));
    const auto shows = [&](int page) {
        const QImage& expected = pages[static_cast<size_t>(page - 1)];
        return number->value() == page && waitUntil([&] {
                   QRect place(QPoint(), expected.size());
                   place.moveCenter(sheet->rect().center());
                   return likeness(expected, sheet->grab(place).toImage()) > 0.995;
               });
    };
    EXPECT_LT(likeness(pages[0], pages[1]), 0.99);
    EXPECT_TRUE(shows(1));
    QTest::keyClick(&window, Qt::Key_PageDown);
    EXPECT_TRUE(shows(2));
    const auto turn = [&](int by) {
        QWheelEvent event(QPointF(9, 9), sheet->mapToGlobal(QPointF(9, 9)), {}, {0, by}, {}, {},
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&window, &event);
    };
    turn(-120);
    EXPECT_TRUE(shows(3));
    turn(120);
    QTest::keyClick(&window, Qt::Key_PageUp);
    EXPECT_TRUE(shows(1));
    number->setValue(count);
    EXPECT_TRUE(shows(count));
    for (const QToolButton* button : window.findChildren<QToolButton*>())
        EXPECT_EQ(button->isEnabled(), button->accessibleName() == u"Previous Page"_s);
}

TEST_F(Printing, OnlyThePagesThatWereAskedForArePrinted) {
    QWidget parent;
    parent.show();
    const auto chatlog = log(200);
    std::optional<JobResult> outcome;
    printChat(parent, chatlog, setupOf(*chatlog),
              [&](const JobResult& result) { outcome = result; });
    auto* preview = parent.findChild<PrintWindow*>();
    ASSERT_TRUE(preview);
    for (QPushButton* button : preview->findChildren<QPushButton*>())
        if (button->text().contains(u"Print"_s)) QTest::mouseClick(button, Qt::LeftButton);
    auto* dialog = preview->findChild<QPrintDialog*>();
    ASSERT_TRUE(dialog);
    const QString target = folder_.filePath(u"range.pdf"_s);
    dialog->printer()->setOutputFileName(target);
    dialog->printer()->setPrintRange(QPrinter::PageRange);
    dialog->printer()->setFromTo(2, 4);
    dialog->done(QDialog::Accepted);
    EXPECT_TRUE(waitUntil([&] { return outcome.has_value(); }));
    EXPECT_EQ(outcome->error, QString());
    EXPECT_EQ(pagesOf(target), 3);
}

TEST_F(Printing, AChatOfOnePageHasNoNext) {
    const auto chatlog = log(1);
    PrintWindow window(
        chatlog, setupOf(*chatlog), std::make_shared<QPrinter>(), [] {}, nullptr);
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.show();
    EXPECT_TRUE(waitUntil([&] {
        const auto labels = window.findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [](const QLabel* label) { return label->text() == u"of 1"_s; });
    }));
    for (const QToolButton* button : window.findChildren<QToolButton*>())
        EXPECT_FALSE(button->isEnabled());
}

class ExportTest : public Windows {};

TEST_F(ExportTest, TheChosenFilterGivesANameItsExtension) {
    DocumentWindow* window = opened(file(u"chat.ichat"_s, chat(4)));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QTest::keySequence(window, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E));
    auto* dialog = window->findChild<QFileDialog*>();
    ASSERT_TRUE(dialog);
    QTest::keyClick(dialog->findChild<QComboBox*>(u"fileTypeCombo"_s), Qt::Key_Down);
    auto* name = dialog->findChild<QLineEdit*>(u"fileNameEdit"_s);
    name->setText(folder.filePath(u"typed"_s));
    QTest::keyClick(name, Qt::Key_Return);
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(folder.filePath(u"typed.md"_s)); }));
}

}  // namespace
}  // namespace vell::test
