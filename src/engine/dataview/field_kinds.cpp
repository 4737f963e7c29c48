#include "engine/dataview/field_kinds.h"

namespace lomarin::dataview {

bool IsNumberField(const TMyField& field) {
  switch (field.Type) {
    case TMyFieldType::Decimal:
    case TMyFieldType::NewDecimal:
    case TMyFieldType::Tiny:
    case TMyFieldType::Short:
    case TMyFieldType::Long:
    case TMyFieldType::LongLong:
    case TMyFieldType::Int24:
    case TMyFieldType::Float:
    case TMyFieldType::Double:
    case TMyFieldType::Year:
      return true;
    default:
      return false;
  }
}

bool IsBlobOrMemoField(const TMyField& field) {
  switch (field.Type) {
    case TMyFieldType::TinyBlob:
    case TMyFieldType::MediumBlob:
    case TMyFieldType::LongBlob:
    case TMyFieldType::Blob:
    case TMyFieldType::Geometry:
    case TMyFieldType::Json:
      return true;
    default:
      return false;
  }
}

bool IsDateTimeField(const TMyField& field) {
  switch (field.Type) {
    case TMyFieldType::Date:
    case TMyFieldType::NewDate:
    case TMyFieldType::DateTime:
    case TMyFieldType::Timestamp:
    case TMyFieldType::Time:
      return true;
    default:
      return false;
  }
}

bool IsBinaryField(const TMyField& field) {
  switch (field.Type) {
    case TMyFieldType::Bit:
    case TMyFieldType::Geometry:
      return true;
    case TMyFieldType::VarChar:
    case TMyFieldType::VarString:
    case TMyFieldType::String:
    case TMyFieldType::TinyBlob:
    case TMyFieldType::MediumBlob:
    case TMyFieldType::LongBlob:
    case TMyFieldType::Blob:
      return field.isBinary();
    default:
      return false;
  }
}

}  // namespace lomarin::dataview
