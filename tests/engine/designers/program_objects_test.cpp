// The statements of the trigger, view, library-function and event dialogs and the routine editor's drops.
#include <gtest/gtest.h>

#include "engine/designers/event_manager.h"
#include "engine/designers/routine_texts.h"
#include "engine/designers/trigger_manager.h"
#include "engine/designers/view_udf.h"

namespace lomarin::designers {
namespace {

TTriggerState trigger() { return {"shop", "orders", "stamp", "BEFORE", "INSERT", "SET NEW.at = NOW()"}; }

TEST(TriggerManager, CreateQuotesOnlyTheDatabaseAndBreaksLinesWhereTheDialogDoes) {
  EXPECT_EQ(BuildCreateTriggerSql(trigger()),
            "CREATE TRIGGER `shop`.stamp BEFORE INSERT\n ON orders\n FOR EACH ROW \nSET NEW.at = NOW()");
  TTriggerState odd = trigger();
  odd.Database = "my`db";
  EXPECT_EQ(BuildCreateTriggerSql(odd).substr(0, 30), "CREATE TRIGGER `my``db`.stamp ");
  // A table the bare name would cut or misread.
  odd.Table = "order-lines";
  EXPECT_NE(BuildCreateTriggerSql(odd).find("\n ON `order-lines`\n"), std::string::npos);
  odd.Table = "order";
  EXPECT_NE(BuildCreateTriggerSql(odd).find("\n ON `order`\n"), std::string::npos);
}

TEST(TriggerManager, ChecksComeInTheDialogsOrder) {
  TTriggerState state;
  EXPECT_EQ(CheckCreateTrigger(state), "Missing name.");
  state.Name = "t";
  EXPECT_EQ(CheckCreateTrigger(state), "Missing trigger time.");
  state.Time = "AFTER";
  EXPECT_EQ(CheckCreateTrigger(state), "Missing trigger event.");
  state.Event = "DELETE";
  EXPECT_EQ(CheckCreateTrigger(state), "Missing trigger source.");
  state.Body = "SET @x = 1";
  EXPECT_EQ(CheckCreateTrigger(state), "");
}

TEST(TriggerManager, DropQuotesTheNameTooOnlyInAHyphenatedDatabase) {
  EXPECT_EQ(BuildDropTriggerSql("shop", "stamp"), "drop trigger `shop`.stamp");
  EXPECT_EQ(BuildDropTriggerSql("my-shop", "stamp"), "drop trigger `my-shop`.`stamp`");
  EXPECT_EQ(TriggerEditCaption("shop", "stamp"), "Trigger [shop.stamp]");
  EXPECT_EQ(TriggerTablesSql("my-shop"), "show table status  from `my-shop`");
}

TEST(ViewAndUdf, ViewHeadThenTheSelectOnItsOwnLine) {
  EXPECT_EQ(BuildCreateViewSql("v", "select 1"), "CREATE VIEW v AS \nselect 1");
}

TEST(ViewAndUdf, FunctionHeadsAndTheDropOfTheReplacedOne) {
  TUdfState udf;
  EXPECT_EQ(CheckUdf(udf), "Missing name.");
  udf.Name = "metaphon";
  EXPECT_EQ(CheckUdf(udf), "Missing library.");
  udf.Library = "udf_example.so";
  EXPECT_EQ(CheckUdf(udf), "");
  EXPECT_EQ(BuildCreateUdfSql(udf), "CREATE FUNCTION `metaphon` RETURNS String SONAME \"udf_example.so\"");
  EXPECT_EQ(BuildDropUdfSql(udf), "");
  udf.Aggregate = true;
  udf.ReturnType = "Real";
  udf.ReplacedName = "avgcost";
  EXPECT_EQ(BuildCreateUdfSql(udf),
            "CREATE FUNCTION AGGREGATE `metaphon` RETURNS Real SONAME \"udf_example.so\"");
  EXPECT_EQ(BuildDropUdfSql(udf), "DROP FUNCTION avgcost");
}

TEST(EventManager, ALiteralTimeIsQuotedAnExpressionIsNot) {
  EXPECT_EQ(ScheduleTime("2026-11-23 13:05:00"), "'2026-11-23 13:05:00'");
  EXPECT_EQ(ScheduleTime("2026-11-23"), "'2026-11-23'");
  EXPECT_EQ(ScheduleTime("2026-11-23 13:05:00.250"), "'2026-11-23 13:05:00.250'");
  EXPECT_EQ(ScheduleTime("CURRENT_TIMESTAMP"), "CURRENT_TIMESTAMP");
  EXPECT_EQ(ScheduleTime("NOW() + INTERVAL 1 DAY"), "NOW() + INTERVAL 1 DAY");
  EXPECT_EQ(ScheduleTime("'2026-11-23'"), "'2026-11-23'");
  // A digit first is not enough: a literal never holds a quote or a letter.
  EXPECT_EQ(ScheduleTime("2026-11-23' OR '"), "2026-11-23' OR '");
  EXPECT_EQ(ScheduleTime(""), "");
  // An interval value: a whole number bare, a compound one quoted, a quoted one (as the server
  // shows it) as it stands.
  EXPECT_EQ(IntervalValue("15"), "15");
  EXPECT_EQ(IntervalValue("1:30"), "'1:30'");
  EXPECT_EQ(IntervalValue("1 2"), "'1 2'");
  EXPECT_EQ(IntervalValue("'1:30'"), "'1:30'");
}

// Marks what went through the escaper.
std::string marked(std::string_view text) { return "<" + std::string(text) + ">"; }

TEST(EventManager, OneTimeEventWithAnAddedInterval) {
  TEventState event;
  event.Name = "purge";
  event.At = "2026-11-23 13:05:00";
  event.AtInterval = "2";
  event.AtIntervalUnit = "HOUR";
  event.Body = "DELETE FROM log";
  EXPECT_EQ(BuildEventSql(event, marked),
            "CREATE EVENT `purge`\n"
            "ON SCHEDULE AT '2026-11-23 13:05:00' + INTERVAL 2 HOUR\n"
            "ON COMPLETION NOT PRESERVE\n"
            "ENABLE\n"
            "COMMENT '<>' DO\n"
            "DELETE FROM log");
  event.AtInterval.clear();
  event.At = "CURRENT_TIMESTAMP";
  event.NotPreserve = false;
  event.Enabled = false;
  event.Comment = "once";
  EXPECT_EQ(BuildEventSql(event, marked),
            "CREATE EVENT `purge`\n"
            "ON SCHEDULE AT CURRENT_TIMESTAMP\n"
            "ON COMPLETION PRESERVE\n"
            "DISABLE\n"
            "COMMENT '<once>' DO\n"
            "DELETE FROM log");
}

TEST(EventManager, RecurringEventWithStartAndEndAndItsAlterForm) {
  TEventState event;
  event.Name = "tick";
  event.Recurring = true;
  event.EveryValue = "5";
  event.EveryUnit = "MINUTE";
  event.Body = "INSERT INTO beats VALUES (NOW())";
  EXPECT_EQ(BuildEventSql(event, marked),
            "CREATE EVENT `tick`\n"
            "ON SCHEDULE EVERY 5 MINUTE\n"
            "ON COMPLETION NOT PRESERVE\n"
            "ENABLE\n"
            "COMMENT '<>' DO\n"
            "INSERT INTO beats VALUES (NOW())");
  event.HasStart = event.HasEnd = true;
  event.Starts = "CURRENT_TIMESTAMP";
  event.Ends = "2030-01-01 00:00:00";
  event.Alter = true;
  EXPECT_EQ(BuildEventSql(event, marked),
            "ALTER EVENT `tick`\n"
            "ON SCHEDULE EVERY 5 MINUTE STARTS CURRENT_TIMESTAMP ENDS '2030-01-01 00:00:00'\n"
            "ON COMPLETION NOT PRESERVE\n"
            "ENABLE\n"
            "COMMENT '<>' DO\n"
            "INSERT INTO beats VALUES (NOW())");
  // A name changed in alter mode: the event is found under its old name and renamed.
  event.AlterName = "tock";
  EXPECT_EQ(BuildEventSql(event, marked).substr(0, 19), "ALTER EVENT `tock`\n");
  EXPECT_NE(BuildEventSql(event, marked).find("\nON COMPLETION NOT PRESERVE\nRENAME TO `tick`\nENABLE\n"),
            std::string::npos);
  EXPECT_EQ(EventEditCaption("shop", "tick"), "EVENT [shop.tick]");
}

TEST(EventManager, ChecksComeInTheDialogsOrder) {
  TEventState event;
  EXPECT_EQ(CheckEvent(event), "Missing name.");
  event.Name = "e";
  EXPECT_EQ(CheckEvent(event), "Missing event source.");
  event.Body = "DO 1";
  EXPECT_EQ(CheckEvent(event), "");
}

TEST(RoutineDrops, ChosenByKindWithTheNameQuotedOnlyForAHyphen) {
  EXPECT_EQ(BuildRoutineDropSql("Procedures", "my-proc"), "drop procedure if exists `my-proc`");
  EXPECT_EQ(BuildRoutineDropSql("PROCEDURE", "p"), "drop procedure if exists p");
  EXPECT_EQ(BuildRoutineDropSql("procedure", "p"), "drop procedure if exists p");
  EXPECT_EQ(BuildRoutineDropSql("Functions", "f"), "drop function if exists f");
  EXPECT_EQ(BuildRoutineDropSql("FUNCTION", "my-f"), "drop function if exists `my-f`");
  EXPECT_EQ(BuildRoutineDropSql("Triggers", "t"), "drop trigger t");
  // The caller's kind word for triggers never drops, nor does an event.
  EXPECT_EQ(BuildRoutineDropSql("trigger", "t"), "");
  EXPECT_EQ(BuildRoutineDropSql("Events", "e"), "");
  EXPECT_EQ(BuildRoutineDropSql("", "e"), "");
}

}  // namespace
}  // namespace lomarin::designers
