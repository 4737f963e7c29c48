#include "engine/sqleditor/sql_html.h"

#include "engine/sqleditor/sql_analyzer.h"

namespace lomarin {

namespace {

void appendEscaped(std::string& out, std::string_view text) {
  for (char c : text) {
    switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '&':
        out += "&amp;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
}

std::string_view classOf(TTokenType type) {
  switch (type) {
    case TTokenType::Comment:
      return "c";
    case TTokenType::String:
      return "s";
    case TTokenType::IntegerConst:
    case TTokenType::FloatConst:
      return "n";
    case TTokenType::MainKeyWords:
      return "k";
    case TTokenType::Function:
      return "f";
    case TTokenType::TableName:
      return "t";
    case TTokenType::Alias:
      return "a";
    case TTokenType::Symbol:
      return "o";
    case TTokenType::Unknown:
    case TTokenType::Identifier:
      break;
  }
  return {};
}

}  // namespace

std::string SqlToHtml(std::string_view text, std::string_view title) {
  std::string out = "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>";
  appendEscaped(out, title);
  out +=
      "</title>\n<style>\npre { font-family: monospace; }\n.k { color: #00008b; font-weight: bold; }\n"
      ".f { color: #a05000; }\n.s { color: #a00000; }\n.c { color: #008000; font-style: italic; }\n"
      ".n { color: #800080; }\n.t { color: #006060; }\n.a { color: #606000; }\n.o { color: #303030; }\n"
      "</style>\n</head>\n<body>\n<pre>";
  size_t done = 0;
  for (const TSqlToken& token : TokenizeSql(text)) {
    appendEscaped(out, text.substr(done, token.Start - done));
    const std::string_view css = classOf(token.Type);
    if (!css.empty()) out += "<span class=\"" + std::string(css) + "\">";
    appendEscaped(out, text.substr(token.Start, token.Length));
    if (!css.empty()) out += "</span>";
    done = token.Start + token.Length;
  }
  appendEscaped(out, text.substr(done));
  out += "</pre>\n</body>\n</html>\n";
  return out;
}

}  // namespace lomarin
