// Writes XML: elements, attributes and text, escaped and indented.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace parlctl {

class XmlWriter {
 public:
  using Attributes = std::initializer_list<std::pair<std::string_view, std::string>>;

  // Begins an element that holds others, and ends the one begun last.
  void open(std::string_view name, Attributes attributes);
  void close();
  // A whole element; the text may be empty.
  void element(std::string_view name, Attributes attributes, std::string_view text = {});

  const std::string& text() const { return text_; }

 private:
  void begin(std::string_view name, Attributes attributes);

  std::string text_;
  std::vector<std::string> open_;
};

// At most two digits behind the point, as coordinates need.
std::string xmlNumber(double value);

}  // namespace parlctl
