#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <algorithm>
#include <memory>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "render_path.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/memo_commands.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

QStringList visibleTexts(const QMenu* menu) {
  QStringList texts;
  for (const QAction* action : menu->actions())
    if (action->isVisible() && !action->isSeparator()) texts << action->text();
  return texts;
}

QMenu* subMenu(const QMenu* menu, const QString& title) {
  for (const QAction* action : menu->actions())
    if (action->menu() && action->text() == title) return action->menu();
  qFatal("no submenu %s", qPrintable(title));
}

// Whether the bookmark gutter shows a painted image on the line (the images are dark blue).
bool gutterImageOn(QsciScintilla* memo, int line) {
  const QImage shot = memo->grab().toImage();
  const int top = static_cast<int>(memo->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0,
                                                       memo->positionFromLineIndex(line, 0)));
  const int height = memo->textHeight(line);
  const int left = memo->marginWidth(0);
  for (int y = top; y < top + height; ++y)
    for (int x = left; x < left + memo->marginWidth(1); ++x) {
      const QColor c = shot.pixelColor(x, y);
      if (c.blue() > 150 && c.red() < 60) return true;
    }
  return false;
}

// Whether a completion list is up: QScintilla's own or a list widget of ours.
bool completionShown(TframeecSQL* frame) {
  if (frame->memo()->isListActive()) return true;
  QList<QListWidget*> lists = frame->findChildren<QListWidget*>();
  for (QWidget* top : QApplication::topLevelWidgets())
    if (auto* list = qobject_cast<QListWidget*>(top)) lists << list;
  return std::any_of(lists.begin(), lists.end(), [](QListWidget* list) { return list->isVisible(); });
}

// One frame in a shown window, with settings in a temporary folder.
struct FrameFixture {
  explicit FrameFixture(bool readOnly)
      : settings(std::make_unique<SettingsStore>(folder.filePath("settings.db").toStdString())) {
    frame = readOnly ? TframeecSQL::createReadOnly(*settings, &window)
                     : new TframeecSQL(*settings, {}, {}, &window);
    frame->resize(640, 300);
    window.resize(640, 300);
    window.show();
    memo()->setText("select *\nfrom customers c\nwhere c.id = 1;\n\nselect 2;");
  }
  QsciScintilla* memo() const { return frame->memo(); }
  TMemoCommands* commands() const { return frame->commands(); }

  QTemporaryDir folder;
  std::unique_ptr<SettingsStore> settings;
  QWidget window;
  TframeecSQL* frame;
};

class SqlFrameTest : public QObject {
  Q_OBJECT
 private slots:
  void readOnlyFrameShowsButNeverChangesTheText() {
    FrameFixture f(true);
    const QString text = f.memo()->text();
    QVERIFY(f.frame->isReadOnly());
    QVERIFY(f.memo()->lexer() != nullptr);
    f.memo()->setCursorPosition(1, 0);
    QTest::keyClicks(f.memo(), "drop table x;");
    QTest::keyClick(f.memo(), Qt::Key_Return);
    QTest::keyClick(f.memo(), Qt::Key_Delete);
    QApplication::clipboard()->setText("junk");
    QTest::keyClick(f.memo(), Qt::Key_V, Qt::ControlModifier);
    f.memo()->selectAll();
    f.frame->action("actUpperCase")->trigger();  // hidden, and off even when called
    QCOMPARE(f.memo()->text(), text);

    // No completion list comes up.
    f.memo()->setCursorPosition(1, 7);
    QTest::keyClick(f.memo(), Qt::Key_Space, Qt::ControlModifier);
    QVERIFY(!completionShown(f.frame));
    QVERIFY(!f.frame->action("actComplete")->isEnabled());

    // Copying still works.
    f.memo()->setSelection(1, 0, 1, 4);
    QTest::keyClick(f.memo(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), QString("from"));

    // The menu keeps what only reads: bookmarks, find, view switches, the export.
    const QStringList menu = visibleTexts(f.commands()->contextMenu());
    for (const char* kept :
         {"Toggle bookmark", "Goto bookmark", "&Find", "Incremental search", "Word wrap", "Export to &HTML"})
      QVERIFY2(menu.contains(kept), kept);
    for (const char* gone : {"&Undo", "&Redo", "&Replace ", "&Indent", "Comment Lines",
                             "Selection upper case", "Sort lines ascending", "Play macro"})
      QVERIFY2(!menu.contains(gone), gone);
  }

