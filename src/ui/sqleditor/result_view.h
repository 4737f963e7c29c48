#pragma once

#include <memory>

class QTableView;
class QWidget;

namespace lomarin {
struct TResultSet;
}

namespace lomarin::ui {

// A read-only grid over one fetched result.
QTableView* createResultView(std::shared_ptr<const TResultSet> result, QWidget* parent);

}  // namespace lomarin::ui
