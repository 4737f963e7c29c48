#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

namespace lomarin::test {

// QtTest runs one object per call; every test class adds itself here and ui_tests runs them all.
using UiTestFactory = std::function<std::unique_ptr<QObject>()>;
std::vector<UiTestFactory>& uiTests();

template <class T>
struct RegisterUiTest {
  RegisterUiTest() {
    uiTests().push_back([] { return std::make_unique<T>(); });
  }
};

}  // namespace lomarin::test

#define LOMARIN_UI_TEST(Class) static lomarin::test::RegisterUiTest<Class> registered##Class;
