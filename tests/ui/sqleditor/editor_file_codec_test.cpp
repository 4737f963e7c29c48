#include "ui/sqleditor/editor_file_codec.h"

#include <Qsci/qsciscintilla.h>

#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "connect/modal_helper.h"
#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;
using Saved = TEditorFileCodec::Saved;

const TEditorFileChoices kAnsi{"default", "Default", "ANSI"};
const TEditorFileChoices kRussian{"Russian", "Default", "ANSI"};

QByteArray encoded(const char* encoding, const QString& text) {
  QStringEncoder encoder(encoding);
  const QByteArray bytes = encoder.encode(text);
  return encoder.hasError() ? QByteArray() : bytes;
}

// A real editor document with no connection, and a scratch folder for its files.
struct Fixture {
  explicit Fixture(std::function<TEditorFileChoices()> connectionChoices = {})
      : settings(QDir(dir.path()).filePath("settings.db").toStdString()) {
    TSqlEditorContext context(session, settings);
    if (connectionChoices) context.FileChoices = connectionChoices;
    editor = std::make_unique<TformSQLEditor>(context);
    editor->setAttribute(Qt::WA_DeleteOnClose, false);
    editor->show();
  }

  QsciScintilla* memo() const { return editor->frame()->memo(); }
  TEditorFileCodec& codec() const { return TEditorFileCodec::of(memo()); }
  // The memo's text as it holds it (UTF-8), zero bytes included.
  QByteArray memoBytes() const {
    const auto* data =
        reinterpret_cast<const char*>(memo()->SendScintilla(QsciScintillaBase::SCI_GETCHARACTERPOINTER));
    return QByteArray(data, static_cast<qsizetype>(memo()->SendScintilla(QsciScintillaBase::SCI_GETLENGTH)));
  }
  QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }

  QString write(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) return {};
    return file.fileName();
  }
  QByteArray read(const QString& name) const {
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
  }

  QTemporaryDir dir;
  SettingsStore settings;
  TMyConnection session;
  std::unique_ptr<TformSQLEditor> editor;
};

class EditorFileCodecTest : public QObject {
  Q_OBJECT
 private slots:
  void ansiFileInItsCodePageComesBackByteForByte() {
    Fixture f;
    const QString text = QString::fromUtf8("select 'Привет, мир' from dual;\r\n-- ёЁ №\r\n");
    const QByteArray bytes = encoded("windows-1251", text);
    QVERIFY(!bytes.isEmpty());
    QVERIFY(f.codec().load(f.write("cyrillic.sql", bytes), kRussian));
    QCOMPARE(f.memo()->text(), text);
    QCOMPARE(f.memo()->eolMode(), QsciScintilla::EolWindows);
    QVERIFY(!f.memo()->isModified());

    QCOMPARE(f.codec().save(f.path("copy.sql"), kRussian), Saved::Yes);
    QCOMPARE(f.read("copy.sql"), bytes);
    // The file's encoding stays with the memo when the choices change.
    QCOMPARE(f.codec().save(f.path("again.sql"), kAnsi), Saved::Yes);
    QCOMPARE(f.read("again.sql"), bytes);
  }

  void byteOrderMarkDecidesOverTheChoice() {
    const QString text = QString::fromUtf8("select 'Ωμέγα', '😀';\n");
    for (const char* encoding : {"UTF-16LE", "UTF-16BE", "UTF-8"}) {
      Fixture f;
      const QByteArray bytes = encoded(encoding, QChar(0xFEFF) + text);
      QVERIFY(f.codec().load(f.write("marked.sql", bytes), kRussian));
      QCOMPARE(f.memo()->text(), text);
      f.memo()->append("select 2;\n");
      QCOMPARE(f.codec().save(f.path("marked.sql"), kRussian), Saved::Yes);
      QCOMPARE(f.read("marked.sql"), encoded(encoding, QChar(0xFEFF) + text + "select 2;\n"));
    }
  }

  void newFilesTakeTheChosenEncoding() {
    const QString text = QString::fromUtf8("select 'Grüße';\n");
    const struct {
      const char* choice;
      QByteArray bytes;
    } cases[] = {{"Unicode", encoded("UTF-16LE", QChar(0xFEFF) + text)},
                 {"Swapped Unicode", encoded("UTF-16BE", QChar(0xFEFF) + text)},
                 {"UTF-8", text.toUtf8()},
                 {"ANSI", encoded("windows-1252", text)}};
    for (const auto& c : cases) {
      Fixture f;
      f.memo()->setText(text);
      QCOMPARE(f.codec().save(f.path("new.sql"), {"Western", "Default", c.choice}), Saved::Yes);
      QCOMPARE(f.read("new.sql"), c.bytes);
    }
  }

