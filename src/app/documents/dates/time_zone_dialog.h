#pragma once
// SPDX-License-Identifier: MIT
//
// TimeZoneDialog: all time zones, filtered by what is typed.

#include <QDialog>
#include <QString>

class QLineEdit;
class QListView;
class QPushButton;
class QSortFilterProxyModel;

namespace vell {

class TimeZoneDialog final : public QDialog {
    Q_OBJECT

  public:
    TimeZoneDialog(const QString& current, QWidget* parent);

  Q_SIGNALS:
    void chosen(const QString& zone);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void select(const QString& zone);
    void filter(const QString& text);
    void choose();

    QLineEdit* edit_;
    QListView* list_;
    QSortFilterProxyModel* zones_;
    QPushButton* ok_ = nullptr;
};

}  // namespace vell
