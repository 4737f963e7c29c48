#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "ui/sqleditor/error_reporter.h"

class QCheckBox;
class QComboBox;
class QPushButton;
class QTabWidget;
class QTreeWidget;

namespace lomarin {
class TMyConnection;
}

namespace lomarin::ui {

// What the index and constraint managers share: a database and table list, an add page with the
// table's columns to check and a drop page with the keys to check. OK acts on the page showing.
class TKeyManager : public QDialog {
  Q_OBJECT
 public:
  std::string database() const;
  std::string table() const;
  void showDropPage();

 protected:
  struct Widgets {
    QComboBox* Databases;
    QComboBox* Tables;
    QTabWidget* Pages;
    QTreeWidget* Columns;
    QTreeWidget* DropList;
    QCheckBox* CheckAll;
    QPushButton* Ok;
    QPushButton* Cancel;
  };

  TKeyManager(TMyConnection& session, ErrorReporter showServerError, const QString& database,
              const QString& table, QWidget* parent);
  // Called by the derived dialog once its form is set up.
  void setWidgets(const Widgets& widgets);

  virtual void fillDropList() = 0;
  virtual void addClick() = 0;
  virtual void dropClick() = 0;
  // After the table list changed, for lists that follow it.
  virtual void tablesFilled() {}

  // A row whose first cell is a check box.
  void addCheckRow(QTreeWidget* grid, const QStringList& cells);
  // The checked rows' cells of that column, in grid order.
  std::vector<std::string> checked(QTreeWidget* grid, int column) const;
  void clearChecks(QTreeWidget* grid);
  void reloadLists();

  void showEvent(QShowEvent* event) override;

  TMyConnection& session_;
  ErrorReporter showServerError_;
  Widgets w_{};

 private:
  void databaseChange();
  void tableChange();
  void pageChange(int page);
  void okClick();
  void fillColumns();

  QString presetDatabase_;
  QString presetTable_;
  bool listed_ = false;
};

}  // namespace lomarin::ui
