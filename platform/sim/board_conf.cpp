#include "board_conf.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <sstream>

namespace simboard {
namespace {

constexpr unsigned kPorts = 16;
constexpr std::size_t kSensorsMax = 32;

using Words = std::vector<std::string>;

Words split(const std::string& text, const char* separators = " \t\r,") {
  Words words;
  for (std::size_t at = 0; (at = text.find_first_not_of(separators, at)) != std::string::npos;) {
    const std::size_t end = text.find_first_of(separators, at);
    words.push_back(text.substr(at, end - at));
    if (end == std::string::npos) break;
    at = end;
  }
  return words;
}

std::optional<uint32_t> number(const std::string& word, uint32_t most) {
  const bool hexadecimal = word.starts_with("0x") || word.starts_with("0X");
  const char* from = word.data() + (hexadecimal ? 2 : 0);
  const char* to = word.data() + word.size();
  uint32_t value = 0;
  const auto parsed = std::from_chars(from, to, value, hexadecimal ? 16 : 10);
  if (parsed.ec != std::errc() || parsed.ptr != to || value > most) return std::nullopt;
  return value;
}

template <class T>
bool setNumber(const std::string& text, T& target, uint32_t most) {
  const auto value = number(text, most);
  if (value) target = static_cast<T>(*value);
  return value.has_value();
}

// "0-3, 7" as a mask.
bool setPorts(const std::string& text, uint16_t& mask) {
  uint32_t ports = 0;
  for (const auto& word : split(text)) {
    const std::size_t dash = word.find('-');
    const auto first = number(word.substr(0, dash), kPorts - 1);
    const auto last = dash == std::string::npos ? first : number(word.substr(dash + 1), kPorts - 1);
    if (!first || !last || *last < *first) return false;
    for (uint32_t port = *first; port <= *last; ++port) ports |= 1U << port;
  }
  mask = static_cast<uint16_t>(ports);
  return true;
}

template <class T>
bool setChoice(const std::string& text, T& target, const std::map<std::string, T>& choices) {
  const auto found = choices.find(text);
  if (found != choices.end()) target = found->second;
  return found != choices.end();
}

bool addSensor(const std::string& text, std::vector<Sensor>& sensors) {
  const Words words = split(text, " \t\r");
  Sensor sensor{};
  if (words.size() != 4 || sensors.size() == kSensorsMax || !setNumber(words[0], sensor.port, kPorts - 1) ||
      !setNumber(words[1], sensor.board, 0xFFFE) || !setNumber(words[2], sensor.number, 0xFF) ||
      !setNumber(words[3], sensor.lux, 0xFFFFFFFF)) {
    return false;
  }
  sensors.push_back(sensor);
  return true;
}

bool addInput(const std::string& text, std::vector<Input>& inputs) {
  static const std::map<std::string, int> kTypes{{"dvi", 0},   {"dual-dvi", 1}, {"hdmi14", 2}, {"hdmi20", 3},
                                                 {"dp11", 4},  {"dp12", 5},     {"dp14", 6},   {"sdi3g", 7},
                                                 {"sdi6g", 8}, {"sdi12g", 9},   {"vga", 10}};
  const Words words = split(text, " \t\r");
  Input input{};
  if (words.size() != 2 || !setNumber(words[0], input.id, 0xFFFF) || input.id == 0 ||
      !setChoice(words[1], input.type, kTypes)) {
    return false;
  }
  const auto taken = [&](const Input& other) { return other.id == input.id; };
  if (std::any_of(inputs.begin(), inputs.end(), taken)) return false;
  inputs.push_back(input);
  return true;
}

using Setter = bool (*)(const std::string&, BoardConf&);
const std::map<std::string, Setter>& setters() {
  static const std::map<std::string, Setter> table{
      {"card_bit", [](const std::string& v, BoardConf& c) { return setNumber(v, c.cardBit, 0xFF); }},
      {"fpga_autoload",
       [](const std::string& v, BoardConf& c) {
         return setChoice<bool>(v, c.fpgaAutoload, {{"yes", true}, {"no", false}});
       }},
      {"fpga_status",
       [](const std::string& v, BoardConf& c) {
         return setChoice<bool>(v, c.fpgaUp, {{"up", true}, {"down", false}});
       }},
      {"copper_ports", [](const std::string& v, BoardConf& c) { return setPorts(v, c.copperPorts); }},
      {"fiber1_ports", [](const std::string& v, BoardConf& c) { return setPorts(v, c.fiber1Ports); }},
      {"fiber2_ports", [](const std::string& v, BoardConf& c) { return setPorts(v, c.fiber2Ports); }},
      {"fiber_module", [](const std::string& v, BoardConf& c) { return setNumber(v, c.fiberModule, 0xFF); }},
      {"cards_per_port",
       [](const std::string& v, BoardConf& c) { return setNumber(v, c.cardsPerPort, 0xFFFE); }},
      {"card_width", [](const std::string& v, BoardConf& c) { return setNumber(v, c.cardWidth, 0xFFFF); }},
      {"card_height", [](const std::string& v, BoardConf& c) { return setNumber(v, c.cardHeight, 0xFFFF); }},
      {"card_brightness",
       [](const std::string& v, BoardConf& c) { return setNumber(v, c.cardBrightness, 0xFF); }},
      {"sensor", [](const std::string& v, BoardConf& c) { return v == "none" || addSensor(v, c.sensors); }},
      {"input", [](const std::string& v, BoardConf& c) { return addInput(v, c.inputs); }},
      {"journal",
       [](const std::string& v, BoardConf& c) {
         return setChoice<JournalLevel>(
             v, c.journal,
             {{"off", JournalLevel::Off}, {"writes", JournalLevel::Writes}, {"all", JournalLevel::All}});
       }},
  };
  return table;
}

std::string trimmed(const std::string& text) {
  const std::size_t from = text.find_first_not_of(" \t\r");
  return from == std::string::npos ? std::string()
                                   : text.substr(from, text.find_last_not_of(" \t\r") - from + 1);
}

}  // namespace

const char kDefaultConf[] = R"(card_bit = 1
fpga_autoload = yes
fpga_status = up
copper_ports = 0-3
fiber1_ports =
fiber2_ports =
fiber_module = 0x00
cards_per_port = 16
card_width = 128
card_height = 128
card_brightness = 0xFF
# sensor = PORT BOARD SENSOR LUX
input = 0x10 dvi
input = 0x01 hdmi14
journal = writes
)";

bool parseConf(const std::string& text, BoardConf& conf, std::string& error) {
  std::istringstream lines(text);
  std::string line;
  for (int no = 1; std::getline(lines, line); ++no) {
    line = trimmed(line.substr(0, line.find('#')));
    if (line.empty()) continue;
    const std::size_t equals = line.find('=');
    const std::string key = trimmed(line.substr(0, equals));
    const auto setter = setters().find(key);
    if (equals == std::string::npos) {
      error = "not a \"key = value\" line";
    } else if (setter == setters().end()) {
      error.append("unknown key \"").append(key).append("\"");
    } else if (const std::string value = trimmed(line.substr(equals + 1)); !setter->second(value, conf)) {
      error.append("bad value \"").append(value).append("\" for ").append(key);
    }
    if (error.empty()) continue;
    error.insert(0, "board.conf:" + std::to_string(no) + ": ");
    return false;
  }
  // Without any input line the two inputs of a plain board are there.
  if (conf.inputs.empty()) conf.inputs = {{0x10, 0}, {0x01, 2}};
  return true;
}

}  // namespace simboard