  void readOnlyFrameFindsWithoutTheTreeOrTheReplaceRow() {
    FrameFixture f(true);
    // The view hides its tree without touching the editor's choice.
    QVERIFY(f.settings->read(opt::SqlTreeEnable));
    QVERIFY(!f.frame->treeVisible());
    QVERIFY(f.memo()->isVisible());

    f.memo()->setCursorPosition(0, 0);
    f.frame->action("actFind")->trigger();
    auto* find = f.frame->findChild<QLineEdit*>("edtFind");
    QVERIFY(find->isVisible());
    QVERIFY(!f.frame->findChild<QLineEdit*>("edtReplace")->isVisible());
    QTest::keyClicks(find, "customers");
    QCOMPARE(f.memo()->selectedText(), QString("customers"));
  }

  void editableFrameKeepsItsEditingCommands() {
    FrameFixture f(false);
    QVERIFY(!f.frame->isReadOnly());
    QVERIFY(f.frame->action("actComplete")->isEnabled());
    QVERIFY(visibleTexts(f.commands()->contextMenu()).contains("Comment Lines"));
    f.memo()->setCursorPosition(0, 0);
    QTest::keyClicks(f.memo(), "x");
    QVERIFY(f.memo()->text().startsWith("xselect"));
  }

  void bookmarkThreeIsSetMovedGoneToAndCleared() {
    FrameFixture f(true);
    QAction* set = f.frame->action("actSetBookmark3");
    QAction* clear = f.frame->action("actClearBookmark3");
    QCOMPARE(set->text(), QString("Set Bookmark &3"));
    QCOMPARE(clear->text(), QString("Clear Bookmark &3"));
    QCOMPARE(set->toolTip(), QString("Bookmark 3"));
    QCOMPARE(clear->toolTip(), QString("Bookmark 3"));
    QVERIFY(!set->icon().isNull());
    QCOMPARE(f.frame->action("actSetBookmark9")->text(), QString("Set Bookmark &9"));

    f.memo()->setCursorPosition(1, 2);
    set->trigger();
    QCOMPARE(f.commands()->bookmarkLine(3), 1);
    QVERIFY(gutterImageOn(f.memo(), 1));
    QVERIFY(!gutterImageOn(f.memo(), 2));
    QWidget* render = f.frame;
    QVERIFY(render->grab().save(lomarin::test::renderPath("sql_frame_bookmark.png")));

    // Setting it again elsewhere moves it; a set never toggles it off.
    f.memo()->setCursorPosition(2, 0);
    set->trigger();
    set->trigger();
    QCOMPARE(f.commands()->bookmarkLine(3), 2);
    QVERIFY(!gutterImageOn(f.memo(), 1));
    QVERIFY(gutterImageOn(f.memo(), 2));

    // The popup's lists show which bookmarks are set, and go to them.
    QMenu* popup = f.commands()->contextMenu();
    QMetaObject::invokeMethod(popup, "aboutToShow");
    QMenu* toggle = subMenu(popup, "Toggle bookmark");
    QMenu* go = subMenu(popup, "Goto bookmark");
    QCOMPARE(go->actions().size(), 10);
    QCOMPARE(go->actions().at(3)->text(), QString("Bookmark 3"));
    QVERIFY(toggle->actions().at(3)->isChecked());
    QVERIFY(!toggle->actions().at(4)->isChecked());
    QVERIFY(go->actions().at(3)->isEnabled());
    QVERIFY(!go->actions().at(4)->isEnabled());
    f.memo()->setCursorPosition(4, 3);
    go->actions().at(3)->trigger();
    int line = -1, index = -1;
    f.memo()->getCursorPosition(&line, &index);
    QCOMPARE(line, 2);
    QCOMPARE(index, 0);

    // Bookmarks of other numbers stay where they are.
    f.memo()->setCursorPosition(4, 0);
    f.frame->action("actSetBookmark4")->trigger();
    clear->trigger();
    QCOMPARE(f.commands()->bookmarkLine(3), -1);
    QCOMPARE(f.commands()->bookmarkLine(4), 4);
    QVERIFY(!gutterImageOn(f.memo(), 2));
    clear->trigger();  // clearing an unset bookmark is harmless
    QCOMPARE(f.commands()->bookmarkLine(3), -1);
    go->actions().at(3)->trigger();
    f.memo()->getCursorPosition(&line, &index);
    QCOMPARE(line, 4);
  }
};

}  // namespace

LOMARIN_UI_TEST(SqlFrameTest)
#include "sql_frame_test.moc"
