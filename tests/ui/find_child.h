#pragma once

#include <QWidget>

namespace lomarin::test {

// The named child widget; a missing one stops the run with its name.
template <class T>
T* child(QWidget* parent, const char* name) {
  T* widget = parent->findChild<T*>(name);
  if (!widget) qFatal("no widget %s", name);
  return widget;
}

template <class T>
T* child(QWidget& parent, const char* name) {
  return child<T>(&parent, name);
}

}  // namespace lomarin::test
