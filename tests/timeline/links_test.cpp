// SPDX-License-Identifier: MIT
#include "timeline/input/links.h"

#include <gtest/gtest.h>

#include <QHelpEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTextDocumentFragment>
#include <QToolTip>

#include "timeline/window.h"

namespace vell {
namespace {

using test::bob;
using test::LogBuilder;
using test::Window;

TEST(Links, OnlyPlainLinksOpenWithoutAQuestion) {
    const std::string endless(20'000, 'x');
    const struct {
        const char* why;
        const char* address;
        const char* text;
        bool isPlain;
    } rows[] = {
        {"a title", "http://example.com/a", "my page", true},
        {"the address itself", "https://example.com/a?b#c", "https://example.com/a?b#c", true},
        {"shortened", "http://www.example.com/a", "example.com", true},
        {"capitals", "HTTP://EXAMPLE.com", "http://Example.com/", true},
        {"a port", "http://example.com:8080/", "example.com:8080", true},
        {"a mailbox", "mailto:bob@example.com?subject=x", "bob@example.com", true},
        {"a chat", "aim:goim?screenname=bob", "write to bob", true},
        {"a number", "tel:+4930123456", "+49 30 123456", true},
        {"an ordinary sentence", "http://example.com", "It costs 1.20, e.g. now.", true},
        {"a sentence of another script", "http://example.com", "Смотри, т.е. читай: сор.", true},
        {"letters of another script", "http://bücher.example/", "http://xn--bcher-kva.example",
         true},

        {"another host", "http://evil.example/", "http://bank.example/", false},
        {"another host in a sentence", "http://evil.example", "see\n(www.bank.example)!", false},
        {"another host without a scheme", "http://evil.example/", "bank.example/login", false},
        {"the host is somebody's name", "http://bank.example@evil.example/", "bank.example", false},
        {"the host is only the beginning", "http://bank.example.evil.example/", "bank.example",
         false},
        {"another mailbox", "mailto:bob@evil.example", "bob@bank.example", false},
        {"another address of numbers", "http://10.0.0.1/", "10.0.0.2", false},
        {"hidden characters", "http://evil.example/", "bank\u200b.exam\u202eple", false},
        {"joined by nothing", "http://evil.example/", "ba\u200dnk.exam\u2060ple", false},
        {"wider letters", "http://evil.example/", "ｂａｎｋ。ｅｘａｍｐｌｅ", false},
        {"letters that look like others, in the text", "http://evil.example/", "рaypаl.com", false},
        {"… in the address", "http://раураl.com/", "my page", false},
        {"… in both", "http://раураl.com/", "http://раураl.com/", false},
        {"… in the address as the network writes it", "http://xn--80aa0cbo65f.com/", "my page",
         false},
        {"a slash that is none", "http://evil.example/", "bank.example⁄login.evil.example", false},
        {"a bar for a slash", "http://evil.example/", "bank.example|login", false},
        {"a backslash in the text", "http://evil.example/", "http:\\\\bank.example", false},
        {"a backslash in the address", "http://bank.example\\@evil.example/", "my page", false},
        {"no slashes", "http:evil.example", "my page", false},
        {"one slash", "https:/evil.example/", "my page", false},
        {"somebody's name", "http://me@example.com/", "my page", false},
        {"somebody's name that is a host", "http://evil.example/", "bank.example@evil.example",
         false},
        {"turned around, in both", "http://evil.example/\u202emoc", "http://evil.example/\u202emoc",
         false},
        {"a mark of direction", "http://example.com/", "\u200fexample.com", false},
        {"a mail with a file", "mailto:a@b.example?subject=x&ATTACH=/etc/passwd", "write", false},
        {"a mail with somebody unseen", "mailto:a@b.example?bcc=c@d.example", "write", false},
        {"a text without end", "http://example.com", endless.c_str(), false},
        {"no host at all", "aim:goim", "http://bank.example", false},
        {"a file", "file:///etc/passwd", "click", false},
        {"a program", "javascript:alert(1)", "click", false},
        {"no scheme", "example.com", "example.com", false},
        {"nothing", "", "", false},
        {"no address", "http://[", "click", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(isPlainLink(QString::fromUtf8(row.address), QString::fromUtf8(row.text)),
                  row.isPlain)
            << row.why;
    }
}

TEST(Links, AddressesAreShownOnOneLineAndEncoded) {
    EXPECT_EQ(shownAddress(QString::fromUtf8("http://a.b/c\n\u202etxt.exe\u200d\u2028")),
              QStringLiteral("http://a.b/c%0A%E2%80%AEtxt.exe%E2%80%8D%E2%80%A8"));
    const QString endless = QStringLiteral("http://a.b/") + QString(100'000, u'x');
    EXPECT_LT(shownAddress(endless).size(), 1100);
    EXPECT_TRUE(shownAddress(endless).startsWith(QLatin1String("http://a.b/")));
}

TesselChatLog twoLinks() {
    const auto link = [](const char* address, const char* title) {
        return TesselChatLog::Link{std::make_shared<foundation::URL>(QString::fromUtf8(address)),
                                   QString::fromUtf8(title)};
    };
    return LogBuilder()
        .add(bob, link("http://example.com/a?b=c%20d", "the cat's page"))
        .add(bob, link("http://evil.example/", "www.bank.example"))
        .log();
}

TEST(Links, ClicksOpenAndDragsSelect) {
    Window window(twoLinks());
    QStringList opened;
    window.view.links().setOpener([&](const QUrl& url) {
        opened += url.toString(QUrl::FullyEncoded);
        return true;
    });
    const QPoint title = window.place(0, 4);
    window.press(title);
    window.release(title);
    EXPECT_EQ(opened, QStringList{QStringLiteral("http://example.com/a?b=c%20d")});

    window.press(title);
    window.move(title + QPoint(QApplication::startDragDistance() - 2, 0));
    EXPECT_TRUE(window.view.hasSelection());
    window.release(title + QPoint(QApplication::startDragDistance() - 2, 0));
    window.drag(title, window.place(0, 9));
    EXPECT_EQ(opened.size(), 1) << "selecting opens";
    EXPECT_TRUE(window.view.hasSelection());
    const QPoint beside = title + QPoint(0, 24);
    window.press(beside);
    window.release(beside);
    EXPECT_EQ(opened.size(), 1) << "beside the title";

    for (const bool agrees : {false, true}) {
        const QPoint other = window.place(1, agrees ? 5 : 12);  // no double click
        window.press(other);
        window.release(other);
        auto* box = window.view.findChild<QMessageBox*>();
        ASSERT_TRUE(box);
        EXPECT_TRUE(box->text().contains(QStringLiteral("http://evil.example/")));
        for (QAbstractButton* button : box->buttons()) {
            const bool isOpening = box->buttonRole(button) == QMessageBox::AcceptRole;
            if (isOpening == agrees) button->click();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(opened.size(), agrees ? 2 : 1);
    }
}

TEST(Links, HoveringShowsTheAddressAndChangesTheCursor) {
    Window window(twoLinks());
    QSignalSpy hovered(&window.view, &TimelineView::linkHovered);
    window.move(window.place(0, 4));
    EXPECT_EQ(window.view.viewport()->cursor().shape(), Qt::PointingHandCursor);
    window.move(QPoint(400, 600));
    EXPECT_EQ(window.view.viewport()->cursor().shape(), Qt::ArrowCursor);
    window.move(window.place(0, 4));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(window.view.viewport(), &leave);
    ASSERT_EQ(hovered.size(), 4);
    EXPECT_EQ(hovered[3][0].toString(), QString());
    EXPECT_EQ(hovered[0][0].toString(), QStringLiteral("http://example.com/a?b=c%20d"));
    EXPECT_EQ(hovered[1][0].toString(), QString());
}

TEST(Links, ToolTipsShowSenderAndDateAsPlainText) {
    const TesselUserID mallory{TesselServiceID::aim, QStringLiteral("<b>mallory</b>")};
    Window window(LogBuilder().text(mallory, QStringLiteral("some text")).log());
    const QPoint place = window.place(0, 3);
    QHelpEvent event(QEvent::ToolTip, place, window.view.viewport()->mapToGlobal(place));
    QApplication::sendEvent(window.view.viewport(), &event);
    const QString text = QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText();
    EXPECT_TRUE(text.startsWith(mallory.userID + u'\n')) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("2023"))) << text.toStdString();
}

}  // namespace
}  // namespace vell
