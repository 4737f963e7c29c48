#pragma once

#include <QString>
#include <string>

class QLayout;
class QComboBox;

namespace lomarin {
class SettingsStore;
class TMyConnection;
}  // namespace lomarin

namespace lomarin::ui {

class TframeecSQL;

// The pages the trigger, view, function and event dialogs share: the body editor and the
// read-only "Source" view of the statement.
TframeecSQL* addBodyEditor(SettingsStore& settings, QLayout* layout, const char* objectName);
TframeecSQL* addSourceView(SettingsStore& settings, QLayout* layout);
std::string frameText(const TframeecSQL* frame);
void setFrameText(TframeecSQL* frame, const std::string& text);
void setFrameText(TframeecSQL* frame, const QString& text);

// The server's databases in the combo box, the given one chosen.
void fillDatabases(TMyConnection& session, QComboBox* combo, const QString& database);
// The "YYYY-MM-DD HH:MM:SS" of now.
QString nowText();

}  // namespace lomarin::ui
