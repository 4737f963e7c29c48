#include "engine/sqleditor/run_current.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace lomarin {

namespace {

bool isBlankLine(const std::vector<std::string>& lines, int index) {
  if (index < 0 || index >= static_cast<int>(lines.size())) return true;
  for (unsigned char c : lines[static_cast<size_t>(index)])
    if (!std::isspace(c)) return false;
  return true;
}

}  // namespace

std::string CollectStatementBlock(const std::vector<std::string>& lines, int start) {
  std::string text;
  for (int i = start < 0 ? 0 : start; !isBlankLine(lines, i); ++i) {
    text += "\n\r";
    text += lines[static_cast<size_t>(i)];
  }
  return text;
}

TRunCurrentPlan PlanRunCurrent(const std::vector<std::string>& lines, int caretLine) {
  const int r = caretLine - 1;
  TRunCurrentPlan plan;
  if (r == 0) {
    plan.StartLine = 0;
    plan.CaretLine = r;
    plan.MarkerY = r + 1;
  } else if (!isBlankLine(lines, r - 1)) {
    int s = r;
    while (!isBlankLine(lines, s - 1)) --s;
    plan.StartLine = s;
    plan.CaretLine = s + 1;
    plan.MarkerY = s * 15;
  } else {
    // Deliberate: when line R holds text, the classic loop here waits forever for it to turn
    // blank. The block that starts at line R is run instead, so the command always returns.
    const int s = isBlankLine(lines, r) ? r + 1 : r;
    plan.StartLine = s;
    plan.CaretLine = s + 1;
    plan.MarkerY = s * 15;
  }
  plan.Text = CollectStatementBlock(lines, plan.StartLine);
  return plan;
}

std::optional<std::string> TreeNodeStatement(std::string_view caption, int start, int end, std::string_view text) {
  static constexpr std::array<std::string_view, 6> kKinds = {"select", "delete", "update", "drop", "create", "insert"};
  std::string lower(caption);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
  if (std::find(kKinds.begin(), kKinds.end(), lower) == kKinds.end()) return std::nullopt;
  if (start < 0 || start >= end || static_cast<size_t>(start) >= text.size()) return std::nullopt;
  return std::string(text.substr(static_cast<size_t>(start), static_cast<size_t>(end - start)));
}

}  // namespace lomarin
