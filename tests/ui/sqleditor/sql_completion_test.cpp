#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QTest>
#include <filesystem>
#include <set>

#include "../app/shell_test_support.h"
#include "engine/app/settings_store.h"
#include "engine/connect/sql_monitor.h"
#include "engine/sqleditor/db_object_names.h"
#include "sqleditor_test_support.h"
#include "test_server.h"
#include "ui/sqleditor/completion_popup.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

// An editor on the demo database whose lists come from the server, with what it sent.
struct CompletionFixture {
  CompletionFixture() : session(test::connect("lomarin_demo")) {
    test::recordStatements(monitor, sent);
    session->setMonitor(&monitor);
    TSqlEditorContext context(*session, *fresh.store);
    context.DatabaseObjects = [this] {
      std::vector<TDbObjectItem> items;
      for (const TDbObjectName& object : names.objects(*session))
        items.push_back({QString::fromStdString(object.Name), object.Kind});
      return items;
    };
    context.ShippedFolder = LOMARIN_SHIPPED_DIR;
    editor = std::make_unique<TformSQLEditor>(context);
    editor->setAttribute(Qt::WA_DeleteOnClose, false);
    editor->resize(900, 640);
    editor->show();
    QVERIFY(QTest::qWaitForWindowActive(editor.get()));
    memo()->setFocus();
  }

  QsciScintilla* memo() const { return editor->frame()->memo(); }
  // Keywords and objects; "AutoCompletePopup2" for the columns.
  TCompletionPopup* popup(const char* name = "AutoCompletePopup1") const {
    return editor->findChild<TCompletionPopup*>(name);
  }
  // The text, the caret at its end, and the keyword list opened.
  void complete(const QString& text) {
    memo()->setText(text);
    memo()->setCursorPosition(0, static_cast<int>(text.size()));
    sent.clear();
    editor->frame()->action("actComplete")->trigger();
  }
  QListWidgetItem* row(const QString& text) const { return popup()->itemOfText(text); }
  void click(const QString& text, Qt::KeyboardModifiers modifiers) {
    QListWidgetItem* item = row(text);
    QVERIFY2(item, qPrintable(text));
    popup()->scrollToItem(item);
    QTest::mouseClick(popup()->viewport(), Qt::LeftButton, modifiers, popup()->visualItemRect(item).center());
  }

  test::FreshSettings fresh;
  std::unique_ptr<TMyConnection> session;
  TMySQLMonitor monitor;
  TDbNameLists names;
  QStringList sent;
  std::unique_ptr<TformSQLEditor> editor;
};

const QStringList kDemoObjects = {"categories",
                                  "customers",
                                  "order_items",
                                  "orders",
                                  "price_history",
                                  "product_media",
                                  "products",
                                  "raw_import",
                                  "v_customer_revenue",
                                  "v_order_totals",
                                  "get_customer_orders",
                                  "order_total",
                                  "trg_products_price_history",
                                  "ev_purge_price_history"};

QImage iconImage(const QListWidgetItem* item) {
  return item ? item->icon().pixmap(14, 14).toImage() : QImage();
}

class SqlCompletionTest : public QObject {
  Q_OBJECT
 private slots:
  void keywordsThenTheDatabaseObjectsByKind() {
    CompletionFixture f;
    f.complete("");
    QVERIFY(f.popup()->isVisible());
    QVERIFY(f.memo()->hasFocus());
    const QStringList shown = f.popup()->shownTexts();
    QVERIFY(shown.size() > 500);
    QCOMPARE(shown.first(), QString("ABS"));
    QCOMPARE(shown.mid(shown.size() - kDemoObjects.size()), kDemoObjects);
    QCOMPARE(f.sent.size(), 5);

    // One image per kind: tables share theirs, every other kind and the keywords have their own.
    std::vector<QImage> kinds = {iconImage(f.row("ABS")),
                                 iconImage(f.row("customers")),
                                 iconImage(f.row("v_order_totals")),
                                 iconImage(f.row("get_customer_orders")),
                                 iconImage(f.row("order_total")),
                                 iconImage(f.row("trg_products_price_history")),
                                 iconImage(f.row("ev_purge_price_history"))};
    QCOMPARE(iconImage(f.row("raw_import")), kinds[1]);
    QCOMPARE(iconImage(f.row("v_customer_revenue")), kinds[2]);
    for (size_t i = 0; i < kinds.size(); ++i)
      for (size_t j = i + 1; j < kinds.size(); ++j) QVERIFY(kinds[i] != kinds[j]);

    f.complete("select * from ord");
    f.popup()->scrollToItem(f.row("orders"));
    f.popup()->setCurrentItem(f.row("orders"));
    lomarin::test::render(*f.editor, "sql_completion_popup");
  }

