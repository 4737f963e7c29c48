#pragma once

#include <cstddef>
#include <string_view>

namespace lomarin {

// Length of the head ("INSERT INTO `t` VALUES ", or with a column list) of a statement that is
// exactly that head followed by one parenthesised tuple and nothing else; 0 for any statement
// whose tuple could not be cut out and joined to others without changing what it means.
size_t OneRowInsertHead(std::string_view statement);

}  // namespace lomarin
