#pragma once

#include <QString>

class QWidget;
class QsciScintilla;

namespace lomarin::ui {

// A read-only SQL text with syntax colours, for dialogs that show a statement.
QsciScintilla* createReadOnlySqlView(QWidget* parent, const QString& objectName);

}  // namespace lomarin::ui