  void typingNarrowsUntilTheCaretLeavesTheWord() {
    CompletionFixture f;
    f.complete("select * from ");
    const int all = static_cast<int>(f.popup()->shownTexts().size());
    QTest::keyClicks(f.memo(), "oRd");
    QTRY_VERIFY(f.popup()->shownTexts().size() < 20);
    const QStringList shown = f.popup()->shownTexts();
    for (const QString& text : shown) QVERIFY2(text.startsWith("ord", Qt::CaseInsensitive), qPrintable(text));
    for (const char* expected : {"ORDER", "order_items", "orders", "order_total"})
      QVERIFY2(shown.contains(expected), expected);
    QTest::keyClicks(f.memo(), "ers");
    QTRY_COMPARE(f.popup()->shownTexts(), QStringList{"orders"});
    // Nothing fits: the list goes; back to the word start, everything fits again.
    QTest::keyClick(f.memo(), Qt::Key_X);
    QTRY_VERIFY(f.popup()->isHidden());
    f.complete("select * from ");
    QTest::keyClicks(f.memo(), "ab");
    QTRY_VERIFY(f.popup()->shownTexts().size() < all);
    QTest::keyClick(f.memo(), Qt::Key_Backspace);
    QTest::keyClick(f.memo(), Qt::Key_Backspace);
    QTRY_COMPARE(f.popup()->shownTexts().size(), all);
    QTest::keyClick(f.memo(), Qt::Key_Backspace);
    QTRY_VERIFY(f.popup()->isHidden());
    QCOMPARE(f.memo()->text(), QString("select * from"));
  }

  void severalItemsAreInsertedInListOrder() {
    CompletionFixture f;
    // Clicked in the other order, inserted in list order, replacing the typed word.
    f.complete("select * from o");
    f.click("orders", Qt::NoModifier);
    f.click("order_items", Qt::ControlModifier);
    QVERIFY(f.memo()->hasFocus());
    QTest::keyClick(f.memo(), Qt::Key_Return);
    QVERIFY(f.popup()->isHidden());
    QCOMPARE(f.memo()->text(), QString("select * from order_items, orders"));

    f.complete("select * from ");
    f.click("customers", Qt::NoModifier);
    f.click("orders", Qt::ControlModifier);
    QTest::keyClick(f.memo(), Qt::Key_Return);
    QCOMPARE(f.memo()->text(), QString("select * from customers, orders"));

    // Shift+Down widens the choice; Tab inserts too.
    f.complete("select * from v_");
    QCOMPARE(f.popup()->shownTexts(), (QStringList{"v_customer_revenue", "v_order_totals"}));
    QTest::keyClick(f.memo(), Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(f.memo(), Qt::Key_Tab);
    QCOMPARE(f.memo()->text(), QString("select * from v_customer_revenue, v_order_totals"));

    // Escape closes and changes nothing; the keys are the memo's again.
    f.complete("call get_c");
    QTest::keyClick(f.memo(), Qt::Key_Escape);
    QVERIFY(f.popup()->isHidden());
    QCOMPARE(f.memo()->text(), QString("call get_c"));
    QTest::keyClick(f.memo(), Qt::Key_Return);
    QCOMPARE(f.memo()->text(), QString("call get_c\n"));
  }

  void columnsAfterAnAliasChosenTogether() {
    CompletionFixture f;
    f.names.objects(*f.session);
    f.memo()->setText("select  from orders o");
    f.memo()->setCursorPosition(0, 7);
    f.sent.clear();
    QTest::keyClicks(f.memo(), "o.");
    QCOMPARE(f.sent, QStringList{"DESC orders"});
    QVERIFY(f.popup("AutoCompletePopup2")->isVisible());
    QCOMPARE(f.popup("AutoCompletePopup2")->item(0)->text(), QString("<ALL>"));
    QCOMPARE(f.popup("AutoCompletePopup2")->shownTexts().mid(0, 3),
             (QStringList{"*", "order_id", "customer_id"}));
    QCOMPARE(f.popup("AutoCompletePopup2")->item(1)->text(), QString("int(10) unsigned  order_id"));
    QTest::keyClick(f.memo(), Qt::Key_Down);
    QTest::keyClick(f.memo(), Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(f.memo(), Qt::Key_Return);
    QCOMPARE(f.memo()->text(), QString("select o.order_id, customer_id from orders o"));

    // Typing after the point narrows the columns.
    f.memo()->setText("select  from orders o");
    f.memo()->setCursorPosition(0, 7);
    QTest::keyClicks(f.memo(), "o.SH");
    QTRY_COMPARE(f.popup("AutoCompletePopup2")->shownTexts(), QStringList{"shipping_city"});
    QTest::keyClick(f.memo(), Qt::Key_Return);
    QCOMPARE(f.memo()->text(), QString("select o.shipping_city from orders o"));
  }
};

}  // namespace

LOMARIN_UI_TEST(SqlCompletionTest)
#include "sql_completion_test.moc"
