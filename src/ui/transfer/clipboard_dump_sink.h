#pragma once

#include <string>

#include "engine/transfer/dump_sink.h"

namespace lomarin::ui {

// Gathers a script and puts it on the clipboard once it is complete.
class TClipboardDumpSink : public TDumpSink {
 public:
  void write(std::string_view text) override { text_.append(text); }
  void commit();

 private:
  std::string text_;
};

}  // namespace lomarin::ui