  void lineEndsFollowTheFormat() {
    const QByteArray mixed = "select 1;\r\nselect 2;\nselect 3;\rselect 4;";
    const struct {
      const char* format;
      QByteArray memoText;
      QsciScintilla::EolMode mode;
    } cases[] = {
        {"Default", mixed, QsciScintilla::EolWindows},
        {"Windows (CR/NL)", "select 1;\r\nselect 2;\r\nselect 3;\r\nselect 4;", QsciScintilla::EolWindows},
        {"Unix (CR)", "select 1;\nselect 2;\nselect 3;\nselect 4;", QsciScintilla::EolUnix},
        {"Macintosh (NL)", "select 1;\rselect 2;\rselect 3;\rselect 4;", QsciScintilla::EolMac},
    };
    for (const auto& c : cases) {
      Fixture f;
      const TEditorFileChoices choices{"default", c.format, "ANSI"};
      QVERIFY(f.codec().load(f.write("lines.sql", mixed), choices));
      QCOMPARE(f.memo()->text().toUtf8(), c.memoText);
      QCOMPARE(f.memo()->eolMode(), c.mode);
      QVERIFY(!f.memo()->isModified());
      // A new line typed at the end gets the memo's line end.
      f.memo()->setFocus();
      f.memo()->SendScintilla(QsciScintillaBase::SCI_DOCUMENTEND);
      QTest::keyClick(f.memo(), Qt::Key_Return);
      QCOMPARE(f.codec().save(f.path("lines.sql"), choices), Saved::Yes);
      const QByteArray typed = c.mode == QsciScintilla::EolWindows ? "\r\n"
                               : c.mode == QsciScintilla::EolUnix  ? "\n"
                                                                   : "\r";
      QCOMPARE(f.read("lines.sql"), c.memoText + typed);
    }
    // A fixed format also puts pasted or set text right when it is written.
    Fixture f;
    f.memo()->setText("a\nb\rc");
    QCOMPARE(f.codec().save(f.path("set.sql"), {"default", "Windows (CR/NL)", "UTF-8"}), Saved::Yes);
    QCOMPARE(f.read("set.sql"), QByteArray("a\r\nb\r\nc"));
  }

  void bytesTheEncodingCannotReadAreKept() {
    // Latin-1 bytes are no UTF-8; a UTF-16 file of odd length is no UTF-16.
    const QByteArray latin1 = "select 'caf\xE9', 'na\xEFve' from dual;\n";
    const QByteArray broken16("\xFF\xFEs\0e\0l", 7);
    for (const QByteArray& bytes : {latin1, broken16}) {
      Fixture f;
      QVERIFY(f.codec().load(f.write("odd.sql", bytes), kAnsi));
      QCOMPARE(f.memoBytes(), QString::fromLatin1(bytes).toUtf8());
      QCOMPARE(f.codec().save(f.path("odd.sql"), kAnsi), Saved::Yes);
      QCOMPARE(f.read("odd.sql"), bytes);
    }
  }

  void largeFilesStreamInPiecesThatKeepCharactersWhole() {
    // 11 bytes a line and pieces of 4 MB from the end: the pieces meet inside a character twice
    // and between CR and LF once. A zero byte is text like any other.
    const QByteArray line = QString::fromUtf8("é€😀\r\n").toUtf8();
    QByteArray big(1, '\0');
    while (big.size() < (13 << 20)) big += line;
    Fixture f;
    QVERIFY(f.codec().load(f.write("big.sql", big), kAnsi));
    QVERIFY(f.memoBytes() == big);
    QVERIFY(!f.memo()->isModified() && !f.memo()->isUndoAvailable());
    QCOMPARE(f.memo()->eolMode(), QsciScintilla::EolWindows);
    QCOMPARE(f.memo()->lines(), int(big.size() / line.size()) + 1);
    QVERIFY(f.codec().load(f.write("big.sql", big), {"default", "Unix (CR)", "ANSI"}));
    QVERIFY(f.memoBytes() == QByteArray(big).replace("\r\n", "\n"));

    // One byte that is no UTF-8, in the piece read last: the file is read byte for byte.
    big[1] = 'x';
    QVERIFY(f.codec().load(f.write("big.sql", big), kAnsi));
    QVERIFY(f.memoBytes() == QString::fromLatin1(big).toUtf8());
    QCOMPARE(f.codec().save(f.path("big.sql"), kAnsi), Saved::Yes);
    QVERIFY(f.read("big.sql") == big);
  }

