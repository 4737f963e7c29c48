#include "dump_fixture.h"

#include <cstdlib>
#include <ctime>

#include "engine/connect/my_query.h"

namespace lomarin::test {

DumpFixture::DumpFixture(const std::string& db, const std::vector<std::string>& setup) : database(db) {
  setenv("TZ", "UTC", 1);
  tzset();
  sideExec("DROP DATABASE IF EXISTS `" + db + "`");
  sideExec("CREATE DATABASE `" + db + "`");
  session = connect(db);
  for (const auto& sql : setup) {
    TMyQuery query(*session);
    query.SQL = sql;
    query.Execute();
  }
  dump.Connection = session.get();
  dump.Clock = [] { return std::chrono::system_clock::from_time_t(1714979289); };  // 2024-05-06 07:08:09
}

std::string DumpFixture::script() {
  dump.Backup();
  return dump.Text();
}

std::string DumpFixture::header() const {
  return "-- Lomarin data access version: 5.90.0.60\r\n"
         "-- MySQL server version: " +
         session->ServerVersion() +
         "\r\n"
         "-- MySQL client version: " +
         session->ClientVersion() +
         "\r\n"
         "-- Script date 2024-05-06 07:08:09\r\n"
         "-- ---------------------------------------------------------------------- \r\n"
         "-- Server: " +
         session->Settings.Server +
         "\r\n"
         "-- Database: " +
         database +
         "\r\n"
         "\r\n";
}

std::string DumpFixture::opening(bool foreignKeys) {
  return std::string(
             "/*!40101 SET @OLD_CHARACTER_SET_CLIENT=@@CHARACTER_SET_CLIENT */;\r\n"
             "/*!40101 SET @OLD_CHARACTER_SET_RESULTS=@@CHARACTER_SET_RESULTS */;\r\n"
             "/*!40101 SET @OLD_COLLATION_CONNECTION=@@COLLATION_CONNECTION */;\r\n"
             "/*!40101 SET NAMES utf8mb4 */;\r\n") +
         (foreignKeys
              ? "/*!40014 SET @OLD_FOREIGN_KEY_CHECKS=@@FOREIGN_KEY_CHECKS, FOREIGN_KEY_CHECKS=0 */;\r\n"
              : "") +
         "/*!40103 SET @OLD_TIME_ZONE=@@TIME_ZONE, TIME_ZONE='+00:00' */;\r\n"
         "/*!40101 SET @OLD_SQL_MODE=@@SQL_MODE, SQL_MODE='NO_AUTO_VALUE_ON_ZERO' */;\r\n"
         "\r\n";
}

std::string DumpFixture::closing(bool foreignKeys) {
  return std::string(foreignKeys ? "/*!40014 SET FOREIGN_KEY_CHECKS=@OLD_FOREIGN_KEY_CHECKS */;\r\n" : "") +
         "/*!40101 SET CHARACTER_SET_CLIENT=@OLD_CHARACTER_SET_CLIENT */;\r\n"
         "/*!40101 SET CHARACTER_SET_RESULTS=@OLD_CHARACTER_SET_RESULTS */;\r\n"
         "/*!40101 SET COLLATION_CONNECTION=@OLD_COLLATION_CONNECTION */;\r\n"
         "/*!40101 SET SQL_MODE=@OLD_SQL_MODE */;\r\n"
         "/*!40103 SET TIME_ZONE=@OLD_TIME_ZONE */;\r\n";
}

}  // namespace lomarin::test
