#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

// The lines from `start` up to (not including) the first blank one, each preceded by "\n\r".
std::string CollectStatementBlock(const std::vector<std::string>& lines, int start);

// What "run current statement" does for the caret on line caretLine.
struct TRunCurrentPlan {
  int StartLine = 0;
  std::string Text;   // to run
  int CaretLine = 0;  // where the caret goes afterwards (column 0)
  int MarkerY = 0;    // where the "executed" marker is drawn (x = 10)
};
TRunCurrentPlan PlanRunCurrent(const std::vector<std::string>& lines, int caretLine);

// What running a node of the editor's statement tree sends: for a node captioned "select",
// "delete", "update", "drop", "create" or "insert" (any letter case) whose text range has
// 0 <= start < end, the text from offset start, end - start long. Other nodes run nothing.
std::optional<std::string> TreeNodeStatement(std::string_view caption, int start, int end, std::string_view text);

}  // namespace lomarin
