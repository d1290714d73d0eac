#pragma once
// SPDX-License-Identifier: MIT
//
// SearchBar: the library's search field, and below it, while something is searched, a button for
// each filter. The buttons change the words of the query, which is all there is to a search.

#include <QWidget>
#include <array>
#include <memory>

class QAction;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QMenu;
class QToolButton;

namespace vell {

struct LibraryPeople;

class SearchBar final : public QWidget {
    Q_OBJECT

  public:
    explicit SearchBar(QWidget* parent = nullptr);

    /// Who and which years the filters offer.
    void setPeople(std::shared_ptr<const LibraryPeople> people);
    [[nodiscard]] QString text() const;
    [[nodiscard]] bool isBestFirst() const { return isBestFirst_; }
    /// What was found, or why nothing could be.
    void showState(const QString& text);
    /// Adds a button beside the field.
    void addTool(QAction& action);
    void takeFocus();
    void clear();

  Q_SIGNALS:
    void changed();
    /// The return key.
    void entered();
    /// The keyboard goes on to what was found.
    void left();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    struct Filter {
        QString key;
        QString title;
        QToolButton* button = nullptr;
    };

    [[nodiscard]] QWidget* buildFilters();
    void fillMenu(QMenu& menu, const QString& key);
    void fillPeople(QMenu& menu, const QString& key);
    void fillYears(QMenu& menu, const QString& key);
    void addCalendar(QMenu& menu, const QString& key);
    void fillKinds(QMenu& menu);
    void addValue(QMenu& menu, const QString& key, const QString& value, const QString& text);
    void setFilter(const QString& key, const QStringList& values);
    void showFilters();
    [[nodiscard]] QString shownValue(const QString& key, const QString& value) const;

    std::shared_ptr<const LibraryPeople> people_;
    QLineEdit* field_;
    QHBoxLayout* fieldRow_ = nullptr;
    QWidget* filterRow_ = nullptr;
    std::array<Filter, 6> filters_;
    QToolButton* order_ = nullptr;
    QLabel* state_ = nullptr;
    bool isBestFirst_ = false;
};

}  // namespace vell
