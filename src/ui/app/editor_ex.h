#pragma once

#include <QWidget>

class QsciScintilla;

namespace lomarin {
class SettingsStore;
}

namespace lomarin::ui {

// The general text editor: a file that is not an SQL script, as a document of the main window.
class TformEditorEX : public QWidget {
  Q_OBJECT
  // The main window finds open documents by this property.
  Q_PROPERTY(QString fileName READ fileName)
 public:
  TformEditorEX(const SettingsStore& settings, QWidget* parent = nullptr);

  // False (and the editor left empty) when the file cannot be read.
  bool loadFile(const QString& fileName);
  const QString& fileName() const { return fileName_; }
  QsciScintilla* editor() const { return editor_; }

 private:
  QsciScintilla* editor_;
  QString fileName_;
};

}  // namespace lomarin::ui
