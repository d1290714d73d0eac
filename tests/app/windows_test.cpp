// SPDX-License-Identifier: MIT
//
// The windows beside a chat's: welcome, search, preferences.
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "app/documents/load_log_window.h"
#include "toolkit/application_info.h"
#include "windows.h"

namespace {

using namespace Qt::StringLiterals;
using namespace vell::test;

class OtherWindows : public Windows {
  protected:
    static QPushButton* button(const QWidget* window, const QString& text) {
        for (auto* button : window->findChildren<QPushButton*>()) {
            if (button->text().remove(u'&') == text) return button;
        }
        return nullptr;
    }
};

TEST_F(OtherWindows, WelcomeListsRecentFilesNewestFirstAndMakesRoom) {
    for (const auto& name : {u"old.ichat"_s, u"new.ichat"_s}) {
        opened(file(name, chat(3)))->close();
        deleteDeferred();
    }
    QSettings().setValue(u"RestoreWindows"_s, false);
    program->openWithoutFiles();
    QWidget* welcome = openWindow("welcomeWindow");
    auto* list = welcome->findChild<QListWidget*>();
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(0)->text(), u"new"_s);
    Q_EMIT list->itemActivated(list->item(1));
    EXPECT_TRUE(windowOf(folder.filePath(u"old.ichat"_s)));
    EXPECT_FALSE(openWindow("welcomeWindow"));
}

TEST_F(OtherWindows, SearchSummarisesFiltersAndOpens) {
    QDir(folder.path()).mkpath(u"chats/old"_s);
    file(u"chats/one.ichat"_s, chat(5));
    file(u"chats/old/two.ichat"_s, chat(3, u"zoe"_s));
    file(u"chats/old/three.ichat"_s, "damaged");
    file(u"chats/old/four.ichat"_s, chat(0));
    QStringList printed;
    foundation::setPrintFunction([&](QStringView line) { printed.append(line.toString()); });
    program->open({folder.path()});
    QWidget* search = openWindow("findFilesWindow");
    auto* view = search->findChild<QTableView*>();
    const auto shown = [view] {
        QStringList rows;
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            QStringList cells;
            for (const int column : {0, 1, 2, 4, 5})
                cells.append(view->model()->index(row, column).data().toString());
            rows.append(cells.join(u'|'));
        }
        rows.sort();
        return rows;
    };
    const QStringList expected{u"four|old||ann, bob|0"_s, u"one|chats|3 Mar 2004|ann, bob|5"_s,
                               u"three|old||can’t be read|"_s, u"two|old|3 Mar 2004|ann, zoe|3"_s};
    EXPECT_TRUE(waitUntil([&] { return shown() == expected; }))
        << shown().join(u'\n').toStdString();
    EXPECT_TRUE(printed.isEmpty()) << printed.join(u'\n').toStdString();
    search->findChild<QLineEdit*>()->setText(u"ZOE"_s);
    EXPECT_EQ(shown(), QStringList{expected[3]});
    const auto* state = search->findChild<QLabel*>(u"searchState"_s);
    EXPECT_TRUE(state->text().startsWith(u"1 of 4 transcripts"_s)) << state->text().toStdString();
    QPushButton* open = button(search, u"Open"_s);
    EXPECT_FALSE(open->isEnabled()) << "nothing is selected";
    view->selectionModel()->select(view->model()->index(0, 0),
                                   QItemSelectionModel::SelectCurrent | QItemSelectionModel::Rows);
    open->click();
    EXPECT_TRUE(windowOf(folder.filePath(u"chats/old/two.ichat"_s)));

    search->findChild<QLineEdit*>()->clear();
    const auto openAll = [&] {
        view->selectAll();
        QTest::keyClick(view, Qt::Key_Return);
    };
    openAll();
    EXPECT_EQ(documentWindows().size(), 4u) << "Return opens all that is selected";
    for (int i = 0; i < 8; ++i)
        file(u"more %1.ichat"_s.arg(i), chat(3));
    button(search, u"Search Again"_s)->click();
    ASSERT_TRUE(waitUntil([&] { return view->model()->rowCount() == 12; }));
    openAll();
    EXPECT_LE(documentWindows().size(), 4u) << "nobody was asked";
    auto* question = search->findChild<QMessageBox*>();
    ASSERT_TRUE(question);
    question->button(QMessageBox::Cancel)->click();

    auto* places = search->findChild<QListWidget*>(u"searchPlaces"_s);
    ASSERT_GE(places->count(), 3);
    EXPECT_EQ(places->item(places->count() - 1)->checkState(), Qt::Unchecked) << "the whole disk";
    places->item(0)->setCheckState(Qt::Unchecked);
    EXPECT_EQ(view->model()->rowCount(), 0);
    search->close();
}

TEST_F(OtherWindows, PreferencesKeepContactsAndTheirFiles) {
    const QStringList files{file(u"a.vcf"_s, {}), file(u"b.vcf"_s, {})};
    QSettings().setValue(u"ContactsFiles"_s, files);
    QSettings().setValue(u"ContactsAccess"_s, true);
    program->showPreferences();
    const QWidget* preferences = openWindow("preferences");
    const auto* list = preferences->findChild<QListWidget*>();
    ASSERT_EQ(list->count(), 2);
    list->item(0)->setSelected(true);
    button(preferences, u"Remove"_s)->click();
    EXPECT_EQ(QSettings().value(u"ContactsFiles"_s).toStringList(), QStringList{files[1]});
    EXPECT_EQ(list->count(), 1);
    auto* allow = preferences->findChild<QCheckBox*>(u"allowContacts"_s);
    EXPECT_TRUE(allow->isChecked());
    allow->click();
    EXPECT_FALSE(QSettings().value(u"ContactsAccess"_s, true).toBool());
    QStringList keys;
    for (const auto* of : preferences->findChildren<QAbstractButton*>()) {
        const QString key = QKeySequence::mnemonic(of->text()).toString();
        EXPECT_FALSE(!key.isEmpty() && keys.contains(key)) << of->text().toStdString();
        keys.append(key);
    }
    QTest::keyClick(openWindow("preferences"), Qt::Key_Return);
    EXPECT_FALSE(openWindow("preferences")) << "Return closes";
}

TEST_F(OtherWindows, LabelsAndLinksAreLegibleOnDarkThemes) {
    const QPalette before = QApplication::palette();
    QPalette dark(QColor(49, 54, 59));
    dark.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
    QApplication::setPalette(dark);
    program->showAbout();
    ASSERT_LT(QApplication::palette().color(QPalette::Window).lightness(), 70);
    const vell::LoadLogView log(vell::applicationInfo(), u"log"_s);
    int labels = 0;
    for (QLabel* label :
         openWindow("aboutWindow")->findChildren<QLabel*>() + log.findChildren<QLabel*>()) {
        if (label->text().isEmpty()) continue;
        const QImage picture = label->grab().toImage();
        int lightest = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                lightest = std::max(lightest, qGray(picture.pixel(x, y)));
        EXPECT_GT(lightest, 120) << label->text().toStdString();
        ++labels;
    }
    EXPECT_GE(labels, 9);
    QApplication::setPalette(before);
}

}  // namespace
