#include "ui/designers/program_pages.h"

#include <Qsci/qsciscintilla.h>

#include <QComboBox>
#include <QDateTime>
#include <QLayout>

#include "engine/designers/database_dialogs.h"
#include "ui/designers/designer_widgets.h"
#include "ui/sqleditor/frame_ec_sql.h"

namespace lomarin::ui {

TframeecSQL* addBodyEditor(SettingsStore& settings, QLayout* layout, const char* objectName) {
  TframeecSQL* frame = TframeecSQL::createEmbedded(settings, layout->parentWidget());
  frame->setObjectName(objectName);
  layout->addWidget(frame);
  return frame;
}

TframeecSQL* addSourceView(SettingsStore& settings, QLayout* layout) {
  TframeecSQL* frame = TframeecSQL::createReadOnly(settings, layout->parentWidget());
  frame->setObjectName("frameSQL");
  layout->addWidget(frame);
  return frame;
}

std::string frameText(const TframeecSQL* frame) { return frame->memo()->text().toStdString(); }

void setFrameText(TframeecSQL* frame, const QString& text) { frame->memo()->setText(text); }

void setFrameText(TframeecSQL* frame, const std::string& text) {
  setFrameText(frame, QString::fromStdString(text));
}

void fillDatabases(TMyConnection& session, QComboBox* combo, const QString& database) {
  combo->addItems(readColumn(session, designers::ShowDatabasesSql(), "database"));
  combo->setCurrentText(database);
}

QString nowText() { return QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss"); }

}  // namespace lomarin::ui
