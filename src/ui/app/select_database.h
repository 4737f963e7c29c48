#pragma once

#include <QDialog>

class QListWidget;

namespace lomarin {
class TMyConnection;
}

namespace lomarin::ui {

// Asks which database to work in, from the databases the session can see.
class TformSelectDatabase : public QDialog {
  Q_OBJECT
 public:
  // Throws ServerError when the list cannot be read.
  TformSelectDatabase(TMyConnection& session, QWidget* parent = nullptr);

  // Empty until the user picks one.
  QString selectedDatabase() const;

 private:
  QListWidget* lstDatabases_;
};

}  // namespace lomarin::ui
