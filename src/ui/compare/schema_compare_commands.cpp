#include "ui/compare/schema_compare_commands.h"

#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/compare/form_schema_compare.h"

namespace lomarin::ui {

void installSchemaCompareCommands(Tformppal& window) {
  window.actions().setHandler("actdbstructureSyn", [&window] {
    TformSchemaCompare wizard(window.MySqlSession, &window.settings(), &window);
    wizard.exec();
  });
}

}  // namespace lomarin::ui
