#include <QApplication>
#include <QTest>

#include "ui_test_registry.h"

namespace lomarin::test {
std::vector<UiTestFactory>& uiTests() {
  static std::vector<UiTestFactory> tests;
  return tests;
}
}  // namespace lomarin::test

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  app.setApplicationName("Lomarin for MySQL");
  // One class only, e.g. one that needs a service the whole run cannot have.
  const QByteArray only = qgetenv("LOMARIN_UI_TEST_CLASS");
  int failures = 0;
  for (const auto& make : lomarin::test::uiTests()) {
    auto test = make();
    if (!only.isEmpty() && only != test->metaObject()->className()) continue;
    failures += QTest::qExec(test.get(), argc, argv);
  }
  return failures == 0 ? 0 : 1;
}
