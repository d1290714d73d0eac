// SPDX-License-Identifier: MIT
//
// The program in another language: what windows draw changes, what is copied and logged does not.
#include <QClipboard>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSet>
#include <QTranslator>

#include "app/documents/load_log_window.h"
#include "windows.h"

namespace {

using namespace Qt::StringLiterals;
using namespace vell::test;

class Translation : public Windows {
  protected:
    void install() {
        ASSERT_TRUE(translator_.load(u"vell_de"_s, QStringLiteral(VELL_TRANSLATIONS)));
        QCoreApplication::installTranslator(&translator_);
    }
    static QStringList titles(const QList<QAction*>& actions) {
        QStringList titles;
        for (const QAction* action : actions)
            titles.append(action->text().remove(u'&'));
        return titles;
    }
    /// No two entries of a menu may have the same letter.
    static void checkMnemonics(const QList<QAction*>& actions) {
        QSet<QChar> letters;
        for (const QAction* action : actions) {
            const qsizetype mark = action->text().indexOf(u'&');
            if (mark >= 0) {
                const QChar letter = action->text()[mark + 1].toLower();
                EXPECT_FALSE(letters.contains(letter)) << action->text().toStdString();
                letters.insert(letter);
            }
            if (action->menu()) checkMnemonics(action->menu()->actions());
        }
    }
    QString copied(const vell::DocumentWindow& window) {
        QGuiApplication::clipboard()->clear();
        window.findChild<QAction*>(u"copy"_s)->trigger();
        return QGuiApplication::clipboard()->text();
    }

    QTranslator translator_;
};

TEST_F(Translation, MenusAreGermanAndTheChatIsUnchanged) {
    const QString path = file(u"chat.ichat"_s, chat(5));
    vell::DocumentWindow* window = opened(path);
    checkMnemonics(window->menuBar()->actions());
    const QString chatInEnglish = copied(*window);
    window->close();
    deleteDeferred();

    install();
    window = opened(path);
    const QList<QAction*> menus = window->menuBar()->actions();
    EXPECT_EQ(titles(menus), QStringList({u"Datei"_s, u"Bearbeiten"_s, u"Format"_s, u"Ansicht"_s,
                                          u"Gehe zu"_s, u"Fenster"_s, u"Hilfe"_s}));
    checkMnemonics(menus);
    EXPECT_EQ(copied(*window), chatInEnglish);

    program->open({file(u"kaputt.ichat"_s, "broken")});
    ASSERT_TRUE(waitUntil([] { return vell::logWindows().size() == 1; }));
    const auto* log = vell::logWindows().front()->findChild<QPlainTextEdit*>(u"loadLogText"_s);
    EXPECT_TRUE(log->toPlainText().startsWith(u"#  App Version: "_s));
    EXPECT_TRUE(log->toPlainText().contains(u"### Attempt to load from data w/ size: 6\n"_s));
    vell::logWindows().front()->close();
}

}  // namespace
