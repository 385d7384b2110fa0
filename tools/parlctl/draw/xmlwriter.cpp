#include "xmlwriter.h"

#include <array>
#include <cstdio>

namespace parlctl {

namespace {

std::string escaped(std::string_view text) {
  std::string result;
  for (const char letter : text) {
    switch (letter) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += letter;
    }
  }
  return result;
}

}  // namespace

void XmlWriter::begin(std::string_view name, Attributes attributes) {
  text_.append(2 * open_.size(), ' ').append("<").append(name);
  for (const auto& [key, value] : attributes)
    text_.append(" ").append(key).append("=\"").append(escaped(value)).append("\"");
}

void XmlWriter::open(std::string_view name, Attributes attributes) {
  begin(name, attributes);
  text_ += ">\n";
  open_.emplace_back(name);
}

void XmlWriter::close() {
  const std::string name = std::move(open_.back());
  open_.pop_back();
  text_.append(2 * open_.size(), ' ').append("</").append(name).append(">\n");
}

void XmlWriter::element(std::string_view name, Attributes attributes, std::string_view text) {
  begin(name, attributes);
  if (text.empty())
    text_ += "/>\n";
  else
    text_.append(">").append(escaped(text)).append("</").append(name).append(">\n");
}

std::string xmlNumber(double value) {
  std::array<char, 32> digits{};
  std::snprintf(digits.data(), digits.size(), "%.2f", value);
  std::string text = digits.data();
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

}  // namespace parlctl
