#pragma once

#include <QByteArray>
#include <QDialog>
#include <QString>

class QAction;
class QFileDialog;
class QLabel;
class QTabWidget;
class QTextBrowser;

namespace lomarin {
class SettingsStore;
}

namespace lomarin::ui {

class TframeData;
class TframeecSQL;
class THexEditor;

// "Blob Viewer": one field of the frame's current record as text, picture, HTML page and bytes.
// Changes go into the frame's row the way a grid edit does.
class TformBlobViewer : public QDialog {
  Q_OBJECT
 public:
  TformBlobViewer(TframeData& frame, int column, SettingsStore& settings, QWidget* parent = nullptr);
  ~TformBlobViewer() override;

  // Shows the current record's value (and writes it to the work file).
  void showRecord();
  const QByteArray& value() const { return value_; }
  // The work file "myfile" in the data folder.
  static QString workFile();

  // What the buttons do once a file is chosen.
  bool loadFromFile(const QString& file);
  bool unloadToFile(const QString& file);
  // The dialogs the buttons open (set up with their default extension), for the caller to run.
  QFileDialog* createUnloadDialog();

  void btnNextClick();
  void btnPriorClick();
  void btnClearClick();
  void actEditTextClick();
  void actSaveTextClick();
  void actClearTextClick();
  void actSaveBytesClick();

 private:
  void buildUi(SettingsStore& settings);
  void btnLoadClick();
  void btnUnloadClick();
  void moveBy(int rows);
  bool store(const QByteArray& bytes);
  void report(const QString& message);

  TframeData& frame_;
  int column_;
  QByteArray value_;
  QTabWidget* pages_ = nullptr;
  TframeecSQL* text_ = nullptr;
  QLabel* image_ = nullptr;
  QTextBrowser* html_ = nullptr;
  THexEditor* hex_ = nullptr;
  QLabel* record_ = nullptr;
};

}  // namespace lomarin::ui