  void textTheEncodingCannotHoldAsksFirst() {
    Fixture f;
    const QByteArray bytes = encoded("windows-1251", QString::fromUtf8("select 'Привет';\n"));
    QVERIFY(f.codec().load(f.write("cyrillic.sql", bytes), kRussian));
    f.memo()->append(QString::fromUtf8("-- 😀 ünïcödé\n"));

    QString question;
    test::whenModal("EncodingQuestion", [&question](QWidget* box) {
      question = qobject_cast<QMessageBox*>(box)->text();
      test::renderPng(box, "editor_encoding_question");
      qobject_cast<QMessageBox*>(box)->button(QMessageBox::Cancel)->click();
    });
    QCOMPARE(f.codec().save(f.path("cyrillic.sql"), kRussian), Saved::Cancelled);
    QVERIFY2(question.contains("windows-1251"), qPrintable(question));
    QCOMPARE(f.read("cyrillic.sql"), bytes);
    QVERIFY(f.memo()->isModified());

    test::whenModal("EncodingQuestion",
                    [](QWidget* box) { box->findChild<QPushButton*>("btnSaveUtf8")->click(); });
    QCOMPARE(f.codec().save(f.path("cyrillic.sql"), kRussian), Saved::Yes);
    QCOMPARE(f.read("cyrillic.sql"), f.memo()->text().toUtf8());
    QVERIFY(!f.memo()->isModified());
    // From now on the file is UTF-8: no more questions.
    f.memo()->append(QString::fromUtf8("-- 🙂\n"));
    QCOMPARE(f.codec().save(f.path("cyrillic.sql"), kRussian), Saved::Yes);
    QCOMPARE(f.read("cyrillic.sql"), f.memo()->text().toUtf8());
  }

  void editorsTakeTheConnectionsChoicesElseTheOptions() {
    const QString text = QString::fromUtf8("select 'Ωμέγα' from dual;\r\n");
    {
      Fixture f;
      f.settings.write(opt::EditorCharset, "Greek");
      QVERIFY(f.editor->loadFile(f.write("greek.sql", encoded("windows-1253", text))));
      QCOMPARE(f.memo()->text(), text);
    }
    // The connection chose the charset only: the format is still the option's.
    Fixture f([] { return TEditorFileChoices{"Russian", "", ""}; });
    f.settings.write(opt::EditorCharset, "Greek");
    f.settings.write(opt::EditorFormat, "Unix (CR)");
    const QString cyrillic = QString::fromUtf8("select 'Привет';\r\nselect 2;\r\n");
    QVERIFY(f.editor->loadFile(f.write("cyrillic.sql", encoded("windows-1251", cyrillic))));
    QCOMPARE(f.memo()->text(), QString::fromUtf8("select 'Привет';\nselect 2;\n"));
    QCOMPARE(f.editor->fileName(), QFileInfo(f.path("cyrillic.sql")).absoluteFilePath());

    f.memo()->append(QString::fromUtf8("-- 😀\n"));
    test::whenModal("EncodingQuestion", [](QWidget* box) {
      qobject_cast<QMessageBox*>(box)->button(QMessageBox::Cancel)->click();
    });
    QVERIFY(!f.editor->saveToFile(f.path("cyrillic.sql")));
    QCOMPARE(f.read("cyrillic.sql"), encoded("windows-1251", cyrillic));
  }

  void unreadableOrUnwritableFilesFail() {
    Fixture f;
    f.memo()->setText("keep me");
    QVERIFY(!f.codec().load(f.path("missing.sql"), kAnsi));
    QCOMPARE(f.memo()->text(), QString("keep me"));
    QCOMPARE(f.codec().save(f.path("no/such/folder/x.sql"), kAnsi), Saved::Failed);
  }
};

}  // namespace

LOMARIN_UI_TEST(EditorFileCodecTest)
#include "editor_file_codec_test.moc"
