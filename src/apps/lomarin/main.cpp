#include "ui/app/startup.h"

int main(int argc, char** argv) { return lomarin::ui::runLomarin(argc, argv); }
