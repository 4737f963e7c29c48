#pragma once

#include <string>
#include <string_view>

namespace lomarin::designers {

// The drop the routine editor runs before compiling an object of the given kind (a tree folder
// text or a caller's kind word); empty when the kind drops nothing. The name is bare unless it
// holds a hyphen, and carries no database.
std::string BuildRoutineDropSql(std::string_view kind, std::string_view name);

inline constexpr std::string_view kClearEditorQuestion = "Are you sure you want to clear the editor ?";

// What a new procedure or function starts from. The blank after the name lets Compile take the
// name from the text; the DELIMITER lines let the script runner send each body whole.
inline constexpr std::string_view kNewProcedureTemplate =
    "DELIMITER $$\n"
    "\n"
    "CREATE PROCEDURE new_procedure (IN p_in INT, OUT p_out INT)\n"
    "BEGIN\n"
    "  SET p_out = p_in;\n"
    "  SELECT p_in AS value;\n"
    "END$$\n"
    "\n"
    "DELIMITER ;\n";
inline constexpr std::string_view kNewFunctionTemplate =
    "DELIMITER $$\n"
    "\n"
    "CREATE FUNCTION new_function (p_in INT) RETURNS INT\n"
    "DETERMINISTIC\n"
    "BEGIN\n"
    "  RETURN p_in;\n"
    "END$$\n"
    "\n"
    "DELIMITER ;\n";

}  // namespace lomarin::designers
