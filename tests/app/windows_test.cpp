// SPDX-License-Identifier: MIT
//
// The windows beside a chat's: welcome, search, preferences.
#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QTest>

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
    file(u"one.ichat"_s, chat(5));
    file(u"two.ichat"_s, chat(3, u"zoe"_s));
    file(u"three.ichat"_s, "damaged");
    program->open({folder.path()});
    QWidget* search = openWindow("findFilesWindow");
    const auto* view = search->findChild<QTableView*>();
    const auto shown = [view] {
        QStringList rows;
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            QStringList cells;
            for (const int column : {0, 4, 5})
                cells.append(view->model()->index(row, column).data().toString());
            rows.append(cells.join(u'|'));
        }
        rows.sort();
        return rows;
    };
    const QStringList expected{u"one|ann, bob|5"_s, u"three|can’t be read|"_s, u"two|ann, zoe|3"_s};
    EXPECT_TRUE(waitUntil([&] { return shown() == expected; }))
        << shown().join(u'\n').toStdString();
    search->findChild<QLineEdit*>()->setText(u"ZOE"_s);
    EXPECT_EQ(shown(), QStringList{expected[2]});
    QPushButton* open = button(search, u"Open"_s);
    EXPECT_FALSE(open->isEnabled()) << "nothing is selected";
    view->selectionModel()->select(view->model()->index(0, 0),
                                   QItemSelectionModel::SelectCurrent | QItemSelectionModel::Rows);
    open->click();
    EXPECT_TRUE(windowOf(folder.filePath(u"two.ichat"_s)));
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
}

}  // namespace
