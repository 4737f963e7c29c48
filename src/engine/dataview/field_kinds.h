#pragma once

#include "engine/connect/my_field.h"

namespace lomarin::dataview {

// Numbers are written and exported digit for digit as the server sent them.
bool IsNumberField(const TMyField& field);
// BLOB and long text ("memo") columns: no sorting, filtering or fitting in the grid.
bool IsBlobOrMemoField(const TMyField& field);
bool IsDateTimeField(const TMyField& field);
// Bytes that are not text: shown and exported as hex.
bool IsBinaryField(const TMyField& field);

}  // namespace lomarin::dataview
