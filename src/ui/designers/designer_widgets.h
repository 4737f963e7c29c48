#pragma once

#include <QString>
#include <QStringList>
#include <string>
#include <string_view>
#include <vector>

#include "engine/designers/column_types.h"
#include "engine/designers/sql_param.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QWidget;

namespace lomarin {
class TMyConnection;
}

namespace lomarin::ui {

// Escapes literals for the session's character set and SQL mode.
explorer::ValueEscaper sessionEscaper(TMyConnection& session);

// One column of a statement's result, the first for an empty name. When the server refuses the
// statement the list is empty: the session's error handling has shown why.
QStringList readColumn(TMyConnection& session, const std::string& sql, std::string_view column);

// The fields a column editor's type choice governs.
struct TTypeRuleWidgets {
  QLineEdit* Length;
  QLineEdit* Default;
  QCheckBox* AutoIncrement;
  QLineEdit* ExtraValue;
  QCheckBox* Unsigned;
  QCheckBox* Zerofill;
  // Disabled for "bool", enabled again by any other type.
  std::vector<QCheckBox*> Flags;
};
void applyTypeRules(const designers::TColumnTypeRules& rules, const TTypeRuleWidgets& widgets);

// The 30 data types, nothing chosen.
void fillDataTypes(QComboBox* combo);
std::string text(const QLineEdit* edit);
std::string text(const QComboBox* combo);

// A designer's validation message: a warning with an OK button.
void showWarning(QWidget* parent, const std::string& message);

}  // namespace lomarin::ui
