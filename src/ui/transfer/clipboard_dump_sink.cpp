#include "ui/transfer/clipboard_dump_sink.h"

#include <QClipboard>
#include <QGuiApplication>

namespace lomarin::ui {

void TClipboardDumpSink::commit() { QGuiApplication::clipboard()->setText(QString::fromStdString(text_)); }

}  // namespace lomarin::ui
